#ifndef KEYBOARDLOAN_H
#define KEYBOARDLOAN_H

#include <QPointer>
#include <QWidget>

/* The input line grabs the keyboard.  A box that comes up over it borrows the keys for as long as
 * this lives; otherwise Escape in the box would cancel the input behind it. */
class KeyboardLoan {
public:
    KeyboardLoan()
        : m_pGrabber(QWidget::keyboardGrabber())
    {
        if (m_pGrabber)
            m_pGrabber->releaseKeyboard();
    }
    ~KeyboardLoan()
    {
        if (m_pGrabber && m_pGrabber->isVisible())
            m_pGrabber->grabKeyboard();
    }

private:
    Q_DISABLE_COPY(KeyboardLoan)

    QPointer<QWidget> m_pGrabber;
};

#endif
