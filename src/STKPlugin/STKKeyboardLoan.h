#ifndef STKKEYBOARDLOAN_H
#define STKKEYBOARDLOAN_H

#include <QPointer>
#include <QWidget>

/* The input line grabs the keyboard.  A box that comes up over it borrows the keys for as long as
 * this lives; otherwise Escape in the box would cancel the input behind it. */
class STKKeyboardLoan {
public:
    STKKeyboardLoan()
        : m_pGrabber(QWidget::keyboardGrabber())
    {
        if (m_pGrabber)
            m_pGrabber->releaseKeyboard();
    }
    ~STKKeyboardLoan()
    {
        if (m_pGrabber && m_pGrabber->isVisible())
            m_pGrabber->grabKeyboard();
    }

private:
    Q_DISABLE_COPY(STKKeyboardLoan)

    QPointer<QWidget> m_pGrabber;
};

#endif
