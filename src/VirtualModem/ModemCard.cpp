#include "ModemCard.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "cat/Tlv.h"

using cat::Bytes;
using cat::ByteView;
using std::chrono::seconds;

namespace {

// Types of commands and tags of data objects, ETSI TS 102 223 clauses 9.4 and 9.3.
enum : uint8_t {
    Refresh = 0x01,
    MoreTime = 0x02,
    PollInterval = 0x03,
    PollingOff = 0x04,
    SetUpMenu = 0x25,
    ProvideLocalInformation = 0x26,
    TimerManagement = 0x27,
};
enum : uint16_t { DetailsTag = 0x01, DurationTag = 0x04, TimerTag = 0x24, TimerValueTag = 0x25 };

// General results, clause 8.12.
const Bytes Performed = {0x83, 0x01, 0x00};
const Bytes NoService = {0x83, 0x02, 0x20, 0x04};
const Bytes TimerContradiction = {0x83, 0x01, 0x24};
const Bytes BeyondCapabilities = {0x83, 0x01, 0x30};
const Bytes ValuesMissing = {0x83, 0x01, 0x36};

constexpr uint8_t UiccReset = 0x04; // qualifier of REFRESH
constexpr uint16_t Done = 0x9000;
constexpr uint16_t Busy = 0x9300;
constexpr seconds UsualPollInterval(30);
constexpr seconds BusyTime(1); // between two tries

Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

uint16_t statusOf(const Bytes &answer)
{
    const size_t size = answer.size();
    return size < 2 ? 0 : static_cast<uint16_t>(answer[size - 2] << 8 | answer[size - 1]);
}

uint8_t swappedDecimal(long number)
{
    return static_cast<uint8_t>(number % 10 << 4 | number / 10 % 10);
}

// Clause 8.38: hours, minutes and seconds.
Bytes timeObject(seconds time)
{
    const long all = time.count();
    return {0xa5, 0x03, swappedDecimal(all / 3600), swappedDecimal(all / 60 % 60),
            swappedDecimal(all % 60)};
}

seconds timeFrom(ByteView value)
{
    const auto part = [&](size_t at) { return (value[at] & 15) * 10 + (value[at] >> 4); };
    return seconds(part(0) * 3600 + part(1) * 60 + part(2));
}

// Clause 8.39.
Bytes dateObject()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    const long quarters = std::abs(local.tm_gmtoff) / 900;
    const auto zone =
        static_cast<uint8_t>(swappedDecimal(quarters) | (local.tm_gmtoff < 0 ? 0x08 : 0));
    return {0xa6,
            0x07,
            swappedDecimal(local.tm_year % 100),
            swappedDecimal(local.tm_mon + 1),
            swappedDecimal(local.tm_mday),
            swappedDecimal(local.tm_hour),
            swappedDecimal(local.tm_min),
            swappedDecimal(local.tm_sec),
            zone};
}

} // namespace

struct ModemCard::Details {
    uint8_t type = 0, qualifier = 0;
    Bytes object; // as the response repeats it
    std::optional<uint8_t> timer;
    std::optional<seconds> timerValue;
    std::optional<seconds> duration;
    Bytes durationObject;

    static Details read(ByteView command)
    {
        Details details;
        const auto length = cat::readLength(command.part(1));
        cat::TlvReader reader(length ? command.part(1 + length->bytes) : ByteView());
        while (const auto tlv = reader.next())
            details.take(*tlv);
        return details;
    }

    void take(const cat::Tlv &tlv)
    {
        const ByteView value = tlv.value;
        if (tlv.tag == DetailsTag && value.size() == 3) {
            type = value[1];
            qualifier = value[2];
            object = tlv.whole.copy();
        } else if (tlv.tag == TimerTag && value.size() == 1) {
            timer = value[0];
        } else if (tlv.tag == TimerValueTag && value.size() == 3) {
            timerValue = timeFrom(value);
        } else if (tlv.tag == DurationTag && value.size() == 2) {
            const int tenths = value[0] == 0 ? 600 : value[0] == 1 ? 10 : 1;
            duration = seconds(std::max(1, value[1] * tenths / 10));
            durationObject = tlv.whole.copy();
        }
    }
};

ModemCard::ModemCard(CardFile file, Listener &listener, bool isLate)
    : m_card(std::move(file))
    , m_listener(listener)
    , m_isLate(isLate)
    , m_is2g(m_card.file().kind == CardFile::Kind::Sim)
{
}

// ---- Start and PIN ----

void ModemCard::switchOn()
{
    m_card.reset();
    m_isStarted = m_isSession = m_restarts = false;
    m_pending.reset();
    m_menu.reset();
    m_timers = {};
    m_pollInterval.reset();
    m_state = State::Off;
    m_state = stateAtStart();
    if (m_state == State::PinWanted && !m_digits.empty())
        verify(m_digits);
    else if (m_state == State::Ready && (m_isAttached || m_isLate))
        startToolkit();
}

void ModemCard::switchOff()
{
    m_state = State::Off;
    m_restarts = false;
    m_pending.reset();
    m_timers = {};
    m_pollInterval.reset();
    m_digits.clear();
}

void ModemCard::takeOut()
{
    switchOff();
    m_state = State::NoSim;
}

ModemCard::State ModemCard::stateAtStart()
{
    if (!isSim())
        return State::NoSim;
    const int tries = pinTries();
    return tries < 0 ? State::Ready : tries == 0 ? State::PinBlocked : State::PinWanted;
}

bool ModemCard::isSim()
{
    if (m_card.file().kind == CardFile::Kind::Mute)
        return false;
    const Bytes masterFile = {0x3f, 0x00};
    const uint8_t high = transmit(0xa4, 0x0c, masterFile).front();
    return high == 0x90 || high == 0x9f;
}

// Less than zero: none is wanted.
int ModemCard::pinTries()
{
    if (m_is2g) {
        // 3GPP TS 51.011 clause 9.2.1: bytes 14 and 19.
        const Bytes about = transmit(0xf2, 0, {}, 22);
        const bool isOn = about.size() > 18 && !(about[13] & 0x80);
        return isOn && m_state != State::Ready ? about[18] & 15 : -1;
    }
    const uint16_t status = statusOf(transmit(0x20, 1, {}));
    return (status & 0xfff0) == 0x63c0 ? status & 15 : status == Done ? -1 : 0;
}

bool ModemCard::verify(const std::string &digits)
{
    Bytes padded(digits.begin(), digits.end());
    padded.resize(8, 0xff);
    if (statusOf(transmit(0x20, 1, padded)) != Done) {
        m_digits.clear();
        if (pinTries() == 0)
            m_state = State::PinBlocked;
        return false;
    }
    m_digits = digits;
    m_state = State::Ready;
    if (m_isAttached || m_isLate)
        startToolkit();
    return true;
}

// ---- Commands to the card ----

Bytes ModemCard::transmit(uint8_t instruction, uint8_t p2, ByteView data,
                          std::optional<uint8_t> wanted)
{
    const bool isToolkit = instruction != 0xa4 && instruction != 0x20;
    const uint8_t family = m_is2g ? 0xa0 : isToolkit ? 0x80 : 0x00;
    Bytes command = {family, instruction, 0, p2};
    if (!data.empty())
        command = (command + Bytes{static_cast<uint8_t>(data.size())}) + data.copy();
    if (wanted)
        command.push_back(*wanted);
    return m_card.answer(command);
}

uint16_t ModemCard::send(uint8_t instruction, ByteView data)
{
    return statusOf(transmit(instruction, 0, data));
}

void ModemCard::startToolkit()
{
    m_isStarted = true;
    m_pollInterval = UsualPollInterval;
    m_pollAt = Clock::now() + *m_pollInterval;
    follow(send(0x10, m_listener.profile()));
}

void ModemCard::attach()
{
    m_isAttached = true;
    if (m_state != State::Ready)
        return;
    if (!m_isStarted) {
        startToolkit();
        return;
    }
    if (!m_menu || m_isLate || !m_listener.menuAgain(*m_menu))
        handOutPending();
}

void ModemCard::handOutPending()
{
    if (!m_pending)
        return;
    const Bytes command = *std::exchange(m_pending, std::nullopt);
    if (const auto response = handle(command))
        follow(send(0x14, *response));
}

// Fetches what waits, until it is the terminal's turn.
void ModemCard::follow(uint16_t status)
{
    while (status >> 8 == 0x91) {
        Bytes command = transmit(0x12, 0, {}, static_cast<uint8_t>(status));
        if (command.size() <= 2)
            break;
        command.resize(command.size() - 2);
        const auto response = handle(command);
        if (m_restarts) {
            endSession();
            m_state = State::Off;
            return;
        }
        if (!response)
            return;
        status = send(0x14, *response);
    }
    endSession();
}

void ModemCard::endSession()
{
    if (std::exchange(m_isSession, false))
        m_listener.sessionEnded();
}

uint16_t ModemCard::terminalResponse(ByteView response)
{
    if (m_pending) {
        const Details details = Details::read(*m_pending);
        if (details.type == SetUpMenu)
            m_menu = m_pending;
        m_pending.reset();
    }
    // The card itself tells of one that it has not asked for.
    const uint16_t status = send(0x14, response);
    follow(status);
    return status;
}

uint16_t ModemCard::envelope(ByteView envelope)
{
    const uint16_t status = send(0xc2, envelope);
    if (status != Busy)
        follow(status);
    return status;
}

// ---- Commands of the card ----

// The terminal response; nothing: it is the terminal's to give, or the card is to be restarted.
std::optional<Bytes> ModemCard::handle(const Bytes &command)
{
    const Details details = Details::read(command);
    std::optional<Bytes> result;
    switch (details.type) {
    case MoreTime:
        result = Performed;
        break;
    case PollInterval:
        result = pollInterval(details);
        break;
    case PollingOff:
        m_pollInterval.reset();
        result = Performed;
        break;
    case TimerManagement:
        result = timerManagement(details);
        break;
    case ProvideLocalInformation:
        result = details.qualifier == 3 ? Performed + dateObject()
            : details.qualifier == 4    ? Performed + Bytes{0xad, 0x02, 'e', 'n'}
                                        : NoService;
        break;
    default:
        result = handOut(details, command);
    }
    if (details.type == Refresh && details.qualifier == UiccReset && result)
        m_restarts = true;
    if (!result || m_restarts)
        return std::nullopt;
    return details.object + Bytes{0x82, 0x02, 0x82, 0x81} + *result;
}

std::optional<Bytes> ModemCard::handOut(const Details &details, const Bytes &command)
{
    if (!m_isAttached && m_isLate) {
        if (details.type != SetUpMenu)
            return BeyondCapabilities;
        return Performed;
    }
    if (!m_isAttached) {
        m_pending = command;
        return std::nullopt;
    }
    m_isSession = true;
    auto result = m_listener.proactiveCommand(command, details.type);
    if (!result) {
        m_pending = command;
        return std::nullopt;
    }
    if (details.type == SetUpMenu)
        m_menu = command;
    return Bytes{0x83, static_cast<uint8_t>(result->size())} + *result;
}

// Clause 6.4.5.
Bytes ModemCard::pollInterval(const Details &details)
{
    if (!details.duration)
        return ValuesMissing;
    m_pollInterval = *details.duration;
    m_pollAt = Clock::now() + *m_pollInterval;
    return Performed + details.durationObject;
}

// Clause 6.4.21; the qualifiers are in clause 8.6.
Bytes ModemCard::timerManagement(const Details &details)
{
    enum { Start, Deactivate, Read };
    if (!details.timer)
        return ValuesMissing;
    if (*details.timer < 1 || *details.timer > m_timers.size() || details.qualifier > Read)
        return BeyondCapabilities;
    Timer &timer = m_timers[*details.timer - 1u];
    const Bytes object = {0xa4, 0x01, *details.timer};
    const auto now = Clock::now();
    if (details.qualifier == Start) {
        if (!details.timerValue)
            return ValuesMissing;
        timer = {now, now + *details.timerValue, true};
        return Performed + object;
    }
    if (!timer.isRunning)
        return TimerContradiction + object;
    timer.isRunning = details.qualifier == Read;
    const auto left = std::chrono::ceil<seconds>(timer.end - now);
    return Performed + object + timeObject(std::max(left, seconds(0)));
}

// ---- What is done in time ----

std::optional<ModemCard::Clock::time_point> ModemCard::due() const
{
    std::optional<Clock::time_point> first;
    const auto take = [&](Clock::time_point time) { first = std::min(first.value_or(time), time); };
    if (m_restarts)
        take({});
    if (m_pollInterval)
        take(m_pollAt);
    for (const Timer &timer : m_timers) {
        // While the terminal has a command the card takes no envelope.
        if (timer.isRunning && !m_pending)
            take(timer.end);
    }
    return first;
}

void ModemCard::work()
{
    const auto now = Clock::now();
    if (m_restarts)
        switchOn();
    if (m_pollInterval && now >= m_pollAt) {
        m_pollAt = now + *m_pollInterval;
        const uint16_t status =
            m_is2g ? statusOf(transmit(0xf2, 0, {}, 22)) : statusOf(transmit(0xf2, 0x0c, {}));
        if (!m_pending)
            follow(status);
    }
    for (size_t timer = 0; timer < m_timers.size(); ++timer) {
        if (m_timers[timer].isRunning && !m_pending && now >= m_timers[timer].end)
            expire(timer);
    }
}

// Clause 7.4.
void ModemCard::expire(size_t index)
{
    Timer &timer = m_timers[index];
    const auto ran = std::chrono::round<seconds>(timer.end - timer.start);
    const Bytes envelope =
        Bytes{0xd7, 0x0c, 0x82, 0x02, 0x82, 0x81, 0xa4, 0x01, static_cast<uint8_t>(index + 1)} +
        timeObject(ran);
    const uint16_t status = send(0xc2, envelope);
    if (status == Busy) {
        timer.end = Clock::now() + BusyTime;
        return;
    }
    timer.isRunning = false;
    follow(status);
}
