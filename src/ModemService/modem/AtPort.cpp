#include "AtPort.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ModemTraffic.h"
#include "cat/Hex.h"
#include "toolkit/Notices.h"

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr ToolkitPort::Time Never = ToolkitPort::Time::max();

constexpr milliseconds ShortPatience = seconds(2), Patience = seconds(10),
                       CardPatience = seconds(40);
constexpr milliseconds RetryPeriod = seconds(1);
constexpr milliseconds RestTime = seconds(5); // without a menu so long, none will come
constexpr milliseconds IdleTime = seconds(5); // without a word so long, the session is over
constexpr int MostSilences = 2;
constexpr size_t MostLines = 64; // of one answer

// 3GPP TS 27.007 clause 9.2.1.
enum MobileError { NoSim = 10, PukWanted = 12, SimFailure = 13, SimBusy = 14, SimWrong = 15 };

constexpr uint16_t ToolkitBusy = 0x9300, NothingFollows = 0x9000;

// The card's status, where the modem tells it: "+CUSATE2: 144,0".
std::optional<uint16_t> statusOf(const std::vector<std::string> &values)
{
    if (values.size() < 2)
        return std::nullopt;
    const auto sw1 = numberOf(values[0]), sw2 = numberOf(values[1]);
    if (!sw1 || !sw2)
        return std::nullopt;
    return static_cast<uint16_t>((*sw1 & 0xff) << 8 | (*sw2 & 0xff));
}

} // namespace

AtPort::AtPort(std::string device, cat::Bytes profile, PortReports &reports,
               const AtDialect &dialect)
    : m_device(std::move(device))
    , m_profile(std::move(profile))
    , m_dialect(dialect)
    , m_reports(reports)
{
}

AtPort::~AtPort()
{
    close();
}

PortTraits AtPort::traits() const
{
    PortTraits traits;
    traits.timers = traits.polling = traits.localInformation = traits.refresh = false;
    return traits;
}

// ---- The device ----

void AtPort::open(PortEvents &events, Time now)
{
    m_events = &events;
    m_place = Place::Awaited;
    m_trouble.clear();
    m_stepAt = now;
}

void AtPort::start(Time now)
{
    if (m_place != Place::Announced)
        return;
    m_place = Place::InUse;
    m_step = Step::ReadPin;
    m_stepAt = now;
    if (!m_early.empty())
        bring(std::exchange(m_early, {}), now);
}

void AtPort::close()
{
    if (m_taken)
        giveBack();
    endPinRequest();
    m_serial.close();
    m_lines.clear();
    m_exchange.reset();
    m_open = false;
    m_response.reset();
    m_sentResponse.reset();
    m_overtaken = false;
    m_envelope.reset();
    m_restAt.reset();
    m_endAt.reset();
    m_taken = false;
    m_early.clear();
    m_silences = 0;
    m_busy.end();
    m_quotes = true;
    m_quotesKnown = m_restart = m_pinDeclined = false;
    m_place = Place::Closed;
}

// What was written for this run only; the modem takes it at the next start of the card.  Nobody
// waits for its answers.
void AtPort::giveBack()
{
    m_serial.write(std::string("AT") + m_dialect.profileWrite + "=0,\"\"\r");
    m_serial.write(std::string("AT") + m_dialect.download + "=0\r");
}

void AtPort::openDevice(Time now)
{
    using State = SerialPort::State;
    const State state = m_serial.open(m_device);
    m_step = Step::Probe;
    if (state == State::Open)
        return;
    const std::string others = state == State::InUse ? programsWith(m_device) : std::string();
    NoticeId text = NoticeId::ModemMissing;
    if (state == State::Denied)
        text = NoticeId::ModemDenied;
    else if (state == State::NoPort)
        text = NoticeId::ModemIsNone;
    else if (state == State::InUse)
        text = others.empty() ? NoticeId::ModemInUse : NoticeId::ModemInUseBy;
    tell(text, others);
    retryLater(now);
    m_events->departed();
}

void AtPort::retryLater(Time now)
{
    m_stepAt = now + RetryPeriod;
}

// The modem is gone, or answers no more.
void AtPort::lose(Time now)
{
    m_taken = false; // there is nobody to give it back to
    close();
    m_place = Place::Awaited;
    retryLater(now);
    m_events->departed();
}

// ---- Lines ----

void AtPort::readLines(Time now)
{
    std::string bytes;
    const bool there = m_serial.read(bytes);
    m_lines.add(bytes);
    while (const auto line = m_lines.next()) {
        takeLine(*line, now);
        if (!m_serial.isOpen())
            return;
    }
    if (!there) {
        tell(NoticeId::ModemGone);
        lose(now);
    }
}

void AtPort::takeLine(const std::string &line, Time now)
{
    if (const auto value = valueOf(line, m_dialect.command)) {
        takeCommand(*value, now);
        return;
    }
    if (valueOf(line, m_dialect.end)) {
        // While a choice is being sent, the session that is over is one that the person has left.
        if (!m_envelope || !m_envelope->selection)
            endSession();
        return;
    }
    if (!m_exchange || valueOf(line, m_dialect.state) || line == m_exchange->command)
        return; // somebody else's, or the echo
    m_exchange->answer.final = finalResult(line);
    if (m_exchange->answer.final)
        finish(now);
    else if (m_exchange->answer.lines.size() < MostLines)
        m_exchange->answer.lines.push_back(line);
}

void AtPort::takeCommand(std::string_view value, Time now)
{
    const auto bytes = bytesOf(parameters(value).front());
    if (!bytes || bytes->empty()) {
        tell(NoticeId::ModemUnreadable);
        return;
    }
    if (m_place != Place::InUse) {
        m_early = *bytes;
        return;
    }
    if (m_restart || m_step == Step::SwitchOff)
        return; // of the card that is switched off
    bring(*bytes, now);
}

void AtPort::bring(const cat::Bytes &command, Time now)
{
    m_endAt.reset();
    if (m_restAt)
        m_restAt = now + RestTime;
    // The answer to the command before comes too late.
    m_response.reset();
    m_overtaken = m_sentResponse.has_value();
    m_open = true;
    m_reports.exchanged(fetchOf(command));
    m_events->commandArrived(command, true, now);
}

void AtPort::send(std::string command, milliseconds patience, Handler done, Time now)
{
    m_exchange = Exchange{std::move(command), done, now + patience, {}};
    std::string line = m_exchange->command + '\r';
    const bool written = m_serial.write(line);
    explicit_bzero(line.data(), line.size()); // may be a PIN
    if (!written) {
        tell(NoticeId::ModemGone);
        lose(now);
    }
}

void AtPort::finish(Time now)
{
    const Exchange exchange = std::move(*m_exchange);
    m_exchange.reset();
    if (exchange.answer.final) {
        m_silences = 0;
    } else if (++m_silences >= MostSilences) {
        tell(NoticeId::ModemSilent);
        lose(now);
        return;
    }
    (this->*exchange.done)(exchange.answer, now);
}

// ---- The start ----

void AtPort::takeStep(Time now)
{
    const std::string at = "AT";
    switch (m_step) {
    case Step::Probe:
        return send(at, ShortPatience, &AtPort::stepDone, now);
    case Step::EchoOff:
        return send("ATE0", ShortPatience, &AtPort::stepDone, now);
    case Step::ErrorNumbers:
        return send("AT+CMEE=1", ShortPatience, &AtPort::stepDone, now);
    case Step::SwitchOff:
        return send("AT+CFUN=4", CardPatience, &AtPort::stepDone, now);
    case Step::SwitchOn:
        return send("AT+CFUN=1", CardPatience, &AtPort::stepDone, now);
    case Step::ReadPin:
        return send("AT+CPIN?", Patience, &AtPort::pinRead, now);
    case Step::EnterPin: {
        std::string command;
        command.reserve(32); // no copy of the PIN is to stay behind
        command.append("AT+CPIN=\"").append(m_pin.digits(), m_pin.size()) += '"';
        send(std::move(command), CardPatience, &AtPort::pinEntered, now);
        m_pin = Pin();
        if (m_exchange)
            explicit_bzero(m_exchange->command.data(), m_exchange->command.size());
        return;
    }
    case Step::AskInterface:
        return send(at + m_dialect.profileWrite + "=?", Patience, &AtPort::stepDone, now);
    case Step::ReadProfiles:
        return send(at + m_dialect.profileRead, Patience, &AtPort::stepDone, now);
    case Step::WriteProfile:
        m_taken = true;
        return send(at + m_dialect.profileWrite + "=0," + digitsOf(m_profile), Patience,
                    &AtPort::stepDone, now);
    case Step::Download:
        return send(at + m_dialect.download + "=1,1", Patience, &AtPort::stepDone, now);
    case Step::Activate:
        return send(at + m_dialect.activate + "=1", Patience, &AtPort::stepDone, now);
    case Step::AwaitPin:
    case Step::Run:
        return;
    }
}

// No modem is to be refused for what it does not know: whether its toolkit works shows later.
void AtPort::stepDone(const Answer &answer, Time now)
{
    m_stepAt = now;
    if (m_step == Step::Probe && !answer.final)
        return;
    if (answer.final && answer.final->code == SimBusy) {
        m_stepAt = now + RetryPeriod;
        return;
    }
    if (m_step == Step::WriteProfile && isRepeated(answer))
        return;
    m_step = static_cast<Step>(static_cast<int>(m_step) + 1);
    if (m_step == Step::SwitchOff)
        m_step = Step::ReadPin; // the card is switched off and on for nobody but a person
    if (m_step == Step::Run)
        m_restAt = now + RestTime;
}

void AtPort::pinRead(const Answer &answer, Time now)
{
    const auto isState = [](const std::string &line) { return valueOf(line, "+CPIN").has_value(); };
    const auto line = std::find_if(answer.lines.begin(), answer.lines.end(), isState);
    const std::string state =
        line == answer.lines.end() ? "" : std::string(*valueOf(*line, "+CPIN"));
    const int error = answer.final ? answer.final->code.value_or(0) : 0;
    if (error == NoSim || error == SimFailure || error == SimBusy || error == SimWrong) {
        if (error != SimBusy)
            tell(NoticeId::ModemNoSim);
        noCard(now);
        return;
    }
    if (m_place == Place::Awaited) {
        m_trouble.clear();
        m_place = Place::Announced;
        m_events->arrived(now);
        return;
    }
    m_step = Step::AskInterface;
    m_stepAt = now;
    if (state == "SIM PIN" && !m_pinDeclined)
        wantPin(false);
    else if (state == "SIM PUK" || error == PukWanted)
        goOnWithoutPin(NoticeId::PinBlocked);
}

void AtPort::noCard(Time now)
{
    m_step = Step::ReadPin;
    m_stepAt = now + RetryPeriod;
    m_place = Place::Awaited;
    m_pinDeclined = false; // another card has another PIN
    m_events->departed();
}

void AtPort::wantPin(bool wrong)
{
    m_step = Step::AwaitPin;
    PinRequest request;
    request.card = m_device;
    request.wrong = wrong;
    m_pinRequest = request.id;
    m_reports.pinWanted(request);
}

void AtPort::answerPin(int request, const Pin &pin, Time now)
{
    if (m_step != Step::AwaitPin || m_pinRequest != request)
        return;
    if (pin.isValid()) {
        m_pin = pin;
        m_step = Step::EnterPin;
        m_stepAt = now;
        return;
    }
    endPinRequest();
    goOnWithoutPin(NoticeId::PinLeftOut);
    m_step = Step::AskInterface;
    m_stepAt = now;
}

void AtPort::pinEntered(const Answer &answer, Time now)
{
    constexpr int WrongPassword = 16;
    endPinRequest();
    m_step = Step::AskInterface;
    m_stepAt = now;
    if (answer.isOk())
        return;
    const int error = answer.final ? answer.final->code.value_or(0) : 0;
    if (error == WrongPassword)
        wantPin(true);
    else if (error == PukWanted)
        goOnWithoutPin(NoticeId::PinBlocked);
    else
        goOnWithoutPin(NoticeId::ModemRefusesPin);
}

void AtPort::goOnWithoutPin(NoticeId why)
{
    tell(why);
    m_pinDeclined = true;
}

void AtPort::endPinRequest()
{
    m_pin = Pin();
    if (std::exchange(m_pinRequest, std::nullopt))
        m_reports.pinDone();
}

void AtPort::tellMissingMenu()
{
    tell(NoticeId::ModemNoMenu);
}

void AtPort::restart(Time now)
{
    if (m_place != Place::InUse && m_place != Place::Awaited)
        return;
    endPinRequest();
    m_pinDeclined = false;
    m_open = false;
    m_response.reset();
    m_overtaken = true;
    m_envelope.reset();
    m_busy.end();
    m_endAt.reset();
    m_restAt.reset();
    m_restart = true;
    m_stepAt = now;
}

void AtPort::lookAgain(Time now)
{
    if (m_place == Place::Awaited)
        m_stepAt = std::min(m_stepAt, now);
}

// ---- The toolkit at work ----

void AtPort::respond(PortResponse response, Time)
{
    m_open = false;
    if (m_place == Place::InUse)
        m_response = std::move(response);
}

bool AtPort::isInSession() const
{
    return m_open || expectsCommand();
}

bool AtPort::expectsCommand() const
{
    return m_envelope || m_response || m_sentResponse || m_endAt;
}

bool AtPort::takesEnvelope() const
{
    const bool free = !m_open && !m_response && !m_envelope;
    return m_place == Place::InUse && m_step == Step::Run && !m_restart && free;
}

void AtPort::sendEnvelope(PortEnvelope envelope, Time)
{
    if (envelope.selection)
        m_endAt.reset();
    m_envelope = std::move(envelope);
}

void AtPort::dropEnvelope()
{
    const bool underWay = m_exchange && m_exchange->done == &AtPort::envelopeDone;
    if (!m_envelope || underWay)
        return;
    m_envelope.reset();
    m_busy.end();
}

void AtPort::sendWaiting(Time now)
{
    if (now < m_busy.at())
        return;
    if (m_response) {
        m_overtaken = false;
        m_sentResponse = std::exchange(m_response, std::nullopt);
        sendHexadecimal(m_dialect.response, m_sentResponse->data, &AtPort::responseDone, now);
    } else if (m_envelope) {
        sendHexadecimal(m_dialect.envelope, m_envelope->data, &AtPort::envelopeDone, now);
    }
}

void AtPort::sendHexadecimal(const char *name, const cat::Bytes &data, Handler done, Time now)
{
    send("AT" + std::string(name) + '=' + digitsOf(data), Patience, done, now);
}

std::string AtPort::digitsOf(const cat::Bytes &data) const
{
    const std::string quote = m_quotes ? "\"" : "";
    return quote + cat::toHex(data) + quote;
}

// A few modems want their hexadecimal digits bare: what was refused is sent once more like that.
// Whoever has taken them once means something else: a response must not reach the card twice.
bool AtPort::isRepeated(const Answer &answer)
{
    m_quotesKnown |= answer.isOk();
    if (!answer.final || m_quotesKnown)
        return false;
    m_quotes = !m_quotes;
    return !m_quotes;
}

void AtPort::responseDone(const Answer &answer, Time now)
{
    PortResponse sent = std::move(*std::exchange(m_sentResponse, std::nullopt));
    const bool overtaken = std::exchange(m_overtaken, false);
    const bool busy = answer.final && answer.final->code == SimBusy && m_busy.isWorthIt(now);
    if (busy || isRepeated(answer)) {
        if (!overtaken)
            m_response = std::move(sent);
        return;
    }
    m_busy.end();
    m_reports.exchanged(terminalResponseOf(sent, answer.isOk()));
    explicit_bzero(sent.data.data(), sent.data.size());
    if (!answer.isOk())
        tell(NoticeId::ModemRefuses, "TERMINAL RESPONSE");
    if (!overtaken)
        m_endAt = now + IdleTime;
}

void AtPort::envelopeDone(const Answer &answer, Time now)
{
    if (!m_envelope || isRepeated(answer))
        return;
    std::optional<uint16_t> status;
    bool busy = false;
    cat::Bytes data;
    for (const std::string &line : answer.lines) {
        if (const auto value = valueOf(line, m_dialect.envelopeStatus)) {
            status = statusOf(parameters(*value));
            continue;
        }
        auto value = valueOf(line, m_dialect.envelopeAnswer);
        if (!value)
            value = valueOf(line, m_dialect.envelopeAnswerToo);
        if (!value)
            continue;
        const auto values = parameters(*value);
        data = bytesOf(values[0]).value_or(cat::Bytes());
        busy = values.size() > 1 && (values[1] == "1" || values[1] == "2");
    }
    if ((busy || status == ToolkitBusy) && m_busy.isWorthIt(now))
        return;
    const PortEnvelope sent = std::move(*std::exchange(m_envelope, std::nullopt));
    m_busy.end();
    m_reports.exchanged(envelopeOf(sent, std::move(data), answer.isOk(), status));
    if (!answer.isOk())
        tell(NoticeId::ModemRefuses, sent.name);
    if (m_open || m_response || (m_endAt && !sent.selection))
        return; // the session has gone on
    if (!answer.isOk() || status == NothingFollows)
        endSession();
    else
        m_endAt = now + IdleTime;
}

void AtPort::endSession()
{
    m_endAt.reset();
    m_open = false;
    if (m_place == Place::InUse)
        m_events->sessionEnded();
}

// ---- Time ----

void AtPort::work(Time now)
{
    if (m_place == Place::Closed)
        return;
    if (!m_serial.isOpen()) {
        if (now >= m_stepAt)
            openDevice(now);
        return;
    }
    readLines(now);
    if (!m_serial.isOpen())
        return;
    if (m_exchange) {
        if (now >= m_exchange->deadline)
            finish(now);
        return;
    }
    if (m_place == Place::Announced)
        return;
    if (std::exchange(m_restart, false))
        m_step = Step::SwitchOff;
    if (m_step != Step::Run) {
        if (now >= m_stepAt)
            takeStep(now);
        return;
    }
    sendWaiting(now);
    if (m_restAt && now >= *m_restAt) {
        m_restAt.reset();
        m_events->cameToRest();
    }
    if (m_endAt && now >= *m_endAt)
        endSession();
}

ToolkitPort::Time AtPort::wakeUp() const
{
    if (m_place == Place::Closed || (m_place == Place::Announced && !m_exchange))
        return Never;
    if (m_exchange)
        return m_exchange->deadline;
    if (!m_serial.isOpen())
        return m_stepAt;
    if (m_restart)
        return Time{};
    if (m_step == Step::AwaitPin)
        return Never;
    if (m_step != Step::Run)
        return m_stepAt;
    Time next = m_response || m_envelope ? m_busy.at() : Never;
    next = std::min(next, m_restAt.value_or(Never));
    return std::min(next, m_endAt.value_or(Never));
}

void AtPort::tell(NoticeId id, const std::string &argument)
{
    std::vector<std::string> arguments{m_device};
    if (!argument.empty())
        arguments.push_back(argument);
    const Notice notice = noticeOf(id, std::move(arguments));
    if (std::exchange(m_trouble, notice.text) != notice.text)
        m_reports.noticed(notice);
}
