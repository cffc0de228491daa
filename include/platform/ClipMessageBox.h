#ifndef CLIPMESSAGEBOX_H
#define CLIPMESSAGEBOX_H

#include <QMessageBox>
#include <QSize>

#include "HostUiGlobal.h"

/* A message box that lives inside an ExtendDialog and tells it the size that its text wants.
 * The text is plain text. */
class HOSTUI_API ClipMessageBox : public QMessageBox {
    Q_OBJECT

public:
    explicit ClipMessageBox(QWidget *parent = 0);
    ~ClipMessageBox();

signals:
    void changeSize(QSize size);

protected:
    void showEvent(QShowEvent *event);
    void resizeEvent(QResizeEvent *event);

private:
    void showWholeText();
};

#endif
