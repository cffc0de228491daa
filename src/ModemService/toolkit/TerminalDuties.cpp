#include "TerminalDuties.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "TerminalAnswers.h"
#include "Text.h"

using cat::Bytes;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr uint8_t LastRefreshQualifier = 0x06; // clause 8.6: NAA session reset

TerminalDuties::Done beyondCapabilities(const cat::Command &command, std::string details = {})
{
    return {responseWith(command, cat::Result::BeyondCapabilities), std::move(details)};
}

} // namespace

// A function for each command that is the terminal's.
struct TerminalDuties::Visitor {
    TerminalDuties &duties;
    const cat::Command &command;
    Time now;

    using Result = std::optional<Done>;

    Done performed(std::string details = {})
    {
        return {responseWith(command, cat::Result::Performed), std::move(details)};
    }

    template <class Other> Result operator()(const Other &) { return std::nullopt; }

    Result operator()(const cat::MoreTime &) { return performed(); }
    Result operator()(const cat::LanguageNotification &notification)
    {
        return performed(oneLine(notification.language));
    }
    Result operator()(const cat::PollingOff &)
    {
        if (!duties.m_traits.polling)
            return beyondCapabilities(command);
        Done done = performed();
        done.setsPollInterval = true;
        return done;
    }
    Result operator()(const cat::PollInterval &interval)
    {
        if (!duties.m_traits.polling)
            return beyondCapabilities(command);
        cat::Duration duration = interval.duration;
        if (duration.time() < seconds(1))
            duration = {cat::Duration::Unit::Seconds, 1};
        Done done = performed(std::to_string(duration.time().count() / 1000) + " s");
        done.response.duration = duration;
        done.setsPollInterval = true;
        done.pollInterval = duration.time();
        return done;
    }
    Result operator()(const cat::TimerManagement &management)
    {
        if (!duties.m_traits.timers)
            return beyondCapabilities(command);
        return duties.manageTimer(command, management, now);
    }
    Result operator()(const cat::ProvideLocalInformation &)
    {
        if (!duties.m_traits.localInformation)
            return beyondCapabilities(command);
        return duties.tellLocalInformation(command);
    }
    Result operator()(const cat::SetUpEventList &list)
    {
        return duties.setEventList(command, list);
    }
    Result operator()(const cat::Refresh &)
    {
        const uint8_t qualifier = command.details.qualifier;
        if (qualifier <= LastRefreshQualifier)
            return std::nullopt;
        return beyondCapabilities(command, "qualifier " + std::to_string(qualifier));
    }
};

TerminalDuties::TerminalDuties(PortTraits traits, std::string language)
    : m_traits(traits)
    , m_language(std::move(language))
{
}

std::optional<TerminalDuties::Done> TerminalDuties::carryOut(const cat::Command &command, Time now)
{
    return std::visit(Visitor{*this, command, now}, command.body);
}

// Clause 6.4.21; the qualifiers are in clause 8.6.
TerminalDuties::Done TerminalDuties::manageTimer(const cat::Command &command,
                                                 const cat::TimerManagement &management, Time now)
{
    enum { Start, Deactivate, Read };
    const uint8_t action = command.details.qualifier & 0x03;
    std::string details = "timer " + std::to_string(management.timer);
    if (management.timer < 1 || management.timer > m_timers.size() || action > Read)
        return beyondCapabilities(command, std::move(details));
    Timer &timer = m_timers[management.timer - 1u];
    cat::Response response = responseWith(command, cat::Result::Performed);
    response.timer = management.timer;
    if (action == Start) {
        timer = {now, management.value.value_or(seconds(0))};
        return {response, details + ", " + std::to_string(timer.value.count()) + " s"};
    }
    if (!timer.started) {
        response.result = static_cast<uint8_t>(cat::Result::TimerContradiction);
        return {response, std::move(details)};
    }
    const auto left = *timer.started + timer.value - now;
    response.timerValue =
        std::max(seconds(0), std::chrono::duration_cast<seconds>(left + milliseconds(999)));
    if (action == Deactivate)
        timer.started.reset();
    return {response, std::move(details)};
}

// Clause 6.4.15; the qualifiers are in clause 8.6.
TerminalDuties::Done TerminalDuties::tellLocalInformation(const cat::Command &command) const
{
    enum : uint8_t { DateTimeZone = 0x03, Language = 0x04 };
    // Location, network measurements, timing advance, access technology, search mode.
    static const Bytes NeedNetwork{0x00, 0x02, 0x05, 0x06, 0x09};
    const uint8_t qualifier = command.details.qualifier;
    cat::Response response = responseWith(command, cat::Result::Performed);
    if (qualifier == DateTimeZone) {
        const std::time_t time = std::time(nullptr);
        std::tm local{};
        localtime_r(&time, &local);
        response.dateTime = cat::encodeDateTime(local);
        return {response, "date, time and time zone"};
    }
    if (qualifier == Language && m_language.size() == 2) {
        response.language = m_language;
        return {response, "language"};
    }
    const bool network = std::count(NeedNetwork.begin(), NeedNetwork.end(), qualifier) != 0;
    return {unable(command, network ? cat::NoService : cat::NoSpecificCause),
            "qualifier " + std::to_string(qualifier)};
}

TerminalDuties::Done TerminalDuties::setEventList(const cat::Command &command,
                                                  const cat::SetUpEventList &list)
{
    const bool known = std::all_of(list.events.begin(), list.events.end(), [](uint8_t event) {
        return event == cat::UserActivity || event == cat::LanguageSelection;
    });
    if (!known)
        return beyondCapabilities(command);
    m_eventList = list.events;
    return {responseWith(command, cat::Result::Performed)};
}

std::optional<PortEnvelope> TerminalDuties::expiredTimer(Time now)
{
    for (size_t i = 0; i < m_timers.size(); ++i) {
        Timer &timer = m_timers[i];
        if (!timer.started || now < *timer.started + timer.value)
            continue;
        const auto ran = std::chrono::duration_cast<seconds>(now - *timer.started);
        timer.started.reset();
        return PortEnvelope{cat::encodeTimerExpiration(static_cast<uint8_t>(i + 1), ran),
                            "TIMER EXPIRATION"};
    }
    return std::nullopt;
}

TerminalDuties::Time TerminalDuties::nextExpiry() const
{
    Time next = Time::max();
    for (const Timer &timer : m_timers) {
        if (timer.started)
            next = std::min(next, *timer.started + timer.value);
    }
    return next;
}

bool TerminalDuties::reportsEvent(uint8_t event) const
{
    return std::find(m_eventList.begin(), m_eventList.end(), event) != m_eventList.end();
}

// The card asks to be told once (clause 7.5.5).
std::optional<PortEnvelope> TerminalDuties::userActed()
{
    if (!reportsEvent(cat::UserActivity))
        return std::nullopt;
    m_eventList.erase(std::remove(m_eventList.begin(), m_eventList.end(), cat::UserActivity),
                      m_eventList.end());
    return PortEnvelope{cat::encodeUserActivity(), "EVENT DOWNLOAD (user activity)"};
}

std::optional<PortEnvelope> TerminalDuties::setLanguage(const std::string &language)
{
    if (std::exchange(m_language, language) == language)
        return std::nullopt;
    if (language.size() != 2 || !reportsEvent(cat::LanguageSelection))
        return std::nullopt;
    return PortEnvelope{cat::encodeLanguageSelection(language), "EVENT DOWNLOAD (language)"};
}
