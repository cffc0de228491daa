#ifndef NETWORKPANEL_H
#define NETWORKPANEL_H

#include <QLabel>
#include <QToolButton>
#include <QWidget>

class UrlBar;
class UrlRequests;

/// The network side of the simulated card: a window of its own, because the windows of the toolkit
/// keep the main window from being used while they are open.  Commands can be sent, the language be
/// switched and addresses be opened here too, for the same reason.
class NetworkPanel : public QWidget {
    Q_OBJECT

public:
    /// One button for each action and each menu.
    NetworkPanel(const QList<QAction *> &actions, QMenu *commands, QMenu *languages,
                 UrlRequests &urls);

    void retranslate();
    /// Shows the panel beside the window, wherever the screen has room, without taking the focus.
    void showBeside(const QWidget *window);
    UrlBar *urlBar() const { return m_urlBar; }

private:
    QToolButton *addButton();
    QToolButton *addButton(QMenu *menu);

    QLabel *m_hint;
    QToolButton *m_commands;
    QToolButton *m_languages;
    UrlBar *m_urlBar;
};

#endif
