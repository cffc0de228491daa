#include "CardSlot.h"

#include <utility>

#include "ServiceStatus.h"

CardSlot::CardSlot(Transcript &transcript)
    : m_transcript(transcript)
{
}

std::shared_ptr<Card> CardSlot::exchange(std::shared_ptr<Card> card)
{
    if (m_card) {
        m_transcript.cardClosed();
        m_card->interrupt();
    }
    m_menu.reset();
    m_removed = false;
    m_traits = card ? card->traits() : CardTraits();
    if (card)
        m_transcript.cardOpened(m_traits.name);
    return std::exchange(m_card, std::move(card));
}

void CardSlot::removeModem()
{
    m_menu.reset();
    m_removed = true;
    m_transcript.device(false);
}

void CardSlot::insertModem()
{
    m_removed = false;
    m_transcript.device(true);
}

CardHost::ModemState CardSlot::state(bool isBusy) const
{
    if (!m_card)
        return CardHost::ModemState::NoCard;
    if (m_removed)
        return CardHost::ModemState::Removed;
    return isBusy ? CardHost::ModemState::Busy : CardHost::ModemState::Ready;
}

int32_t CardSlot::status(ServiceFunction function) const
{
    if (!m_card)
        return StatusNoCard;
    if (m_removed)
        return StatusModemRemoved;
    return fault(function);
}

int32_t CardSlot::menuStatus(ServiceFunction function) const
{
    if (const int32_t cardStatus = status(function))
        return cardStatus;
    return m_menu ? menuFault(function) : int32_t(StatusNoMenu);
}

int32_t CardSlot::fault(ServiceFunction function) const
{
    return faultStatus(m_traits.faults, function);
}

int32_t CardSlot::menuFault(ServiceFunction function) const
{
    return m_menu ? faultStatus(m_menu->faults, function) : StatusSuccess;
}
