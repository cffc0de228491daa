#ifndef TOOLKITPORT_H
#define TOOLKITPORT_H

#include <chrono>
#include <optional>
#include <string>

#include "PortReports.h"
#include "cat/Bytes.h"

/// What a port tells its terminal.  Every function is called on the session's thread, from inside a
/// function of the port.
class PortEvents {
public:
    using Time = std::chrono::steady_clock::time_point;

    virtual ~PortEvents() = default;

    /// The card or modem is there: it can be started.
    virtual void arrived(Time now) = 0;
    /// It is gone, and looked for again; nothing of what was under way counts any more.
    virtual void departed() = 0;
    /// A proactive command (ETSI TS 102 223 clause 6.6), whole, its outer tag and length included.
    /// Without `wantsAnswer` the far side has answered it: it is for people to see.
    virtual void commandArrived(cat::ByteView command, bool wantsAnswer, Time now) = 0;
    /// The proactive session is over, or an envelope led to none.
    virtual void sessionEnded() = 0;
    /// What the start makes the card send unasked has come, as far as anybody can tell.
    virtual void cameToRest() = 0;
};

/// What the far side of a port leaves to the terminal; it does the rest by itself.
struct PortTraits {
    bool timers = true; ///< TIMER MANAGEMENT, and what follows from it
    bool polling = true; ///< POLL INTERVAL, POLLING OFF
    bool localInformation = true; ///< PROVIDE LOCAL INFORMATION
    bool refresh = true; ///< what a REFRESH asks for
};

/// The data field of TERMINAL RESPONSE, from the command details on (ETSI TS 102 223 clause 6.8).
struct PortResponse {
    /// What a REFRESH asks for.
    enum class Then {
        Nothing,
        SelectAgain, ///< the application, once this is sent
        Reset ///< the card, in place of sending this (clause 6.4.7.1)
    };

    cat::Bytes data;
    size_t secret = 0; ///< so many bytes at the end must not be written down
    Then then = Then::Nothing;
    bool fromPerson = false; ///< no program is that quick
};

struct PortEnvelope {
    cat::Bytes data; ///< its outer tag and length included
    const char *name = ""; ///< for people
    bool selection = false; ///< the user has chosen an item of the card's menu
};

/// A way to a card's toolkit: takes terminal responses and envelopes as bytes, brings proactive
/// commands as bytes, and knows none of them.
///
/// It moves by work() alone, and everything else only says what is to be done next.  Everything
/// happens on the session's thread; nothing waits longer than one exchange with the far side.
class ToolkitPort {
public:
    using Time = PortEvents::Time;

    virtual ~ToolkitPort() = default;

    virtual PortTraits traits() const = 0;
    /// For people: the reader's name, or the modem's.
    virtual std::string name() const = 0;

    /// Who hears of everything from now on; it must live as long as the port is open.  The port
    /// looks for its card or modem, again and again, until it is there.
    virtual void open(PortEvents &events, Time now) = 0;
    /// Starts the card's toolkit from its beginning; after PortEvents::arrived().
    virtual void start(Time now) = 0;
    virtual void close() = 0;

    /// Answers the command that arrived last.
    virtual void respond(PortResponse response, Time now) = 0;
    /// Whether no proactive session stands in an envelope's way, nor the envelope before.
    virtual bool takesEnvelope() const = 0;
    virtual void sendEnvelope(PortEnvelope envelope, Time now) = 0;
    /// The envelope that waits for a busy card is not wanted any more.
    virtual void dropEnvelope() = 0;
    /// Whether a command is known to come that has not arrived.
    virtual bool expectsCommand() const = 0;
    /// The same, or a response has not been taken, or nobody knows yet what follows it.
    virtual bool isInSession() const = 0;

    /// How often the card wants to be asked for commands; nothing: not at all.
    virtual void setPollInterval(std::optional<std::chrono::milliseconds> interval, Time now) = 0;
    /// An invalid PIN: the card goes on without.  An answer to a request that is over does nothing.
    virtual void answerPin(int request, const Pin &pin, Time now) = 0;
    /// Came to rest without a menu: says so, with what a person can do about it.
    virtual void tellMissingMenu() = 0;
    /// The person wants the card to start anew.
    virtual void restart(Time now) = 0;
    /// Something like its card or modem has come or gone: there is no need to wait for the next
    /// look.
    virtual void lookAgain(Time now) = 0;
    /// Nobody waits any more for what the port waits for just now.  The only function that is
    /// called on another thread, too.
    virtual void interrupt() { }

    virtual void work(Time now) = 0;
    /// When work() is to be called next, unless something else happens before.
    virtual Time wakeUp() const = 0;
    /// Becomes readable when work() is to be called; -1 for none.
    virtual int descriptor() const { return -1; }
};

#endif
