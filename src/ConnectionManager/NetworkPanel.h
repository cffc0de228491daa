#ifndef NETWORKPANEL_H
#define NETWORKPANEL_H

#include <QLabel>
#include <QWidget>

/// The network side of the simulated card: a window of its own, because the windows of the toolkit
/// keep the main window from being used while they are open.
class NetworkPanel : public QWidget
{
    Q_OBJECT

public:
    explicit NetworkPanel(const QList<QAction *> &actions);

    void retranslate();
    /// Shows the panel beside the window, wherever the screen has room, without taking the focus.
    void showBeside(const QWidget *window);

private:
    QLabel *m_hint;
};

#endif
