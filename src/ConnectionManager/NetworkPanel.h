#ifndef NETWORKPANEL_H
#define NETWORKPANEL_H

#include <QLabel>
#include <QToolButton>
#include <QWidget>

/// The network side of the simulated card: a window of its own, because the windows of the toolkit
/// keep the main window from being used while they are open.  Commands can be sent and the language
/// be switched here too, for the same reason.
class NetworkPanel : public QWidget {
    Q_OBJECT

public:
    /// One button for each action and each menu.
    NetworkPanel(const QList<QAction *> &actions, QMenu *commands, QMenu *languages);

    void retranslate();
    /// Shows the panel beside the window, wherever the screen has room, without taking the focus.
    void showBeside(const QWidget *window);

private:
    QToolButton *addButton();
    QToolButton *addButton(QMenu *menu);

    QLabel *m_hint;
    QToolButton *m_commands;
    QToolButton *m_languages;
};

#endif
