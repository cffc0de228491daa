#include "AtPort.h"

#include <algorithm>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr milliseconds ShortPatience = seconds(3), Patience = seconds(10),
                       CardPatience = seconds(40);
constexpr milliseconds SettleTime = seconds(3);

// 3GPP TS 27.007 clause 9.2.1.
enum MobileError {
    NoSim = 10,
    PukWanted = 12,
    SimFailure = 13,
    SimBusy = 14,
    SimWrong = 15,
    WrongPassword = 16
};

constexpr const char *CardState = "+CPIN", *AskCardState = "AT+CPIN?", *SwitchOn = "AT+CFUN=1";
constexpr uint16_t ToolkitBusy = 0x9300;

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

// Of the command as such; what the card lacks may come.
bool isRefusal(const AtChannel::Answer &answer)
{
    const bool isCards = answer.error() >= NoSim && answer.error() <= WrongPassword;
    return answer.final && !answer.isOk() && !isCards;
}

// What "+CPIN" says of a card that cannot be used; no standard has these words.
bool isMissing(std::string_view cardState)
{
    return cardState == "NOT INSERTED" || cardState == "SIM REMOVED";
}

} // namespace

AtPort::AtPort(std::string device, cat::Bytes profile, PortReports &reports, AtDialect dialect)
    : ModemPort(std::move(device), reports)
    , m_profile(std::move(profile))
    , m_dialect(std::move(dialect))
    , m_channel([this](const std::string &line, Time now) { return takeUnasked(line, now); },
                reports)
{
}

AtPort::~AtPort()
{
    close();
}

// ---- The device ----

void AtPort::openDevice(Time now)
{
    using State = SerialPort::State;
    if (!isDevice(true, now))
        return;
    const State before = std::exchange(m_found, m_channel.open(m_device));
    if (m_found == State::Open)
        return;
    if (m_found == State::InUse && before != m_found) { // it takes time to find out
        const std::string others = programsWith(m_device);
        tell(others.empty() ? NoticeId::ModemInUse : NoticeId::ModemInUseBy, others);
    } else if (m_found != State::InUse) {
        tell(m_found == State::Denied       ? NoticeId::ModemDenied
                 : m_found == State::NoPort ? NoticeId::ModemIsNone
                                            : NoticeId::ModemMissing);
    }
    m_stepAt = now + RetryPeriod;
    m_events->departed();
}

void AtPort::start(Time now)
{
    ModemPort::start(now);
    if (isInUse() && !m_early.empty())
        m_toolkit.commandArrived(std::exchange(m_early, {}), true, now);
}

void AtPort::disconnect(bool taken)
{
    if ((taken || m_switchedOff) && m_channel.isOpen())
        giveBack(taken);
    m_channel.close();
    m_early.clear();
    m_found = SerialPort::State::Open;
    m_settledAt = {};
    m_quotes = true;
    m_quotesKnown = false;
}

// What was written for this run only; the modem takes it at the next start of the card.  Whoever
// has switched the card off, and the network with it, must switch it on again.
void AtPort::giveBack(bool taken)
{
    constexpr milliseconds Moment(300), SwitchTime(2500);
    const auto isDone = [&](const std::string &command) {
        return m_channel.write(command) && m_channel.isAnswered(Moment);
    };
    const bool isFree =
        !m_channel.isWaiting() || m_channel.isAnswered(m_switchedOff ? SwitchTime : Moment);
    if (isFree && taken && isDone(withDigits(m_dialect.profileWrite, "0,", {})))
        isDone("AT" + m_dialect.download + "=0");
    if (m_switchedOff && isDone(SwitchOn) && !isFree)
        m_channel.isAnswered(Moment); // that was the answer to what was said before
}

// ---- Lines ----

bool AtPort::takeUnasked(const std::string &line, Time now)
{
    if (const auto value = valueOf(line, m_dialect.command)) {
        takeCommand(*value, now);
        return true;
    }
    if (valueOf(line, m_dialect.end)) {
        if (isInUse())
            m_toolkit.sessionEnded();
        return true;
    }
    const auto cardState = valueOf(line, CardState);
    if (cardState && !m_channel.isWaitingFor(AskCardState)) {
        takeCardState(*cardState, now);
        return true;
    }
    return valueOf(line, m_dialect.state).has_value();
}

void AtPort::takeCommand(std::string_view value, Time now)
{
    m_refusesToolkit = false;
    const auto bytes = bytesOf(parameters(value).front());
    if (!bytes || bytes->empty())
        tell(NoticeId::ModemUnreadable);
    else if (!isInUse())
        m_early = *bytes;
    else if (!isStartingAnew())
        m_toolkit.commandArrived(*bytes, true, now);
}

// Some modems tell by themselves what becomes of their card.
void AtPort::takeCardState(std::string_view state, Time now)
{
    if (state == "READY")
        lookAgain(now);
    else
        cardIsTaken(isMissing(state), m_channel.isWaiting(), now);
}

// `secret`: so many characters at the end must not be written down.
void AtPort::say(std::string command, milliseconds patience, Handler done, Time now, size_t secret)
{
    const auto answered = [this, done](const Answer &answer, Time at) {
        if (isInDoubt() && answer.final)
            m_settledAt = at + SettleTime;
        if (!isWorthAsking(answer.final.has_value()))
            lose(at);
        else if (done && wantsAnswer())
            (this->*done)(answer, at);
    };
    if (!m_channel.say(std::move(command), secret, patience, answered, now)) {
        tell(NoticeId::ModemGone);
        lose(now);
    }
}

// ---- The start ----

void AtPort::enter(Stage stage)
{
    switch (stage) {
    case Stage::Modem:
        m_step = Step::Probe;
        break;
    case Stage::SwitchOff:
        m_step = Step::SwitchOff;
        break;
    case Stage::Card:
    case Stage::Pin:
        m_step = Step::ReadPin;
        break;
    case Stage::EnterPin:
        m_step = Step::EnterPin;
        break;
    case Stage::Toolkit:
        m_step = Step::AskInterface;
        m_refusesToolkit = true; // until it takes anything
        break;
    }
}

void AtPort::takeStep(Time now)
{
    const std::string at = "AT";
    switch (m_step) {
    case Step::Probe:
        return say(at, ShortPatience, &AtPort::stepDone, now);
    case Step::EchoOff:
        return say("ATE0", Patience, &AtPort::stepDone, now);
    case Step::ErrorNumbers:
        return say("AT+CMEE=1", Patience, &AtPort::stepDone, now);
    case Step::SwitchOff:
        return say("AT+CFUN=4", CardPatience, &AtPort::stepDone, now);
    case Step::SwitchOn:
        m_switchedOff = false; // what comes from now on is the new start's
        return say(SwitchOn, CardPatience, &AtPort::stepDone, now);
    case Step::ReadPin:
        return say(AskCardState, Patience, &AtPort::pinRead, now);
    case Step::EnterPin: {
        std::string command;
        command.reserve(32); // no copy of the PIN is to stay behind
        command.append("AT+CPIN=\"").append(pin().digits(), pin().size()) += '"';
        return say(std::move(command), CardPatience, &AtPort::pinSent, now, pin().size() + 1);
    }
    case Step::AskInterface:
        return say(at + m_dialect.profileWrite + "=?", Patience, &AtPort::stepDone, now);
    case Step::ReadProfiles:
        return say(at + m_dialect.profileRead, Patience, &AtPort::stepDone, now);
    case Step::WriteProfile:
        m_taken = true;
        return say(withDigits(m_dialect.profileWrite, "0,", m_profile), Patience, &AtPort::stepDone,
                   now);
    case Step::Download:
        return say(at + m_dialect.download + "=1,1", Patience, &AtPort::stepDone, now);
    case Step::Activate:
        return say(at + m_dialect.activate + "=1", Patience, &AtPort::stepDone, now);
    }
}

// No modem is to be refused for what it does not know: whether its toolkit works shows later.
void AtPort::stepDone(const Answer &answer, Time now)
{
    m_stepAt = now;
    if (m_step == Step::Probe && !answer.final)
        return;
    if (answer.error() == SimBusy) {
        m_stepAt = now + RetryPeriod;
        return;
    }
    if (m_step >= Step::AskInterface)
        m_refusesToolkit &= isRefusal(answer);
    if (m_step == Step::WriteProfile && isRepeated(answer))
        return;
    if (m_step == Step::Activate)
        m_toolkit.run(now);
    else if (m_step == Step::ErrorNumbers)
        m_step = Step::ReadPin; // the card is switched off and on for nobody but a person
    else
        m_step = static_cast<Step>(static_cast<int>(m_step) + 1);
}

void AtPort::pinRead(const Answer &answer, Time now)
{
    const auto isState = [](const std::string &line) { return valueOf(line, CardState); };
    const auto line = std::find_if(answer.lines.begin(), answer.lines.end(), isState);
    const std::string_view state =
        line == answer.lines.end() ? std::string_view() : *valueOf(*line, CardState);
    const int error = answer.error();
    if (error == NoSim || error == SimFailure || error == SimWrong || isMissing(state)) {
        tell(NoticeId::ModemNoSim);
        m_early.clear(); // it was that card's
        cardIsGone(now);
    } else if (error == SimBusy || state == "NOT READY") {
        if (!isInUse())
            m_events->departed();
        m_stepAt = now + RetryPeriod;
    } else if (!isInUse()) {
        cardIsThere(now);
    } else if (state == "SIM PIN" && !isPinDeclined()) {
        wantPin(0, now);
    } else {
        if (state == "SIM PUK" || error == PukWanted)
            goOnWithoutPin(NoticeId::PinBlocked);
        goTo(Stage::Toolkit, now);
    }
}

void AtPort::pinSent(const Answer &answer, Time now)
{
    const bool wrong = answer.error() == WrongPassword;
    if (answer.isOk() || wrong || !answer.final) {
        pinEntered(wrong, now); // the last wrong one has blocked it
    } else {
        goOnWithoutPin(answer.error() == PukWanted ? NoticeId::PinBlocked
                                                   : NoticeId::ModemRefusesPin);
        goTo(Stage::Toolkit, now);
    }
}

// ---- The toolkit at work ----

void AtPort::send(const ModemToolkit::Message &message, Time now)
{
    const bool isResponse = message.kind == ModemToolkit::Message::Kind::Response;
    say(withDigits(isResponse ? m_dialect.response : m_dialect.envelope, "", message.data),
        Patience, isResponse ? &AtPort::responseDone : &AtPort::envelopeDone, now,
        message.secret ? 2 * message.secret + m_quotes : 0);
}

std::string AtPort::withDigits(const std::string &name, const char *before,
                               const cat::Bytes &data) const
{
    constexpr char Digits[] = "0123456789ABCDEF";
    std::string command;
    command.reserve(32 + name.size() + 2 * data.size()); // no copy of an answer is to stay behind
    command.append("AT").append(name).append("=").append(before);
    if (m_quotes)
        command += '"';
    for (const uint8_t byte : data)
        (command += Digits[byte >> 4]) += Digits[byte & 0x0f];
    if (m_quotes)
        command += '"';
    return command;
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
    messageDone(answer, {answer.isOk(), std::nullopt, {}}, Reaction::Definite, now);
}

void AtPort::envelopeDone(const Answer &answer, Time now)
{
    ModemToolkit::Outcome outcome;
    outcome.taken = answer.isOk();
    bool busy = false;
    for (const std::string &line : answer.lines) {
        if (const auto value = valueOf(line, m_dialect.envelopeStatus)) {
            outcome.status = statusOf(parameters(*value));
            continue;
        }
        auto value = valueOf(line, m_dialect.envelope);
        if (!value)
            value = valueOf(line, m_dialect.envelopeAnswerToo);
        if (!value)
            continue;
        const auto values = parameters(*value);
        outcome.data = bytesOf(values[0]).value_or(cat::Bytes());
        busy |= values.size() > 1 && (values[1] == "1" || values[1] == "2");
    }
    busy |= outcome.status == ToolkitBusy;
    messageDone(answer, std::move(outcome), busy ? Reaction::Busy : Reaction::Definite, now);
}

void AtPort::messageDone(const Answer &answer, ModemToolkit::Outcome outcome, Reaction reaction,
                         Time now)
{
    if (!answer.final)
        reaction = Reaction::Silent;
    else if (answer.error() == SimBusy)
        reaction = Reaction::Busy;
    if (reaction == Reaction::Definite && isRepeated(answer))
        m_toolkit.sendAgain();
    else
        answered(std::move(outcome), reaction, now);
    if (answer.error() == NoSim)
        cardIsGone(now);
}

// ---- Time ----

void AtPort::work(Time now)
{
    if (!isOpen())
        return;
    if (!m_channel.isOpen()) {
        if (now >= m_stepAt)
            openDevice(now);
        return;
    }
    // The answer to what has just come does not wait for another look.
    const bool speaks = !m_channel.isWaiting() && m_channel.hasJustLooked(now) && wakeUp() <= now;
    if (!speaks && !m_channel.work(now)) {
        tell(NoticeId::ModemGone);
        lose(now);
    } else if (m_channel.isOpen() && !m_channel.isWaiting() && now >= m_settledAt) {
        if (isInDoubt()) // a late answer would be taken for that to what is said next
            say("AT", ShortPatience, nullptr, now);
        else
            goOn(now);
    }
}

AtPort::Time AtPort::wakeUp() const
{
    if (m_channel.isWaiting())
        return m_channel.deadline();
    return std::max(m_settledAt, m_channel.isOpen() && isInDoubt() ? Time{} : nextTime());
}
