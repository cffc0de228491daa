#include "PinField.h"

#include <cstring>

#include <QInputMethodEvent>
#include <QKeyEvent>

PinField::PinField(QWidget *parent)
    : QLineEdit(parent)
{
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhDigitsOnly |
                        Qt::ImhNoPredictiveText);
    setMaxLength(int(m_digits.size()));
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
}

PinField::~PinField()
{
    explicit_bzero(m_digits.data(), m_digits.size());
}

CardHost::Pin PinField::pin() const
{
    return CardHost::Pin(m_digits.data(), m_count);
}

void PinField::wipe()
{
    explicit_bzero(m_digits.data(), m_digits.size());
    m_count = 0;
    showDots();
}

void PinField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)
        return erase();
    const QString typed = event->text();
    if (typed.isEmpty() || !typed.at(0).isPrint())
        return event->ignore(); // Return and Escape are the dialog's
    add(typed);
}

void PinField::inputMethodEvent(QInputMethodEvent *event)
{
    add(event->commitString());
    event->accept();
}

// The middle button would paste.
void PinField::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}

// The digits of every script count.
void PinField::add(const QString &typed)
{
    for (const QChar character : typed) {
        const int digit = character.isDigit() ? character.digitValue() : -1;
        if (digit >= 0 && m_count < m_digits.size())
            m_digits[m_count++] = char('0' + digit);
    }
    showDots();
}

void PinField::erase()
{
    if (hasSelectedText())
        return wipe();
    if (m_count > 0)
        m_digits[--m_count] = 0;
    showDots();
}

void PinField::showDots()
{
    setText(QString(int(m_count), QLatin1Char('.')));
}
