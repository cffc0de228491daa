#include "ToolkitWindows.h"

#include <QApplication>
#include <QJsonArray>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>
#include <QWindow>

namespace {

// " = 3" behind the text of a button.
const QRegularExpression &countdownPattern()
{
    static const QRegularExpression pattern(" = (\\d+)$");
    return pattern;
}

struct Meaning {
    const char *name;
    QMessageBox::ButtonRole role;
    const char *inputButton; // its object name in the input window
};

// A box that says yes has a button that says no; one that says OK has none.
const Meaning Meanings[] = {
    {"OK", QMessageBox::YesRole, "STKPlugin _PushBtnOk"},
    {"Cancel", QMessageBox::RejectRole, "STKPlugin _PushBtnCancel"},
    {"Yes", QMessageBox::YesRole, nullptr},
    {"No", QMessageBox::NoRole, nullptr},
};

QAbstractButton *buttonOf(const QMessageBox &box, QMessageBox::ButtonRole role)
{
    for (QAbstractButton *button : box.buttons()) {
        if (box.buttonRole(button) == role)
            return button;
    }
    return nullptr;
}

QAbstractButton *boxButton(const QMessageBox &box, const Meaning &meaning)
{
    const bool asksYesOrNo = buttonOf(box, QMessageBox::NoRole);
    if (meaning.role == QMessageBox::YesRole && asksYesOrNo != (meaning.name == QString("Yes")))
        return nullptr;
    return buttonOf(box, meaning.role);
}

} // namespace

QWidget *ToolkitWindows::toolkit()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName() == "STKPlugin_Stkdialog")
            return widget;
    }
    return nullptr;
}

QTableWidget *ToolkitWindows::menuTable()
{
    const QWidget *window = toolkit();
    return window ? window->findChild<QTableWidget *>("STKPlugin_TableWidgetMenu") : nullptr;
}

bool ToolkitWindows::isWaiting()
{
    const QCursor *cursor = QApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

QWidget *ToolkitWindows::top()
{
    QWidget *window = QApplication::activeModalWidget();
    return window && window->isVisible() ? window : nullptr;
}

QMessageBox *ToolkitWindows::messageBox()
{
    const QWidget *window = top();
    return window ? window->findChild<QMessageBox *>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

QWidget *ToolkitWindows::inputWindow()
{
    QWidget *window = top();
    return window && window->objectName() == "STKPlugin _StkInputDlg" ? window : nullptr;
}

QLineEdit *ToolkitWindows::inputLine()
{
    const QWidget *window = inputWindow();
    return window ? window->findChild<QLineEdit *>("STKPlugin_LineEditInput") : nullptr;
}

QJsonObject ToolkitWindows::describe(const QMessageBox &box)
{
    QStringList texts;
    for (const QAbstractButton *button : box.buttons())
        texts << button->text().remove(countdownPattern());
    texts.sort();
    return {{"text", box.text()}, {"buttons", QJsonArray::fromStringList(texts)}};
}

QJsonObject ToolkitWindows::describeInput()
{
    const QWidget *window = inputWindow();
    const QLineEdit *line = inputLine();
    const auto *prompt = window ? window->findChild<QLabel *>("STKPlugin_LabelText") : nullptr;
    const QAbstractButton *ok = button("OK");
    if (!line || !prompt || !ok)
        return {};
    return {{"prompt", prompt->text()},
            {"text", line->text()},
            {"hidden", line->echoMode() != QLineEdit::Normal},
            {"ok", ok->isEnabled()},
            {"maxLength", line->maxLength()}};
}

int ToolkitWindows::countdown(const QMessageBox &box)
{
    for (const QAbstractButton *button : box.buttons()) {
        const QRegularExpressionMatch match = countdownPattern().match(button->text());
        if (match.hasMatch())
            return match.captured(1).toInt();
    }
    return -1;
}

QAbstractButton *ToolkitWindows::button(const QString &meaning)
{
    const Meaning *wanted = std::find_if(std::begin(Meanings), std::end(Meanings),
                                         [&](const Meaning &m) { return meaning == m.name; });
    if (const QMessageBox *box = messageBox())
        return boxButton(*box, *wanted);
    const QWidget *input = inputWindow();
    return input && wanted->inputButton ? input->findChild<QAbstractButton *>(wanted->inputButton)
                                        : nullptr;
}

void ToolkitWindows::clickAt(QWidget *widget, const QPoint &place)
{
    QWidget *window = widget->window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      widget->mapTo(window, place));
}

void ToolkitWindows::doubleClickAt(QWidget *widget, const QPoint &place)
{
    QWidget *window = widget->window();
    QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                       widget->mapTo(window, place));
}

void ToolkitWindows::pressKey(QWidget *widget, const QKeySequence &keys)
{
#if QT_VERSION < 0x060000
    const int combined = keys[0];
#else
    const int combined = keys[0].toCombined();
#endif
    const Qt::KeyboardModifiers modifiers(combined & int(Qt::KeyboardModifierMask));
    const Qt::Key key = Qt::Key(combined & ~int(Qt::KeyboardModifierMask));
    const QPointer<QWindow> window = widget->window()->windowHandle();
    QTest::keyPress(window, key, modifiers);
    // The press may have closed the window.
    if (window)
        QTest::keyRelease(window, key, modifiers);
}

void ToolkitWindows::typeText(QWidget *widget, const QString &text)
{
    const QPointer<QWindow> window = widget->window()->windowHandle();
    for (const char32_t character : text.toUcs4()) {
        const bool ascii = character < 128;
        const Qt::Key key = ascii ? QTest::asciiToKey(char(character)) : Qt::Key_unknown;
        if (window)
            QTest::sendKeyEvent(QTest::Click, window, key, QString::fromUcs4(&character, 1),
                                Qt::NoModifier);
    }
}

void ToolkitWindows::closeByTitleBar(QWidget *widget)
{
    widget->window()->windowHandle()->close();
}
