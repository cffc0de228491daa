#include "ReaderPort.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "toolkit/Notices.h"

using std::chrono::milliseconds;

namespace {

constexpr ToolkitPort::Time Never = ToolkitPort::Time::max();

constexpr milliseconds PresencePeriod{250};
constexpr milliseconds RetryPeriod{1000};
constexpr int MaxDoublings = 5; // of the retry period
// Without a word from the toolkit for so long, its start has come to rest.
constexpr milliseconds RestTime{2000};
constexpr int FreeChain = 64;
constexpr milliseconds ChainStep{10}, LongestChainDelay{1000};

} // namespace

ReaderPort::ReaderPort(std::unique_ptr<CardChannel> channel, std::string name, PortReports &reports)
    : m_channel(std::move(channel))
    , m_name(std::move(name))
    , m_reports(reports)
    , m_start(*this)
{
}

ReaderPort::~ReaderPort()
{
    close();
}

// ---- Presence ----

void ReaderPort::open(PortEvents &events, Time now)
{
    m_events = &events;
    m_place = Place::Awaited;
    m_lastTrouble.clear();
    m_presenceAt = m_retryAt = now;
}

void ReaderPort::start(Time)
{
    if (m_place == Place::Announced)
        m_place = Place::InUse;
}

void ReaderPort::close()
{
    forgetCard();
    if (std::exchange(m_place, Place::Closed) != Place::Closed)
        m_channel->disconnect();
}

void ReaderPort::connect(Time now)
{
    const CardChannel::Status status = m_channel->connect();
    if (status.state == CardChannel::State::Ready) {
        forgetCard();
        m_name = status.reader;
        m_lastTrouble.clear();
        if (status.chosenAmong > 1)
            m_reports.noticed(
                noticeOf(NoticeId::ReaderChosen, {m_name, std::to_string(status.chosenAmong)}));
        m_presenceAt = now + PresencePeriod;
        m_place = Place::Announced;
        m_events->arrived(now);
        return;
    }
    const std::string &trouble = status.trouble.text;
    if (!trouble.empty() && std::exchange(m_lastTrouble, trouble) != trouble)
        m_reports.noticed(status.trouble);
    m_retryAt = now + RetryPeriod;
    m_events->departed();
}

// The card is gone, or answers no more.
void ReaderPort::lose(Time now)
{
    forgetCard();
    m_channel->disconnect();
    m_place = Place::Awaited;
    // A card that breaks down whenever it is spoken to must not keep everybody busy.
    m_retryAt = now + RetryPeriod * (1 << std::min(std::max(m_failures - 1, 0), MaxDoublings));
    m_presenceAt = now + PresencePeriod;
    m_events->departed();
}

void ReaderPort::forgetCard()
{
    pinDone();
    m_start.forgetCard();
    m_toolkit = Toolkit();
}

// Not a SIM: whoever needs the card may have it.
void ReaderPort::leaveAlone()
{
    tell(NoticeId::NoSim);
    m_channel->disconnect();
    m_place = m_channel->passOver() ? Place::Awaited : Place::NoSim;
    m_retryAt = Time();
    m_events->departed();
}

// A card was put in or taken out, of any reader.
void ReaderPort::lookAgain(Time now)
{
    m_presenceAt = std::min(m_presenceAt, now);
    if (m_failures == 0)
        m_retryAt = std::min(m_retryAt, now);
    if (m_place == Place::NoSim && m_channel->passOver())
        m_place = Place::Awaited;
}

// A new start from the beginning.
void ReaderPort::reset(Time now)
{
    if (m_channel->connect().state != CardChannel::State::Ready) {
        lose(now);
        return;
    }
    forgetCard();
    m_presenceAt = now + PresencePeriod;
}

void ReaderPort::restart(Time now)
{
    if (m_place == Place::InUse)
        reset(now);
}

void ReaderPort::work(Time now)
{
    if (m_place == Place::Closed)
        return;
    if (m_place == Place::Awaited) {
        if (m_failures > 0 && now >= m_presenceAt) {
            m_presenceAt = now + PresencePeriod;
            if (!m_channel->isPresent()) {
                m_failures = 0;
                m_retryAt = now;
            }
        }
        if (now >= m_retryAt)
            connect(now);
        return;
    }
    if (now >= m_presenceAt) {
        m_presenceAt = now + PresencePeriod;
        if (!m_channel->isPresent()) {
            m_failures = 0;
            lose(now);
            m_retryAt = now; // nothing to be careful about: it was taken out
            return;
        }
    }
    if (m_place != Place::InUse)
        return;
    if (m_start.isDone())
        run(now);
    else if (now >= m_toolkit.busy.at())
        m_start.takeStep(now);
}

ToolkitPort::Time ReaderPort::wakeUp() const
{
    switch (m_place) {
    case Place::Closed:
        return Never;
    case Place::Awaited:
        return m_failures > 0 ? std::min(m_retryAt, m_presenceAt) : m_retryAt;
    case Place::InUse:
        return std::min(m_presenceAt, nextWork());
    case Place::Announced:
    case Place::NoSim:
        break;
    }
    return m_presenceAt;
}

// ---- The start ----

// Nothing, too, where the card is busy and the step is to be taken again.
std::optional<ApduAnswer> ReaderPort::sendStep(Apdu command, Time now)
{
    auto answer = sendOnce(std::move(command), now);
    if (answer && isToBeRepeated(answer->status, now))
        return std::nullopt;
    return answer;
}

void ReaderPort::tell(NoticeId id, std::optional<uint16_t> status)
{
    if (status)
        m_reports.noticed(noticeOf(id, {m_name, statusDigits(*status)}, statusMeaning(*status)));
    else
        m_reports.noticed(noticeOf(id, {m_name}));
}

void ReaderPort::profileSent(bool taken, Time now)
{
    m_toolkit.restAt = taken ? now + RestTime : now; // no menu will come
    m_toolkit.pollAt = now + *m_toolkit.pollInterval;
}

void ReaderPort::wantPin(std::optional<int> triesLeft, bool wrong)
{
    PinRequest request;
    request.card = m_name;
    request.triesLeft = triesLeft.value_or(0);
    request.wrong = wrong;
    m_pinRequest = request.id;
    m_reports.pinWanted(request);
}

void ReaderPort::pinDone()
{
    if (std::exchange(m_pinRequest, std::nullopt))
        m_reports.pinDone();
}

void ReaderPort::answerPin(int request, const Pin &pin, Time)
{
    if (m_pinRequest == request)
        m_start.answerPin(pin);
}

void ReaderPort::tellMissingMenu()
{
    tell(m_start.noMenu(), m_start.noMenuStatus());
}

// ---- The toolkit at work ----

void ReaderPort::respond(PortResponse response, Time)
{
    if (!std::exchange(m_toolkit.open, false))
        return;
    if (response.fromPerson)
        m_toolkit.chain = 0;
    m_toolkit.response = std::move(response);
}

bool ReaderPort::isInSession() const
{
    return m_toolkit.open || m_toolkit.pending || m_toolkit.response;
}

bool ReaderPort::takesEnvelope() const
{
    return m_place == Place::InUse && m_start.isDone() && !isInSession() && !m_toolkit.envelope;
}

void ReaderPort::sendEnvelope(PortEnvelope envelope, Time)
{
    if (envelope.selection)
        m_toolkit.chain = 0;
    m_toolkit.envelope = std::move(envelope);
}

void ReaderPort::dropEnvelope()
{
    if (std::exchange(m_toolkit.envelope, std::nullopt))
        m_toolkit.busy.end();
}

void ReaderPort::setPollInterval(std::optional<milliseconds> interval, Time now)
{
    m_toolkit.pollInterval = interval;
    if (interval)
        m_toolkit.pollAt = now + *interval;
}

ToolkitPort::Time ReaderPort::nextWork() const
{
    const Time notBusy = m_toolkit.busy.at();
    if (m_start.waitsForPerson())
        return Never;
    if (!m_start.isDone())
        return notBusy;
    if (m_toolkit.open)
        return Never;
    if (m_toolkit.response || m_toolkit.pending)
        return std::max(m_toolkit.notBefore, notBusy);
    Time next = m_toolkit.envelope ? notBusy : Never;
    if (m_toolkit.pollInterval)
        next = std::min(next, m_toolkit.pollAt);
    if (!m_toolkit.rested)
        next = std::min(next, m_toolkit.restAt);
    return next;
}

void ReaderPort::run(Time now)
{
    if (m_toolkit.open)
        return;
    if (m_toolkit.response || m_toolkit.pending) {
        if (now < m_toolkit.notBefore || now < m_toolkit.busy.at())
            return;
        if (m_toolkit.response)
            sendResponse(now);
        else
            fetch(now);
        return;
    }
    if (m_toolkit.envelope && now >= m_toolkit.busy.at()) {
        passEnvelope(now);
    } else if (m_toolkit.pollInterval && now >= m_toolkit.pollAt) {
        poll(now);
    } else if (!m_toolkit.rested && now >= m_toolkit.restAt) {
        m_toolkit.rested = true;
        m_failures = 0;
        m_events->cameToRest();
    }
}

void ReaderPort::fetch(Time now)
{
    Apdu apdu = toolkitApdu(0x12, 0, 0);
    const std::optional<uint16_t> length = std::exchange(m_toolkit.pending, std::nullopt);
    apdu.expected = length;
    const auto answer = sendOnce(std::move(apdu), now);
    if (!answer)
        return;
    if (isToBeRepeated(answer->status, now)) {
        m_toolkit.pending = length;
        return;
    }
    if (!isDone(answer->status)) {
        takeStatus("FETCH", answer->status);
        return;
    }
    m_toolkit.pending.reset();
    m_toolkit.restAt = now + RestTime;
    throttle(now);
    m_toolkit.open = true;
    m_events->commandArrived(answer->data, true, now);
}

// A card that goes on and on without the person is made slower and slower.
void ReaderPort::throttle(Time now)
{
    if (now - std::exchange(m_toolkit.lastFetch, now) > 2 * LongestChainDelay)
        m_toolkit.chain = 0;
    if (++m_toolkit.chain > FreeChain)
        m_toolkit.notBefore =
            now + std::min(LongestChainDelay, ChainStep * (m_toolkit.chain - FreeChain));
}

void ReaderPort::sendResponse(Time now)
{
    PortResponse &response = *m_toolkit.response;
    const PortResponse::Then then = response.then;
    if (then == PortResponse::Then::Reset) {
        reset(now);
        return;
    }
    Apdu apdu = toolkitApdu(0x14, 0, 0);
    apdu.data = response.data;
    apdu.secret = response.secret;
    const auto answer = sendOnce(std::move(apdu), now);
    if (!answer || isToBeRepeated(answer->status, now)) // without an answer the command is gone
        return;
    explicit_bzero(response.data.data(), response.data.size());
    m_toolkit.response.reset();
    m_failures = 0;
    m_toolkit.restAt = now + RestTime;
    takeStatus("TERMINAL RESPONSE", answer->status);
    if (then == PortResponse::Then::SelectAgain)
        m_start.selectAgain();
}

void ReaderPort::passEnvelope(Time now)
{
    Apdu apdu = toolkitApdu(0xc2, 0, 0);
    apdu.data = m_toolkit.envelope->data;
    apdu.expected = 256;
    const auto answer = sendOnce(std::move(apdu), now);
    if (!answer || isToBeRepeated(answer->status, now))
        return;
    const PortEnvelope sent = *std::exchange(m_toolkit.envelope, std::nullopt);
    takeStatus(sent.name, answer->status);
}

void ReaderPort::poll(Time now)
{
    m_toolkit.pollAt = now + *m_toolkit.pollInterval;
    Apdu apdu = toolkitApdu(0xf2, 0, m_start.isUicc() ? 0x0c : 0);
    if (!m_start.isUicc())
        apdu.expected = m_toolkit.statusLength;
    const auto answer = sendOnce(std::move(apdu), now);
    if (answer && !answer->data.empty())
        m_toolkit.statusLength = static_cast<uint16_t>(std::min<size_t>(answer->data.size(), 256));
}

// What the card says to a terminal response, an envelope, or a FETCH that failed.
void ReaderPort::takeStatus(const char *what, uint16_t status)
{
    if (statusKind(status) == StatusKind::ProactiveCommand)
        return; // send() has seen it
    if (!isDone(status))
        m_reports.noticed(noticeOf(NoticeId::CardRefuses, {m_name, what, statusDigits(status)},
                                   statusMeaning(status)));
    m_toolkit.pending.reset();
    m_events->sessionEnded();
}

// True where the card's toolkit is busy: what was sent is to be sent again.
bool ReaderPort::isToBeRepeated(uint16_t status, Time now)
{
    if (statusKind(status) == StatusKind::Busy && m_toolkit.busy.isWorthIt(now))
        return true;
    m_toolkit.busy.end();
    return false;
}

std::optional<ApduAnswer> ReaderPort::sendOnce(Apdu command, Time now)
{
    auto answer = exchange(*m_channel, command,
                           [this](const PortTraffic &traffic) { m_reports.exchanged(traffic); });
    if (!answer) {
        m_failures = m_channel->isPresent() ? m_failures + 1 : 0;
        if (m_failures == 1)
            tell(NoticeId::CardSilent);
        lose(now);
    } else if (statusKind(answer->status) == StatusKind::ProactiveCommand) {
        m_toolkit.pending = answer->status & 0xff ? answer->status & 0xff : 256;
    }
    return answer;
}

Apdu ReaderPort::toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const
{
    return {uint8_t(m_start.isUicc() ? 0x80 : 0xa0), ins, p1, p2};
}
