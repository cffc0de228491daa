#include "ToolkitTerminal.h"

#include <algorithm>
#include <utility>

#include "CommandBridge.h"
#include "Notices.h"
#include "TerminalAnswers.h"

namespace {

constexpr std::chrono::milliseconds QuickestPerson{100};

enum RefreshQualifier : uint8_t { // clause 8.6
    FileChange = 0x01,
    UiccReset = 0x04
};

PortResponse::Then whatFollows(const cat::Command &command, const cat::Response &response)
{
    if (!isPerformed(response) || !std::holds_alternative<cat::Refresh>(command.body))
        return PortResponse::Then::Nothing;
    switch (command.details.qualifier) {
    case UiccReset:
        return PortResponse::Then::Reset;
    case FileChange:
        return PortResponse::Then::Nothing;
    default:
        return PortResponse::Then::SelectAgain;
    }
}

} // namespace

ToolkitTerminal::ToolkitTerminal(std::unique_ptr<ToolkitPort> port, std::string name,
                                 std::string language, PortReports &reports)
    : m_port(std::move(port))
    , m_name(std::move(name))
    , m_language(std::move(language))
    , m_reports(reports)
    , m_toolkit{TerminalDuties(m_port->traits(), m_language)}
{
}

ToolkitTerminal::~ToolkitTerminal()
{
    powerOff();
}

CardTraits ToolkitTerminal::traits() const
{
    CardTraits traits;
    traits.name = m_name;
    return traits;
}

// ---- What the session says ----

void ToolkitTerminal::powerOn(Time now)
{
    forgetCard();
    if (m_there && !m_started) {
        m_started = true;
        m_port->start(now);
        return;
    }
    if (m_on)
        m_port->close();
    m_on = true;
    m_there = m_started = m_removalTold = false;
    m_port->open(*this, now);
}

void ToolkitTerminal::powerOff()
{
    forgetCard();
    if (std::exchange(m_on, false))
        m_port->close();
    m_there = m_started = false;
}

void ToolkitTerminal::selectMenuItem(int16_t itemId, Time now)
{
    if (!m_started)
        return;
    m_toolkit.envelopes.add(m_toolkit.duties.userActed());
    m_text.shown = false;
    m_ending.held = false;
    m_events.forget<SessionEnd>(); // of the session before
    // A command that nobody was told of is not what the user has chosen.
    if (m_toolkit.command && !m_toolkit.command->ownAnswer && m_events.forget<ProactiveCommand>())
        sendEnd(now);
    dropSelection();
    m_toolkit.envelopes.select(static_cast<uint8_t>(itemId));
}

// The one that waits to be sent, or for a busy card.
void ToolkitTerminal::dropSelection()
{
    if (m_toolkit.envelopes.dropSelection())
        m_port->dropEnvelope();
}

void ToolkitTerminal::respond(const TerminalResponse &response, Time now)
{
    const bool usersAct = isUsersAct(response, m_text.waits);
    if (m_events.holdsCommand()) // nobody was told of it: this is for the one before
        return;
    if (m_toolkit.held) { // until the text before it was answered
        if (usersAct)
            m_toolkit.envelopes.add(m_toolkit.duties.userActed());
        present(*std::exchange(m_toolkit.held, std::nullopt), now);
        return;
    }
    const bool answered = response.result != TerminalResponse::Result::NoResponse;
    if (!m_toolkit.command) {
        // A text that the card did not wait for.
        if (!std::exchange(m_text.shown, false))
            return;
        if (usersAct)
            m_toolkit.envelopes.add(m_toolkit.duties.userActed());
        if (std::exchange(m_ending.held, false) && answered)
            m_events.add(SessionEnd());
        return;
    }

    const CommandInProgress current = *std::exchange(m_toolkit.command, std::nullopt);
    if (isOverlooked(current.command, response, now - current.since)) {
        const cat::Response none = responseWith(current.command, cat::Result::NoResponseFromUser);
        m_reports.answeredByTerminal(current.command.name, resultInWords(none));
        send(current, none, false, now);
        return;
    }
    m_ending.quiet |= !answered;
    const bool byTerminal = current.ownAnswer.has_value();
    if (!byTerminal && answered && isUsersAct(response, waitsForUser(current.command)))
        m_toolkit.envelopes.add(m_toolkit.duties.userActed());
    const bool fromPerson = !byTerminal && answered && now - current.since >= QuickestPerson;
    send(current, responseTo(current.command, response), fromPerson, now);
}

void ToolkitTerminal::endSession()
{
    m_events.forget<SessionEnd>();
    m_events.forget<ProactiveCommand>();
    dropSelection();
    m_text.shown = false;
    m_ending.held = false;
    m_toolkit.held.reset();
    m_ending.quiet = m_toolkit.command || m_port->isInSession();
    m_unwanted = m_port->expectsCommand() && !m_toolkit.command;
    if (m_toolkit.command)
        sendEnd(Clock::now());
}

void ToolkitTerminal::setLanguage(const std::string &language, Time)
{
    m_language = language;
    m_toolkit.envelopes.add(m_toolkit.duties.setLanguage(language));
}

void ToolkitTerminal::answerPin(int request, const Pin &pin, Time now)
{
    m_port->answerPin(request, pin, now);
}

void ToolkitTerminal::restart(Time now)
{
    if (!m_started)
        return;
    forgetCard();
    m_events.add(SessionEnd());
    m_port->restart(now);
}

void ToolkitTerminal::lookAgain(Time now)
{
    if (m_on)
        m_port->lookAgain(now);
}

// ---- Presence ----

void ToolkitTerminal::arrived(Time now)
{
    m_there = true;
    if (std::exchange(m_removalTold, false)) {
        m_events.add(ModemReady()); // powerOn() follows
        return;
    }
    m_started = true;
    m_port->start(now);
}

void ToolkitTerminal::departed()
{
    forgetCard();
    m_there = m_started = false;
    if (!std::exchange(m_removalTold, true))
        m_events.add(ModemRemoved());
}

void ToolkitTerminal::forgetCard()
{
    m_events.clear();
    m_toolkit = Toolkit{TerminalDuties(m_port->traits(), m_language)};
    m_ending = Ending();
    m_text = Text();
    m_unwanted = false;
}

// ---- Commands ----

std::optional<CardEvent> ToolkitTerminal::nextEvent(Time now)
{
    if (m_on && m_events.isEmpty()) {
        for (auto expired = m_toolkit.duties.expiredTimer(now); expired;
             expired = m_toolkit.duties.expiredTimer(now))
            m_toolkit.envelopes.add(std::move(expired));
        if (!m_toolkit.envelopes.isEmpty() && m_port->takesEnvelope())
            sendEnvelope(now);
        if (hasNotified()) {
            const cat::Bytes command = std::move(m_toolkit.notified.front());
            m_toolkit.notified.pop_front();
            commandArrived(command, false, now);
        }
        m_port->work(now);
    }
    return m_events.take();
}

ToolkitTerminal::Time ToolkitTerminal::wakeUp() const
{
    if (!m_events.isEmpty() || hasNotified() ||
        (!m_toolkit.envelopes.isEmpty() && m_port->takesEnvelope()))
        return Time{};
    return std::min(m_port->wakeUp(), m_toolkit.duties.nextExpiry());
}

bool ToolkitTerminal::hasNotified() const
{
    return !m_toolkit.command && !m_toolkit.notified.empty();
}

void ToolkitTerminal::commandArrived(cat::ByteView bytes, bool wantsAnswer, Time now)
{
    constexpr size_t MostNotified = 16;
    if (!wantsAnswer && m_toolkit.command) { // what is to be answered comes first
        if (m_toolkit.notified.size() < MostNotified)
            m_toolkit.notified.push_back(bytes.copy());
        return;
    }
    m_toolkit.envelopes.selectionFollowed();
    CommandInProgress current{cat::decode(bytes), wantsAnswer};
    const cat::Command &command = current.command;
    if (wantsAnswer)
        overtake();
    if (command.problem != cat::Problem::None) {
        cat::Response response = responseWith(command, cat::Result::Performed);
        response.result = static_cast<uint8_t>(command.problem);
        answerByTerminal(command, wantsAnswer, {std::move(response), command.reason}, now);
        return;
    }
    if (auto done = m_toolkit.duties.carryOut(command, now)) {
        answerByTerminal(command, wantsAnswer, std::move(*done), now);
        return;
    }
    current.since = now;
    handOut(std::move(current), now);
}

// A modem gave up the command before: only the new one is answered.
void ToolkitTerminal::overtake()
{
    if (!m_toolkit.command)
        return;
    m_toolkit.command.reset();
    if (std::exchange(m_toolkit.held, std::nullopt))
        return;
    m_events.forgetQuestions();
}

void ToolkitTerminal::handOut(CommandInProgress &&current, Time now)
{
    std::optional<ProactiveCommand> proactive = toProactiveCommand(current.command);
    if (!proactive) {
        answerByTerminal(current.command, current.wantsAnswer,
                         {responseWith(current.command, cat::Result::BeyondCapabilities)}, now);
        return;
    }
    const bool byUser = !isAnsweredByModem(proactive->body);
    if (std::exchange(m_unwanted, false) && byUser) {
        send(current, responseWith(current.command, cat::Result::TerminatedByUser), false, now);
        return;
    }
    if (std::holds_alternative<cat::SetUpMenu>(current.command.body)) {
        if (m_toolkit.rested && !m_toolkit.menuSeen)
            m_reports.noticed(noticeOf(NoticeId::MenuLate, {m_port->name()}));
        m_toolkit.menuSeen = true;
    }
    if (!byUser)
        current.ownAnswer = proactive->modemAnswer;
    m_toolkit.command = std::move(current);
    // Two windows at a time would be one too many, and nothing may take the text's place.
    if (m_text.shown)
        m_toolkit.held = std::move(*proactive);
    else
        present(std::move(*proactive), now);
}

void ToolkitTerminal::present(ProactiveCommand &&proactive, Time now)
{
    CommandInProgress &current = *m_toolkit.command;
    const auto *text = std::get_if<cat::DisplayText>(&current.command.body);
    current.since = now;
    m_text = {text && text->immediateResponse, waitsForUser(current.command)};
    m_ending = {true, false, false};
    m_events.add(std::move(proactive));
    if (m_text.shown) {
        const CommandInProgress answered = *std::exchange(m_toolkit.command, std::nullopt);
        send(answered, responseWith(answered.command, cat::Result::Performed), false, now);
    }
}

void ToolkitTerminal::answerByTerminal(const cat::Command &command, bool wantsAnswer,
                                       TerminalDuties::Done done, Time now)
{
    m_reports.answeredByTerminal(command.name +
                                     (done.details.empty() ? "" : " (" + done.details + ')'),
                                 resultInWords(done.response));
    if (done.setsPollInterval)
        m_port->setPollInterval(done.pollInterval, now);
    CommandInProgress current{command, wantsAnswer};
    current.since = now;
    send(current, std::move(done.response), false, now);
}

void ToolkitTerminal::send(const CommandInProgress &current, cat::Response response,
                           bool fromPerson, Time now)
{
    if (!current.wantsAnswer)
        return;
    addElapsedTime(response, current.command, now - current.since);
    PortResponse out;
    out.data = cat::encode(response).value(); // an entered text has been measured
    out.secret = secretLength(response, current.command);
    out.then = m_port->traits().refresh ? whatFollows(current.command, response)
                                        : PortResponse::Then::Nothing;
    out.fromPerson = fromPerson;
    const bool resets = out.then == PortResponse::Then::Reset;
    m_port->respond(std::move(out), now);
    if (resets) {
        forgetCard(); // a new start from the beginning, the session being over
        m_events.add(SessionEnd());
    }
}

// What the card is told of a command that nobody will answer any more: what the terminal was to
// say, or that the user ended it.
void ToolkitTerminal::sendEnd(Time now)
{
    const CommandInProgress current = *std::exchange(m_toolkit.command, std::nullopt);
    const TerminalResponse ended{TerminalResponse::Result::Terminated};
    send(current, responseTo(current.command, current.ownAnswer.value_or(ended)), false, now);
}

// ---- Envelopes and ends ----

void ToolkitTerminal::sendEnvelope(Time now)
{
    PortEnvelope envelope = m_toolkit.envelopes.take();
    m_unwanted = false; // what comes now is the answer to this
    m_ending.awaited = envelope.selection || (m_ending.awaited && m_port->isInSession());
    m_port->sendEnvelope(std::move(envelope), now);
}

void ToolkitTerminal::sessionEnded()
{
    m_unwanted = false;
    m_toolkit.envelopes.selectionFollowed();
    // What waits for a person has nobody to tell any more.
    if (m_toolkit.command && !m_toolkit.command->ownAnswer) {
        m_toolkit.command.reset();
        m_toolkit.held.reset();
    }
    const bool quiet = std::exchange(m_ending.quiet, false);
    const bool awaited = std::exchange(m_ending.awaited, false);
    if (quiet || !awaited || m_toolkit.envelopes.hasSelection()) // the user has gone on
        return;
    if (m_text.shown)
        m_ending.held = true;
    else
        m_events.add(SessionEnd());
}

void ToolkitTerminal::cameToRest()
{
    if (!std::exchange(m_toolkit.rested, true) && !m_toolkit.menuSeen)
        m_port->tellMissingMenu();
}
