#ifndef CARD_H
#define CARD_H

#include <chrono>
#include <optional>
#include <string>
#include <variant>

#include "ProactiveCommand.h"

/// The card's proactive session is over.
struct SessionEnd { };
/// The card gave up waiting; its session is over.
struct SessionTimeOut { };
/// The modem, or the card in it, is gone or back.
struct ModemRemoved { };
struct ModemReady { };

using CardEvent =
    std::variant<ProactiveCommand, SessionEnd, SessionTimeOut, ModemRemoved, ModemReady>;

/// What holds for all commands of a card.
struct CardTraits {
    std::string name; ///< for people
    Faults faults;
    std::chrono::milliseconds modemTime{200}; ///< what the modem takes for a command it answers
};

/// A card with a toolkit.  Everything but its construction and traits() happens on the thread of
/// the session that owns it, destruction included, so a card may wait for its answers there.
class Card {
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    virtual ~Card() = default;

    virtual CardTraits traits() const = 0;

    /// The card starts from its beginning.
    virtual void powerOn(Time now) = 0;
    virtual void powerOff() = 0;
    /// Menu selection (ETSI TS 102 223 clause 7.2).  The identifier is one of the main menu's.
    virtual void selectMenuItem(int16_t itemId, Time now) = 0;
    /// The answer to the command that the card sent last.  After NoResponse it ends its session
    /// without a further event.
    virtual void respond(const TerminalResponse &response, Time now) = 0;
    /// The session was ended for the card: it stops without a further event.
    virtual void endSession() = 0;

    /// The card was taken out, and what it waits for need not come.  The only function that is
    /// called on another thread, too.
    virtual void interrupt() { }

    /// What the card does at or before the time, one event a call.
    virtual std::optional<CardEvent> nextEvent(Time now) = 0;
    /// When nextEvent() is to be asked next, unless something else happens before.
    virtual Time wakeUp() const = 0;
    /// Becomes readable when nextEvent() is to be asked; -1 for none.
    virtual int descriptor() const { return -1; }
};

#endif
