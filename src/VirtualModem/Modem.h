#ifndef MODEM_H
#define MODEM_H

#include "ModemCard.h"
#include "Outbox.h"

/// A modem as its port shows it.
class Modem : protected ModemCard::Listener {
public:
    Modem(const CardFile &file, Outbox &outbox, ModemFaults &faults)
        : m_outbox(outbox)
        , m_faults(faults)
        , m_card(file, *this, faults.has(Fault::Late))
    {
    }

    virtual void portOpened() = 0;
    virtual void portClosed() = 0;
    virtual void received(cat::ByteView bytes) = 0;
    /// What the card has sent by itself is told.
    virtual void tellUnsolicited() = 0;
    /// As above, what has become of the card.
    virtual void tellStateOfCard() = 0;

    ModemCard &card() { return m_card; }

protected:
    Outbox &m_outbox;
    ModemFaults &m_faults;
    ModemCard m_card;
};

#endif
