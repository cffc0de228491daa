#ifndef CARDSLOT_H
#define CARDSLOT_H

#include <memory>
#include <optional>
#include <utility>

#include "Card.h"
#include "CardHost.h"
#include "Transcript.h"

/// The modem's place for a card: whether one is in it, what the modem says of it, and which calls
/// of the terminal that lets pass.  What becomes of it goes into the transcript.
///
/// Without a lock or a thread: its owner's hold for it.
class CardSlot {
public:
    explicit CardSlot(Transcript &transcript);

    /// In place of the card before, which is interrupted and returned; null for none.  The modem is
    /// there again.
    std::shared_ptr<Card> exchange(std::shared_ptr<Card> card);
    const std::shared_ptr<Card> &card() const { return m_card; }
    const CardTraits &traits() const { return m_traits; }

    void removeModem(); ///< and the menu with it
    void insertModem();
    /// A card is there, and the modem is or is not.
    bool isReady() const { return m_card && !m_removed; }
    bool isRemoved() const { return m_card && m_removed; }

    /// A SET UP MENU.
    void setMenu(ProactiveCommand command) { m_menu = std::move(command); }
    /// Null where the card has sent none.
    const CommandMenu *menu() const { return m_menu ? commandMenu(m_menu->body) : nullptr; }

    /// `isBusy`: whether a session is under way.
    CardHost::ModemState state(bool isBusy) const;

    /// Success for a call where the card can be spoken to and wants it to work.
    int32_t status(ServiceFunction function) const;
    /// The same of a call about the main menu.
    int32_t menuStatus(ServiceFunction function) const;
    /// The status that the card, or its menu, wants the call to return; success where it wants
    /// none.
    int32_t fault(ServiceFunction function) const;
    int32_t menuFault(ServiceFunction function) const;

private:
    Transcript &m_transcript;
    std::shared_ptr<Card> m_card;
    CardTraits m_traits;
    bool m_removed = false;
    std::optional<ProactiveCommand> m_menu;
};

#endif
