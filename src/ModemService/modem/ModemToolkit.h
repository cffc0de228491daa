#ifndef MODEMTOOLKIT_H
#define MODEMTOOLKIT_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "toolkit/BusyWait.h"
#include "toolkit/ToolkitPort.h"

/// What is under way between the terminal and the toolkit of a modem, whatever the modem is spoken
/// to in: the command that waits for its answer, the response and the envelope on their way, and
/// whether the proactive session is over.  One message is on its way at a time.
class ModemToolkit {
public:
    using Time = ToolkitPort::Time;

    struct Message {
        enum class Kind { Response, Envelope };
        Kind kind;
        const cat::Bytes &data; ///< until it was answered
        size_t secret = 0; ///< so many bytes at the end must not be written down
    };
    /// What came of a message.
    struct Outcome {
        bool taken = false;
        std::optional<uint16_t> status; ///< the card's, where the modem tells it
        cat::Bytes data; ///< the card's answer to an envelope
    };

    explicit ModemToolkit(PortReports &reports)
        : m_reports(reports)
    {
    }

    /// The events must live until forget().
    void open(PortEvents &events) { m_events = &events; }
    /// The modem has been asked for the toolkit: messages may go out, and a menu ought to come.
    void run(Time now);
    /// Nothing of what was under way counts any more, and nothing goes out.
    void forget();
    bool isRunning() const { return m_running; }

    /// Without `wantsAnswer` the modem has answered it.
    void commandArrived(cat::ByteView command, bool wantsAnswer, Time now);
    /// The modem says that the session is over.
    void sessionEnded();

    void respond(PortResponse response);
    bool takesEnvelope() const;
    void sendEnvelope(PortEnvelope envelope);
    void dropEnvelope();
    bool expectsCommand() const;
    bool isInSession() const { return m_open || expectsCommand(); }

    /// What is to be sent now; it is on its way until answered(), sendAgain() or sendLater().
    std::optional<Message> next(Time now);
    /// The name of what is on its way, for people; empty: nothing is.
    std::string sending() const;
    void answered(Outcome outcome, Time now);
    /// The modem did not take it for its form alone.
    void sendAgain();
    /// The same some time later, as card or modem is busy.  False: it was busy for too long.
    bool sendLater(Time now);

    /// Tells what time alone tells.
    void work(Time now);
    Time wakeUp() const;

private:
    /// A menu's choice is on its way.
    bool isChosen() const { return m_envelope && m_envelope->selection; }
    bool isRepeated(cat::ByteView command, Time now) const;
    void responseAnswered(const Outcome &outcome, Time now);
    void envelopeAnswered(Outcome outcome, Time now);

    PortReports &m_reports;
    PortEvents *m_events = nullptr;
    bool m_running = false;

    cat::Bytes m_command; // the last that is to be answered
    bool m_open = false; // it waits for its answer
    std::optional<PortResponse> m_response; // to be sent
    std::optional<PortResponse> m_sent; // on its way
    Time m_sentAt;
    bool m_overtaken = false; // a newer command came while that was on its way
    bool m_endTold = false; // the session's, while that was on its way
    std::optional<PortEnvelope> m_envelope; // to be sent, or on its way
    bool m_envelopeSent = false;
    BusyWait m_busy;
    std::optional<Time> m_restAt;
    std::optional<Time> m_endAt; // when silence means that the session is over
};

#endif
