#ifndef EXTENDDIALOG_H
#define EXTENDDIALOG_H

#include <QDialog>

#include "HostUiGlobal.h"

class QVBoxLayout;

/* The host's framed dialog: one look for every window over the main window.
 *
 * Unlike a plain dialog it takes the button that has the focus when it is shown as its default
 * button, so that Return means what the focus says.  A modal one stays over the one that was modal
 * before it, also where both have the same parent. */
class HOSTUI_API ExtendDialog : public QDialog {
    Q_OBJECT

public:
    /* widgetType: 1 a window with content of its own, 4 the frame of a message box. */
    ExtendDialog(QWidget *parent, Qt::WindowFlags flags, int widgetType);
    ~ExtendDialog();

    /* Puts the widget into the client area; the frame becomes its parent. */
    void AddMainWidget(QWidget *widget);
    /* The title is plain text: no placeholder in it is expanded. */
    void setWindowTitle(const QString &title);
    void setWindowFlags(Qt::WindowFlags flags);
    void setVisible(bool visible);

public slots:
    /* The content wants this size, in pixels; the frame grows or shrinks around it. */
    void changeSize(QSize size);

protected:
    void showEvent(QShowEvent *event);

private slots:
    void claimKeyboard();

private:
    QVBoxLayout *m_layout;
    int m_widgetType;
};

#endif
