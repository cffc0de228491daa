#ifndef CARDCHANNEL_H
#define CARDCHANNEL_H

#include <optional>
#include <string>

#include "cat/Bytes.h"
#include "toolkit/PortReports.h"

/// The way to one card.
class CardChannel {
public:
    enum class State {
        NoDaemon, ///< no smart-card daemon answers
        NoReader,
        NoCard,
        Mute, ///< a card that does not answer
        InUse, ///< another program keeps it for itself
        Ready
    };
    struct Status {
        State state = State::NoCard;
        std::string reader; ///< its name, where Ready
        Notice trouble; ///< what is in the way, elsewhere; empty after interrupt()
        size_t chosenAmong = 0; ///< so many readers, where nobody named one
    };
    /// ISO/IEC 7816-3.
    enum class Protocol { T0, T1 };

    virtual ~CardChannel() = default;

    /// Switches the card on, or resets it, and keeps it for this program alone.
    virtual Status connect() = 0;
    /// Gives the card back.
    virtual void disconnect() = 0;
    /// Whether the card has been in its place without a break since the last connect() that was
    /// Ready, given back meanwhile or not.
    virtual bool isPresent() = 0;
    /// The card that was connected last is not the one that is looked for: true where connect()
    /// will choose another one.
    virtual bool passOver() = 0;
    /// Of the card that is connected.
    virtual Protocol protocol() const = 0;
    /// One exchange as the transport carries it, without GET RESPONSE; the result ends with the two
    /// status words.  Nothing: the card is gone, or does not answer.
    virtual std::optional<cat::Bytes> transmit(cat::ByteView command) = 0;
    /// Whoever waits for the card, or will, is sent away before long.  From any thread.
    virtual void interrupt() { }
};

#endif
