#ifndef TOOLKITWINDOWS_H
#define TOOLKITWINDOWS_H

#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>

/// Finds the windows of the SIM toolkit from outside, by their object names, and drives them with
/// real mouse and key events.  GUI thread only.
namespace ToolkitWindows {

/// The toolkit's own window; null while it is closed.
QWidget *toolkit();
/// The list of its menu.
QTableWidget *menuTable();
/// Whether the toolkit shows that it waits for the card.
bool isWaiting();

/// The window over all others; null when that is the main window.
QWidget *top();
/// The message box in the top window; null when that has none.
QMessageBox *messageBox();
/// The top window where it asks for an input, else null.
QWidget *inputWindow();
/// The input window's line.
QLineEdit *inputLine();

/// What the message box shows: "text", and "buttons" in the order of the alphabet, without a
/// countdown.
QJsonObject describe(const QMessageBox &box);
/// What the input window shows: "prompt", "text", "hidden", "ok" and "maxLength".
QJsonObject describeInput();
/// The number that counts down on a button of the message box, -1 without one.
int countdown(const QMessageBox &box);
/// The top window's button that means "OK", "Cancel", "Yes" or "No", whatever its text; or null.
QAbstractButton *button(const QString &meaning);

/// The events go through the window, as the window system's own do: modality, popups and grabs
/// take part.
void clickAt(QWidget *widget, const QPoint &place);
void doubleClickAt(QWidget *widget, const QPoint &place);
void pressKey(QWidget *widget, const QKeySequence &keys);
void typeText(QWidget *widget, const QString &text);
/// What the close button of a title bar does.
void closeByTitleBar(QWidget *widget);

} // namespace ToolkitWindows

#endif
