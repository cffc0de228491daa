#include "ModemPort.h"

#include <algorithm>
#include <utility>

#include "DeviceFile.h"

namespace {

constexpr int MostSilences = 2;
constexpr int MostPinReadings = 5;

} // namespace

ModemPort::ModemPort(std::string device, PortReports &reports)
    : m_reports(reports)
    , m_device(std::move(device))
    , m_toolkit(reports)
{
}

PortTraits ModemPort::traits() const
{
    PortTraits traits;
    traits.timers = traits.polling = traits.localInformation = traits.refresh = false;
    return traits;
}

void ModemPort::tell(NoticeId id, const std::string &argument)
{
    Trouble trouble{id, {m_device}};
    if (!argument.empty())
        trouble.second.push_back(argument);
    if (m_trouble == trouble)
        return;
    m_trouble = trouble;
    m_reports.noticed(noticeOf(id, std::move(trouble.second)));
}

// ---- Presence ----

void ModemPort::open(PortEvents &events, Time now)
{
    m_events = &events;
    m_toolkit.open(events);
    m_trouble.reset();
    m_place = Place::Awaited;
    goTo(Stage::Modem, now);
}

void ModemPort::start(Time now)
{
    if (m_place != Place::Announced)
        return;
    m_place = Place::InUse;
    goTo(Stage::Pin, now);
}

void ModemPort::close()
{
    m_place = Place::Closed; // what the modem says meanwhile is for nobody
    disconnect(std::exchange(m_taken, false));
    endPinRequest();
    m_toolkit.forget();
    m_withoutPin.reset();
    m_silences = 0;
    m_restart = m_switchedOff = m_refusesToolkit = m_keepsMenu = false;
}

void ModemPort::lose(Time now)
{
    m_taken = false; // there is nobody to give it back to
    close();
    m_place = Place::Awaited;
    goTo(Stage::Modem, now + RetryPeriod);
    m_events->departed();
}

bool ModemPort::isDevice(bool maySerial, Time now)
{
    const DeviceFile file = deviceFileAt(m_device);
    if (file == DeviceFile::Other || (file == DeviceFile::Serial && maySerial))
        return true;
    switch (file) {
    case DeviceFile::Folder:
        tell(NoticeId::ModemIsFolder);
        break;
    case DeviceFile::NoDevice:
        tell(NoticeId::ModemIsFile);
        break;
    case DeviceFile::Serial:
        tell(NoticeId::ModemIsSerial, "at:" + m_device);
        break;
    default:
        tell(NoticeId::ModemMissing);
    }
    m_stepAt = now + RetryPeriod;
    m_events->departed();
    return false;
}

void ModemPort::cardIsThere(Time now)
{
    m_trouble.reset();
    m_place = Place::Announced;
    m_events->arrived(now);
}

void ModemPort::cardIsGone(Time now)
{
    endPinRequest();
    m_withoutPin.reset(); // another card has another PIN
    m_toolkit.forget();
    m_place = Place::Awaited;
    goTo(Stage::Card, now + RetryPeriod);
    m_events->departed();
}

void ModemPort::cardIsTaken(bool missing, bool waiting, Time now)
{
    // Between two steps, too: its PIN may be asked for.
    const bool atRest = m_toolkit.isRunning() || (missing && !waiting && !isStartingAnew());
    if (!isInUse() || !atRest)
        return;
    if (missing)
        tell(NoticeId::ModemNoSim);
    cardIsGone(now);
}

void ModemPort::lookAgain(Time now)
{
    if (m_place == Place::Awaited)
        m_stepAt = std::min(m_stepAt, now);
}

void ModemPort::restart(Time now)
{
    if (m_place != Place::InUse)
        return;
    endPinRequest();
    m_withoutPin.reset();
    m_toolkit.forget();
    m_trouble.reset(); // what is in the way then is worth telling again
    m_restart = true;
    m_stepAt = now;
}

// ---- The PIN ----

void ModemPort::wantPin(int triesLeft, Time now)
{
    if (m_pinReadings > 0) { // some take their time to believe the right one
        --m_pinReadings;
        m_stepAt = now + RetryPeriod;
        enter(Stage::Pin);
        return;
    }
    const bool wrong = m_pinWrong;
    goTo(Stage::EnterPin, Never);
    PinRequest request;
    request.card = m_device;
    request.triesLeft = triesLeft;
    request.wrong = wrong;
    m_pinRequest = request.id;
    m_reports.pinWanted(request);
}

void ModemPort::answerPin(int request, const Pin &pin, Time now)
{
    if (m_pinRequest != request || m_pin.isValid())
        return;
    if (pin.isValid()) {
        m_pin = pin;
        m_stepAt = now;
        return;
    }
    goOnWithoutPin(NoticeId::PinLeftOut);
    goTo(Stage::Toolkit, now);
}

void ModemPort::pinEntered(bool wrong, Time now)
{
    endPinRequest();
    goTo(Stage::Pin, now);
    m_pinReadings = wrong ? 0 : MostPinReadings;
    m_pinWrong = wrong;
}

void ModemPort::endPinRequest()
{
    m_pin = Pin();
    if (std::exchange(m_pinRequest, std::nullopt))
        m_reports.pinDone();
}

void ModemPort::goOnWithoutPin(NoticeId why)
{
    endPinRequest();
    tell(why);
    m_withoutPin = why;
}

// ---- The toolkit at work ----

void ModemPort::tellMissingMenu()
{
    tell(m_withoutPin == NoticeId::PinBlocked       ? NoticeId::NoMenuPinBlocked
             : m_withoutPin == NoticeId::PinLeftOut ? NoticeId::NoMenuPinLeftOut
             : m_keepsMenu                          ? NoticeId::ModemKeepsMenu
             : m_refusesToolkit                     ? NoticeId::ModemRefusesToolkit
                                                    : NoticeId::ModemNoMenu);
}

void ModemPort::respond(PortResponse response, Time)
{
    if (isInUse() && !isStartingAnew())
        m_toolkit.respond(std::move(response));
}

void ModemPort::sendEnvelope(PortEnvelope envelope, Time)
{
    m_toolkit.sendEnvelope(std::move(envelope));
}

void ModemPort::answered(ModemToolkit::Outcome outcome, Reaction reaction, Time now)
{
    if (reaction == Reaction::Busy && m_toolkit.sendLater(now))
        return;
    if (outcome.taken)
        m_trouble.reset();
    else if (reaction == Reaction::Silent)
        tell(NoticeId::ModemSilent);
    else if (!m_toolkit.sending().empty())
        tell(NoticeId::ModemRefuses, m_toolkit.sending());
    m_toolkit.answered(std::move(outcome), now);
}

// A single message may be lost on its way.
bool ModemPort::isWorthAsking(bool hasAnswered)
{
    m_silences = hasAnswered ? 0 : m_silences + 1;
    if (hasAnswered && m_trouble && m_trouble->first == NoticeId::ModemSilent)
        tell(NoticeId::ModemAnswers);
    if (m_silences < MostSilences)
        return true;
    tell(NoticeId::ModemSilent);
    return false;
}

// ---- Step by step ----

void ModemPort::goTo(Stage stage, Time at)
{
    m_pinReadings = 0;
    m_pinWrong = false;
    enter(stage);
    m_stepAt = at;
}

void ModemPort::goOn(Time now)
{
    if (m_place == Place::Announced)
        return;
    if (std::exchange(m_restart, false)) {
        m_switchedOff = true;
        goTo(Stage::SwitchOff, now);
    }
    if (!m_toolkit.isRunning()) {
        if (now >= m_stepAt)
            takeStep(now);
        return;
    }
    if (const auto message = m_toolkit.next(now))
        send(*message, now);
    m_toolkit.work(now);
}

ModemPort::Time ModemPort::nextTime() const
{
    if (m_place == Place::Closed || m_place == Place::Announced)
        return Never;
    if (m_restart)
        return Time{};
    return m_toolkit.isRunning() ? m_toolkit.wakeUp() : m_stepAt;
}
