#ifndef TOOLKITTERMINAL_H
#define TOOLKITTERMINAL_H

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "CardEvents.h"
#include "EnvelopeQueue.h"
#include "TerminalDuties.h"
#include "ToolkitPort.h"
#include "cat/Command.h"

/// The terminal of a card's toolkit (ETSI TS 102 223 clauses 6 and 7): decodes the proactive
/// commands that a port brings, carries out what is the terminal's, hands out the rest, and codes
/// responses and envelopes.  It knows no card and no transport.
///
/// It moves by nextEvent() alone.  It has no clock but the times that it is given, except for the
/// date and time that a card asks for.
class ToolkitTerminal : public Card, private PortEvents {
public:
    using Time = Card::Time;

    /// `name` is for people, and `language` that of the user interface (ISO 639, two letters).
    /// The reports must live as long as the terminal.
    ToolkitTerminal(std::unique_ptr<ToolkitPort> port, std::string name, std::string language,
                    PortReports &reports);
    ~ToolkitTerminal() override;

    CardTraits traits() const override;
    void powerOn(Time now) override;
    void powerOff() override;
    void selectMenuItem(int16_t itemId, Time now) override;
    void respond(const TerminalResponse &response, Time now) override;
    void endSession() override;
    void interrupt() override { m_port->interrupt(); }
    std::optional<CardEvent> nextEvent(Time now) override;
    Time wakeUp() const override;
    int descriptor() const override { return m_port->descriptor(); }

    /// An invalid PIN: the card goes on without.  An answer to a request that is over does nothing.
    void answerPin(int request, const Pin &pin, Time now);
    void setLanguage(const std::string &language, Time now);
    /// The person wants the card to start anew.
    void restart(Time now);
    void lookAgain(Time now);

private:
    // A proactive command, until it was answered.
    struct CommandInProgress {
        cat::Command command;
        bool wantsAnswer = true; // else the far side has answered it
        std::optional<TerminalResponse> ownAnswer{}; // nothing: the user answers
        Time since{};
    };

    // The port's events.
    void arrived(Time now) override;
    void departed() override;
    void commandArrived(cat::ByteView bytes, bool wantsAnswer, Time now) override;
    void sessionEnded() override;
    void cameToRest() override;

    void forgetCard();
    void overtake();
    void handOut(CommandInProgress &&current, Time now);
    void present(ProactiveCommand &&proactive, Time now);
    void answerByTerminal(const cat::Command &command, bool wantsAnswer, TerminalDuties::Done done,
                          Time now);
    void send(const CommandInProgress &current, cat::Response response, bool fromPerson, Time now);
    void sendEnd(Time now);
    void dropSelection();
    bool hasNotified() const;
    void sendEnvelope(Time now);

    const std::unique_ptr<ToolkitPort> m_port;
    const std::string m_name;
    std::string m_language;
    PortReports &m_reports;

    CardEvents m_events;
    bool m_on = false;
    bool m_there = false; // the port's card or modem
    bool m_removalTold = false;
    bool m_started = false;

    // Of the card in use; forgotten with it.
    struct Toolkit {
        TerminalDuties duties;
        bool menuSeen = false;
        bool rested = false;
        std::optional<CommandInProgress> command{};
        std::optional<ProactiveCommand> held{}; // while a text before it is still on screen
        EnvelopeQueue envelopes{};
        std::deque<cat::Bytes> notified{}; // not to be answered, and not shown yet
    };
    // How the session under way is to end.
    struct Ending {
        bool awaited = false; // somebody has seen it begin
        bool quiet = false; // nobody wants to hear of its end
        bool held = false; // until the user has seen a text
    };
    // A text that was answered before the user has seen it.
    struct Text {
        bool shown = false;
        bool waits = false; // until the user clears it
    };
    Toolkit m_toolkit;
    Ending m_ending;
    Text m_text;
    bool m_unwanted = false; // the next command: its session was ended before it arrived
};

#endif
