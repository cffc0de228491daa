#include "ModemToolkit.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ModemTraffic.h"
#include "cat/Command.h"

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr ToolkitPort::Time Never = ToolkitPort::Time::max();

constexpr milliseconds RestTime = seconds(5); // without a menu so long, none will come
// Without a word so long, the session is over; sooner where the card said that nothing follows.
constexpr milliseconds IdleTime = seconds(5), ShortIdleTime = seconds(2);
// No card takes a response and comes up with the same command once more as quickly as this.
constexpr milliseconds QuickestCard{50};
constexpr uint16_t NothingFollows = 0x9000;

} // namespace

void ModemToolkit::run(Time now)
{
    m_running = true;
    m_restAt = now + RestTime;
}

void ModemToolkit::forget()
{
    m_running = m_open = m_overtaken = m_endTold = m_envelopeSent = false;
    m_command.clear();
    m_response.reset();
    m_sent.reset();
    m_envelope.reset();
    m_busy.end();
    m_restAt.reset();
    m_endAt.reset();
}

// ---- From the card ----

// Some modems tell a command twice, above all the menu where the toolkit is taken.  The answer to
// the one is the answer to the other, and the card wants only one.  But a card may well ask the
// same thing again, which a modem may tell before it tells that it has taken the answer to the
// first.
bool ModemToolkit::isRepeated(cat::ByteView command, Time now) const
{
    if (!std::equal(command.begin(), command.end(), m_command.begin(), m_command.end()))
        return false;
    if (m_open || m_response)
        return true;
    return m_sent && !m_overtaken &&
        (now - m_sentAt < QuickestCard ||
         std::holds_alternative<cat::SetUpMenu>(cat::decode(command).body));
}

void ModemToolkit::commandArrived(cat::ByteView command, bool wantsAnswer, Time now)
{
    if (wantsAnswer && isRepeated(command, now))
        return;
    m_endAt.reset();
    if (m_restAt)
        m_restAt = now + RestTime;
    if (wantsAnswer) {
        m_command = command.copy();
        m_open = true;
        m_response.reset(); // the answer to the command before comes too late
        m_overtaken = m_sent.has_value();
        m_endTold = false;
    } else if (!isInSession()) {
        m_endAt = now + IdleTime; // what the modem does by itself ends some time, too
    }
    m_reports.exchanged(fetchOf(command));
    m_events->commandArrived(command, wantsAnswer, now);
}

void ModemToolkit::sessionEnded()
{
    m_endAt.reset();
    if (isChosen() && !m_open)
        return; // the session that is over is one that the person has left
    m_open = false;
    m_endTold = m_sent.has_value();
    m_events->sessionEnded();
}

// ---- To the card ----

void ModemToolkit::respond(PortResponse response)
{
    m_open = false;
    m_response = std::move(response);
}

bool ModemToolkit::expectsCommand() const
{
    return m_envelope || m_response || m_sent || m_endAt;
}

bool ModemToolkit::takesEnvelope() const
{
    return m_running && !m_open && !m_response && !m_envelope;
}

void ModemToolkit::sendEnvelope(PortEnvelope envelope)
{
    if (envelope.selection)
        m_endAt.reset(); // of a session that the person has left
    m_envelope = std::move(envelope);
}

void ModemToolkit::dropEnvelope()
{
    if (!m_envelope || m_envelopeSent)
        return;
    m_envelope.reset();
    m_busy.end();
}

std::optional<ModemToolkit::Message> ModemToolkit::next(Time now)
{
    if (!m_running || m_sent || m_envelopeSent || now < m_busy.at())
        return std::nullopt;
    if (m_response) {
        m_sent = std::exchange(m_response, std::nullopt);
        m_sentAt = now;
        return Message{Message::Kind::Response, m_sent->data, m_sent->secret};
    }
    if (!m_envelope || m_open)
        return std::nullopt;
    m_envelopeSent = true;
    return Message{Message::Kind::Envelope, m_envelope->data};
}

void ModemToolkit::sendAgain()
{
    m_envelopeSent = false;
    const bool overtaken = std::exchange(m_overtaken, false);
    auto sent = std::exchange(m_sent, std::nullopt);
    if (sent && !overtaken)
        m_response = std::move(sent);
}

bool ModemToolkit::sendLater(Time now)
{
    const bool isWorthIt = !sending().empty() && m_busy.isWorthIt(now);
    if (isWorthIt)
        sendAgain();
    return isWorthIt;
}

std::string ModemToolkit::sending() const
{
    return m_sent ? "TERMINAL RESPONSE" : m_envelopeSent ? m_envelope->name : "";
}

void ModemToolkit::answered(Outcome outcome, Time now)
{
    m_busy.end();
    if (m_sent)
        responseAnswered(outcome, now);
    else if (m_envelopeSent)
        envelopeAnswered(std::move(outcome), now);
}

void ModemToolkit::responseAnswered(const Outcome &outcome, Time now)
{
    PortResponse sent = std::move(*std::exchange(m_sent, std::nullopt));
    m_reports.exchanged(terminalResponseOf(sent, outcome.taken, outcome.status));
    explicit_bzero(sent.data.data(), sent.data.size());
    const bool endTold = std::exchange(m_endTold, false);
    if (!std::exchange(m_overtaken, false) && !endTold && !isChosen())
        m_endAt = now + (outcome.status == NothingFollows ? ShortIdleTime : IdleTime);
}

void ModemToolkit::envelopeAnswered(Outcome outcome, Time now)
{
    m_envelopeSent = false;
    const PortEnvelope sent = std::move(*std::exchange(m_envelope, std::nullopt));
    m_reports.exchanged(envelopeOf(sent, std::move(outcome.data), outcome.taken, outcome.status));
    if (m_open || m_response || (m_endAt && !sent.selection))
        return; // the session has gone on
    // A modem that fetches what follows the choice may call the card's status normal all the same.
    const bool nothingFollows = outcome.status == NothingFollows;
    if (!outcome.taken || (nothingFollows && !sent.selection))
        sessionEnded();
    else
        m_endAt = now + (nothingFollows ? ShortIdleTime : IdleTime);
}

// ---- Time ----

void ModemToolkit::work(Time now)
{
    if (m_restAt && now >= *m_restAt) {
        m_restAt.reset();
        m_events->cameToRest();
    }
    if (m_endAt && now >= *m_endAt)
        sessionEnded();
}

ModemToolkit::Time ModemToolkit::wakeUp() const
{
    const bool isFree = m_running && !m_sent && !m_envelopeSent;
    const Time sending = isFree && (m_response || (m_envelope && !m_open)) ? m_busy.at() : Never;
    return std::min({sending, m_restAt.value_or(Never), m_endAt.value_or(Never)});
}
