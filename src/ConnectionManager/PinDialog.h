#ifndef PINDIALOG_H
#define PINDIALOG_H

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "CardHost.h"
#include "PinField.h"

/// Asks for the PIN of a card, and answers the request by itself: with the PIN, or without one when
/// the dialog is left in any other way.  Deleted before it is left, it answers nothing.
class PinDialog : public QDialog {
    Q_OBJECT

public:
    PinDialog(const CardHost::PinRequest &request, QWidget *parent);

    void retranslate();

    const CardHost::PinRequest &request() const { return m_request; }
    PinField *field() const { return m_field; }
    /// Null while more than one try is left.
    QCheckBox *confirmation() const { return m_confirmation; }
    QPushButton *okButton() const { return m_ok; }
    QPushButton *cancelButton() const { return m_cancel; }

private:
    QLabel *addLabel(QLayout *layout);
    QWidget *createLastTryWarning();
    QLayout *createButtons();
    void updateOk();
    void answer(int result);

    CardHost::PinRequest m_request;
    QLabel *m_asks = nullptr;
    QLabel *m_wrong = nullptr;
    QLabel *m_fieldLabel = nullptr;
    PinField *m_field = nullptr;
    QLabel *m_tries = nullptr;
    QLabel *m_lastTry = nullptr;
    QCheckBox *m_confirmation = nullptr;
    QPushButton *m_ok = nullptr;
    QPushButton *m_cancel = nullptr;
};

#endif
