#include "ToolkitCard.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <utility>

#include "CommandBridge.h"
#include "Text.h"

using cat::Bytes;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr Card::Time Never = Card::Time::max();
constexpr Card::Time AtOnce{};

constexpr milliseconds PresencePeriod{250};
constexpr milliseconds RetryPeriod{1000};
constexpr int MaxDoublings = 5; // of the retry period
constexpr milliseconds FirstBusyDelay{100}, LastBusyDelay{3200}, BusyTime{30000};
constexpr int FreeChain = 64;
constexpr milliseconds ChainStep{10}, LongestChainDelay{1000};
constexpr size_t MaxEnvelopes = 16;

enum RefreshQualifier : uint8_t { // clause 8.6
    FileChange = 0x01,
    UiccReset = 0x04,
    SessionReset = 0x06
};

cat::Response responseWith(const cat::Command &command, cat::Result result)
{
    cat::Response response;
    response.details = command.details;
    if (result == cat::Result::Performed && command.isPartial)
        result = cat::Result::PerformedPartly;
    else if (result == cat::Result::Performed && command.hasIcon)
        result = cat::Result::PerformedWithoutIcon; // no window here shows icons
    response.result = static_cast<uint8_t>(result);
    return response;
}

cat::Response unable(const cat::Command &command, uint8_t cause)
{
    cat::Response response = responseWith(command, cat::Result::TerminalUnable);
    response.additional = {cause};
    return response;
}

// General results, clause 8.12.
std::string resultInWords(const cat::Response &response)
{
    switch (static_cast<cat::Result>(response.result)) {
    case cat::Result::Performed:
        return "performed";
    case cat::Result::PerformedPartly:
        return "performed with missing information";
    case cat::Result::PerformedWithoutIcon:
        return "performed, but the icon could not be displayed";
    case cat::Result::NoResponseFromUser:
        return "no response from user";
    case cat::Result::TerminalUnable:
        return "terminal currently unable to process command";
    case cat::Result::TimerContradiction:
        return "action in contradiction with the current timer state";
    case cat::Result::BeyondCapabilities:
        return "command beyond terminal's capabilities";
    case cat::Result::TypeNotUnderstood:
        return "command type not understood by terminal";
    case cat::Result::DataNotUnderstood:
        return "command data not understood by terminal";
    case cat::Result::ValuesMissing:
        return "required values are missing";
    default:
        return "general result " + std::to_string(response.result);
    }
}

bool isPerformed(const cat::Response &response)
{
    return (response.result & 0xf0) == 0;
}

constexpr uint8_t UserClears = 0x80; // qualifier of DISPLAY TEXT, clause 8.6

// Whether the text stays until somebody clears it.
bool waitsForUser(const cat::Command &command)
{
    const auto *text = std::get_if<cat::DisplayText>(&command.body);
    return text && !text->duration && (command.details.qualifier & UserClears);
}

// Whether nobody has cleared in time a text that somebody was to clear (clause 6.4.1).  The window
// clears it then by itself, and calls that performed.
bool isOverlooked(const cat::Command &command, const TerminalResponse &response,
                  Card::Clock::duration time)
{
    constexpr milliseconds Tolerance{100}; // of the window's clock
    const auto *text = std::get_if<cat::DisplayText>(&command.body);
    if (!text || !text->duration || !(command.details.qualifier & UserClears))
        return false;
    const milliseconds limit = text->duration->time();
    return limit.count() && response.result == TerminalResponse::Result::Performed &&
        time + Tolerance >= limit;
}

// Some answers are nobody's: a browser's, a tone's, those of a text that clears itself.
bool isUsersAct(const TerminalResponse &response, bool waited)
{
    using Result = TerminalResponse::Result;
    switch (response.result) {
    case Result::Performed:
        return response.item || response.text || waited;
    case Result::BackwardMove:
    case Result::Cancelled:
    case Result::Terminated:
        return true;
    default:
        return false;
    }
}

bool isHiddenInput(const cat::Command &command)
{
    constexpr uint8_t NotRevealed = 0x04; // clause 8.6
    return std::holds_alternative<cat::GetInput>(command.body) &&
        (command.details.qualifier & NotRevealed);
}

// The text that the user entered, as the command wants it coded.
std::optional<Bytes> enteredText(const cat::Command &command, const std::string &text,
                                 std::optional<cat::TextCoding> coding)
{
    constexpr uint8_t YesNo = 0x04; // clause 8.6
    if (std::holds_alternative<cat::GetInkey>(command.body) && (command.details.qualifier & YesNo))
        return Bytes{0x04, uint8_t(text == "1" ? 1 : 0)}; // clause 8.15
    return cat::encodeTextString(text, coding.value_or(cat::TextCoding::Unpacked));
}

// The time since the command came, in its own unit (clause 6.4.2).
cat::Duration elapsed(cat::Duration duration, Card::Clock::duration time)
{
    const cat::Duration one{duration.unit, 1};
    const auto count = std::chrono::duration_cast<milliseconds>(time) / one.time();
    duration.interval = static_cast<uint8_t>(std::clamp<int64_t>(count, 0, 0xff));
    return duration;
}

} // namespace

ToolkitCard::ToolkitCard(std::unique_ptr<CardChannel> channel, std::string name,
                         std::string language, CardListener &listener)
    : m_channel(std::move(channel))
    , m_name(std::move(name))
    , m_listener(listener)
    , m_language(std::move(language))
{
}

ToolkitCard::~ToolkitCard()
{
    powerOff();
}

CardTraits ToolkitCard::traits() const
{
    CardTraits traits;
    traits.name = m_name;
    return traits;
}

// True where there were any.
template <class Event> bool ToolkitCard::forgetEvents()
{
    const auto last = std::remove_if(m_events.begin(), m_events.end(), [](const CardEvent &event) {
        return std::holds_alternative<Event>(event);
    });
    const bool any = last != m_events.end();
    m_events.erase(last, m_events.end());
    return any;
}

// ---- What the session says ----

void ToolkitCard::powerOn(Time now)
{
    forgetCard();
    m_lastTrouble.clear();
    m_presenceAt = now;
    if (m_place == Place::Announced) {
        m_place = Place::InUse;
        return;
    }
    m_place = Place::Awaited;
    m_removalTold = false;
    m_retryAt = now;
}

void ToolkitCard::powerOff()
{
    forgetCard();
    if (m_place != Place::Off)
        m_channel->disconnect();
    m_place = Place::Off;
}

void ToolkitCard::selectMenuItem(int16_t itemId, Time)
{
    if (m_place != Place::InUse)
        return;
    userActed();
    m_state.chain = 0;
    m_state.textShown = false;
    m_state.endHeld = false;
    forgetEvents<SessionEnd>(); // of the session before
    // A command that nobody was told of is not what the user has chosen.
    if (m_state.command && !m_state.command->modemAnswer && forgetEvents<ProactiveCommand>() &&
        !m_state.command->response)
        m_state.command->response = endOf(*m_state.command);
    m_state.selection = static_cast<uint8_t>(itemId);
    dropSelection();
}

// The one that is being sent, and may be waiting for a busy card.
void ToolkitCard::dropSelection()
{
    if (!m_state.envelope || !m_state.envelope->selection)
        return;
    m_state.envelope.reset();
    m_state.busyDelay = milliseconds(0);
}

void ToolkitCard::respond(const TerminalResponse &response, Time now)
{
    using Result = TerminalResponse::Result;
    if (m_state.held) { // until the text before it was answered
        if (isUsersAct(response, m_state.textWaits))
            userActed();
        present(*std::exchange(m_state.held, std::nullopt), now);
        return;
    }
    const bool fromUser = response.result != Result::NoResponse;
    if (!m_state.command || m_state.command->response) {
        // A text that the card did not wait for.
        if (!std::exchange(m_state.textShown, false))
            return;
        if (isUsersAct(response, m_state.textWaits))
            userActed();
        if (std::exchange(m_state.endHeld, false) && fromUser)
            m_events.push_back(SessionEnd());
        return;
    }

    CommandInProgress &current = *m_state.command;
    if (isOverlooked(current.command, response, now - current.since)) {
        current.response = responseWith(current.command, cat::Result::NoResponseFromUser);
        m_listener.answeredByModem(current.command.name, resultInWords(*current.response));
        return;
    }
    current.response = responseTo(current, response);
    m_state.endQuietly |= !fromUser;
    if (current.modemAnswer || !fromUser)
        return;
    if (isUsersAct(response, waitsForUser(current.command)))
        userActed();
    // Nobody is as quick as a program that answers by itself.
    if (now - current.since >= milliseconds(100))
        m_state.chain = 0;
}

cat::Response ToolkitCard::responseTo(const CommandInProgress &current,
                                      const TerminalResponse &answer)
{
    using Result = TerminalResponse::Result;
    switch (answer.result) {
    case Result::Performed: {
        cat::Response response = responseWith(current.command, cat::Result::Performed);
        if (answer.item)
            response.item = static_cast<uint8_t>(*answer.item);
        if (answer.text)
            response.text = enteredText(current.command, *answer.text, current.answerCoding);
        if (answer.text &&
            (!response.text || response.text->size() > cat::textRoom(current.command)))
            break;
        return response;
    }
    case Result::BackwardMove:
        return responseWith(current.command, cat::Result::BackwardMove);
    case Result::Cancelled:
    case Result::Terminated:
        return responseWith(current.command, cat::Result::TerminatedByUser);
    case Result::NotSupported:
        return responseWith(current.command, cat::Result::BeyondCapabilities);
    case Result::NoResponse:
        return responseWith(current.command, cat::Result::NoResponseFromUser);
    case Result::Unable:
        return unable(current.command, cat::NoService);
    case Result::Other:
        break;
    }
    return unable(current.command, cat::NoSpecificCause);
}

// What the card is told of a command that nobody will answer any more: what the modem was to say,
// or that the user ended it.
cat::Response ToolkitCard::endOf(const CommandInProgress &current)
{
    const TerminalResponse ended{TerminalResponse::Result::Terminated};
    return responseTo(current, current.modemAnswer.value_or(ended));
}

void ToolkitCard::endSession()
{
    forgetEvents<SessionEnd>();
    forgetEvents<ProactiveCommand>();
    m_state.selection.reset();
    dropSelection();
    m_state.textShown = false;
    m_state.endHeld = false;
    m_state.held.reset();
    m_state.endQuietly = m_state.command || m_state.pending;
    m_state.unwanted = m_state.pending && !m_state.command;
    if (m_state.command && !m_state.command->response)
        m_state.command->response = endOf(*m_state.command);
}

void ToolkitCard::setLanguage(const std::string &language, Time)
{
    if (std::exchange(m_language, language) == language)
        return;
    if (m_place == Place::InUse && language.size() == 2 && reportsEvent(cat::LanguageSelection))
        queueEnvelope(cat::encodeLanguageSelection(language), "EVENT DOWNLOAD (language)");
}

// ---- Presence ----

std::optional<CardEvent> ToolkitCard::nextEvent(Time now)
{
    if (m_events.empty())
        work(now);
    if (m_events.empty())
        return std::nullopt;
    CardEvent event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

ToolkitCard::Time ToolkitCard::wakeUp() const
{
    if (!m_events.empty())
        return AtOnce;
    switch (m_place) {
    case Place::Off:
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

void ToolkitCard::work(Time now)
{
    if (m_place == Place::Off)
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
    passTimers(now);
    if (m_state.step == Step::Run)
        run(now);
    else if (now >= m_state.busyAt)
        takeStep(now);
}

void ToolkitCard::connect(Time now)
{
    const CardChannel::Status status = m_channel->connect();
    if (status.state == CardChannel::State::Ready) {
        m_readerName = status.reader;
        m_lastTrouble.clear();
        if (status.chosenAmong > 1)
            tellChoice(status);
        m_presenceAt = now + PresencePeriod;
        m_place = m_removalTold ? Place::Announced : Place::InUse;
        if (std::exchange(m_removalTold, false))
            m_events.push_back(ModemReady());
        return;
    }
    const std::string &trouble = status.trouble.text;
    if (!trouble.empty() && std::exchange(m_lastTrouble, trouble) != trouble)
        m_listener.noticed(status.trouble);
    if (!std::exchange(m_removalTold, true))
        m_events.push_back(ModemRemoved());
    m_retryAt = now + RetryPeriod;
}

// The card is gone, or answers no more.
void ToolkitCard::lose(Time now)
{
    const bool told = m_place == Place::NoSim;
    forgetCard();
    m_channel->disconnect();
    m_place = Place::Awaited;
    // A card that breaks down whenever it is spoken to must not keep everybody busy.
    m_retryAt = now + RetryPeriod * (1 << std::min(std::max(m_failures - 1, 0), MaxDoublings));
    m_presenceAt = now + PresencePeriod;
    m_removalTold = true;
    if (!told)
        m_events.push_back(ModemRemoved());
}

void ToolkitCard::forgetCard()
{
    endPinRequest();
    m_events.clear();
    m_state = State();
}

// ---- The toolkit at work ----

ToolkitCard::Time ToolkitCard::nextWork() const
{
    if (m_state.step == Step::AwaitPin)
        return Never;
    if (m_state.step != Step::Run)
        return m_state.busyAt;
    const Time ready = std::max(m_state.notBefore, m_state.busyAt);
    if (m_state.command)
        return m_state.command->response ? ready : Never;
    if (m_state.pending)
        return ready;
    Time next = hasEnvelope() ? m_state.busyAt : Never;
    if (m_state.pollInterval)
        next = std::min(next, m_state.pollAt);
    if (!m_state.menuChecked)
        next = std::min(next, m_state.restAt);
    for (const Timer &timer : m_state.timers) {
        if (timer.started)
            next = std::min(next, *timer.started + timer.value);
    }
    return next;
}

void ToolkitCard::run(Time now)
{
    if (m_state.command || m_state.pending) {
        if (now < m_state.notBefore || now < m_state.busyAt)
            return;
        if (!m_state.command)
            fetch(now);
        else if (m_state.command->response)
            sendResponse(now);
        return;
    }
    if (hasEnvelope() && now >= m_state.busyAt)
        sendEnvelope(now);
    else if (m_state.pollInterval && now >= m_state.pollAt)
        poll(now);
    else
        checkMenu(now);
}

// What the modem does with a proactive command: it answers, or hands it out.
struct ToolkitCard::ModemPart {
    ToolkitCard &card;
    const cat::Command &command;
    Time now;

    void answer(cat::Result result, const std::string &details = {})
    {
        card.answerByModem(command, responseWith(command, result), now, details);
    }

    template <class Other> void operator()(const Other &) { card.handOut(command, now); }

    void operator()(const cat::MoreTime &) { answer(cat::Result::Performed); }
    void operator()(const cat::LanguageNotification &notification)
    {
        answer(cat::Result::Performed, oneLine(notification.language));
    }
    void operator()(const cat::PollingOff &)
    {
        card.m_state.pollInterval.reset();
        answer(cat::Result::Performed);
    }
    void operator()(const cat::PollInterval &interval)
    {
        cat::Duration duration = interval.duration;
        if (duration.time() < seconds(1))
            duration = {cat::Duration::Unit::Seconds, 1};
        card.m_state.pollInterval = duration.time();
        card.m_state.pollAt = now + duration.time();
        cat::Response response = responseWith(command, cat::Result::Performed);
        response.duration = duration;
        card.answerByModem(command, response, now,
                           std::to_string(duration.time().count() / 1000) + " s");
    }
    void operator()(const cat::TimerManagement &management);
    void operator()(const cat::ProvideLocalInformation &);
    void operator()(const cat::SetUpEventList &list)
    {
        const bool known = std::all_of(list.events.begin(), list.events.end(), [](uint8_t event) {
            return event == cat::UserActivity || event == cat::LanguageSelection;
        });
        if (known)
            card.m_state.eventList = list.events;
        answer(known ? cat::Result::Performed : cat::Result::BeyondCapabilities);
    }
    void operator()(const cat::Refresh &)
    {
        const uint8_t qualifier = command.details.qualifier;
        if (qualifier > SessionReset)
            answer(cat::Result::BeyondCapabilities, "qualifier " + std::to_string(qualifier));
        else
            card.handOut(command, now);
    }
};

// Clause 6.4.21; the qualifiers are in clause 8.6.
void ToolkitCard::ModemPart::operator()(const cat::TimerManagement &management)
{
    enum { Start, Deactivate, Read };
    const uint8_t action = command.details.qualifier & 0x03;
    const std::string details = "timer " + std::to_string(management.timer);
    if (management.timer < 1 || management.timer > 8 || action > Read) {
        answer(cat::Result::BeyondCapabilities, details);
        return;
    }
    Timer &timer = card.m_state.timers[management.timer - 1u];
    cat::Response response = responseWith(command, cat::Result::Performed);
    response.timer = management.timer;
    if (action == Start) {
        timer = {now, management.value.value_or(seconds(0))};
        card.answerByModem(command, response, now,
                           details + ", " + std::to_string(timer.value.count()) + " s");
        return;
    }
    if (!timer.started) {
        response.result = static_cast<uint8_t>(cat::Result::TimerContradiction);
    } else {
        const auto left = *timer.started + timer.value - now;
        response.timerValue =
            std::max(seconds(0), std::chrono::duration_cast<seconds>(left + milliseconds(999)));
        if (action == Deactivate)
            timer.started.reset();
    }
    card.answerByModem(command, response, now, details);
}

// Clause 6.4.15; the qualifiers are in clause 8.6.
void ToolkitCard::ModemPart::operator()(const cat::ProvideLocalInformation &)
{
    enum : uint8_t { DateTimeZone = 0x03, Language = 0x04 };
    // Location, network measurements, timing advance, access technology, search mode.
    static const Bytes NeedNetwork{0x00, 0x02, 0x05, 0x06, 0x09};
    const uint8_t qualifier = command.details.qualifier;
    cat::Response response = responseWith(command, cat::Result::Performed);
    std::string details = "qualifier " + std::to_string(qualifier);
    if (qualifier == DateTimeZone) {
        const std::time_t time = std::time(nullptr);
        std::tm local{};
        localtime_r(&time, &local);
        response.dateTime = cat::encodeDateTime(local);
        details = "date, time and time zone";
    } else if (qualifier == Language && card.m_language.size() == 2) {
        response.language = card.m_language;
        details = "language";
    } else {
        const bool network = std::count(NeedNetwork.begin(), NeedNetwork.end(), qualifier) != 0;
        response = unable(command, network ? cat::NoService : cat::NoSpecificCause);
    }
    card.answerByModem(command, response, now, details);
}

void ToolkitCard::fetch(Time now)
{
    Apdu apdu = toolkitApdu(0x12, 0, 0);
    const std::optional<uint16_t> length = std::exchange(m_state.pending, std::nullopt);
    apdu.expected = length;
    const auto answer = send(std::move(apdu), now);
    if (!answer)
        return;
    if (isToBeRepeated(answer->status, now)) {
        m_state.pending = length;
        return;
    }
    if (!isDone(answer->status)) {
        takeStatus("FETCH", answer->status);
        return;
    }
    m_state.pending.reset();
    m_state.restAt = now + RestTime;
    if (now - std::exchange(m_state.lastFetch, now) > 2 * LongestChainDelay)
        m_state.chain = 0;
    if (++m_state.chain > FreeChain)
        m_state.notBefore =
            now + std::min(LongestChainDelay, ChainStep * (m_state.chain - FreeChain));

    const cat::Command command = cat::decode(answer->data);
    if (command.problem != cat::Problem::None) {
        cat::Response response = responseWith(command, cat::Result::Performed);
        response.result = static_cast<uint8_t>(command.problem);
        answerByModem(command, response, now, command.reason);
        return;
    }
    std::visit(ModemPart{*this, command, now}, command.body);
}

void ToolkitCard::handOut(cat::Command command, Time now)
{
    std::optional<ProactiveCommand> proactive = toProactiveCommand(command);
    if (!proactive) {
        answerByModem(command, responseWith(command, cat::Result::BeyondCapabilities), now);
        return;
    }
    const bool byUser = !isAnsweredByModem(proactive->body);
    if (std::exchange(m_state.unwanted, false) && byUser) {
        cat::Response ended = responseWith(command, cat::Result::TerminatedByUser);
        m_state.command = CommandInProgress{std::move(command), std::nullopt, TerminalResponse(),
                                            now, std::move(ended)};
        return;
    }
    if (std::holds_alternative<cat::SetUpMenu>(command.body)) {
        if (m_state.menuChecked && !m_state.menuSeen)
            notice(NoticeId::MenuLate);
        m_state.menuSeen = true;
    }
    m_state.command = CommandInProgress{std::move(command), proactive->answerCoding, std::nullopt,
                                        now, std::nullopt};
    if (!byUser)
        m_state.command->modemAnswer = proactive->modemAnswer;
    // Two windows at a time would be one too many, and nothing may take the text's place.
    if (m_state.textShown)
        m_state.held = std::move(*proactive);
    else
        present(std::move(*proactive), now);
}

void ToolkitCard::present(ProactiveCommand proactive, Time now)
{
    CommandInProgress &current = *m_state.command;
    const auto *text = std::get_if<cat::DisplayText>(&current.command.body);
    current.since = now;
    m_state.textShown = text && text->immediateResponse;
    m_state.textWaits = waitsForUser(current.command);
    m_state.endHeld = false;
    m_state.endQuietly = false;
    m_state.endAwaited = true;
    if (m_state.textShown)
        current.response = responseWith(current.command, cat::Result::Performed);
    m_events.push_back(std::move(proactive));
}

void ToolkitCard::answerByModem(const cat::Command &command, cat::Response response, Time now,
                                const std::string &details)
{
    m_listener.answeredByModem(command.name + (details.empty() ? "" : " (" + details + ')'),
                               resultInWords(response));
    m_state.command =
        CommandInProgress{command, std::nullopt, TerminalResponse(), now, std::move(response)};
}

void ToolkitCard::sendResponse(Time now)
{
    const cat::Command &command = m_state.command->command;
    cat::Response &response = *m_state.command->response;
    const uint8_t qualifier = command.details.qualifier;
    const bool refreshes =
        isPerformed(response) && std::holds_alternative<cat::Refresh>(command.body);
    // The reset is the answer (clause 6.4.7.1).
    if (refreshes && qualifier == UiccReset) {
        resetCard(now);
        return;
    }
    const auto *inkey = std::get_if<cat::GetInkey>(&command.body);
    if (inkey && inkey->duration)
        response.duration = elapsed(*inkey->duration, now - m_state.command->since);

    Apdu apdu = toolkitApdu(0x14, 0, 0);
    std::optional<Bytes> encoded = cat::encode(response);
    if (!encoded) { // with the time that it took, the text is too long
        response = unable(command, cat::NoSpecificCause);
        encoded = cat::encode(response);
    }
    apdu.data = std::move(*encoded);
    // The text is the last object, and its first byte the coding.
    const bool hidden = isHiddenInput(command) && response.text && !response.text->empty();
    if (hidden)
        apdu.secret = response.text->size() - 1;
    const auto answer = send(std::move(apdu), now);
    if (!answer || isToBeRepeated(answer->status, now)) // without an answer the command is gone
        return;
    if (hidden)
        explicit_bzero(response.text->data(), response.text->size());
    m_state.command.reset();
    m_failures = 0;
    m_state.restAt = now + RestTime;
    takeStatus("TERMINAL RESPONSE", answer->status);
    if (refreshes && qualifier != FileChange)
        m_state.step = m_state.isUicc ? Step::SelectApplication : Step::SelectGsm;
}

// A new start from the beginning, the session being over.
void ToolkitCard::resetCard(Time now)
{
    if (m_channel->connect().state != CardChannel::State::Ready) {
        lose(now);
        return;
    }
    forgetCard();
    m_presenceAt = now + PresencePeriod;
    m_events.push_back(SessionEnd());
}

bool ToolkitCard::hasEnvelope() const
{
    return m_state.envelope || m_state.selection || !m_state.envelopes.empty();
}

void ToolkitCard::sendEnvelope(Time now)
{
    if (!m_state.envelope) {
        if (m_state.selection) {
            m_state.envelope =
                Envelope{cat::encodeMenuSelection(*m_state.selection), "MENU SELECTION", true};
            m_state.selection.reset();
        } else {
            m_state.envelope = std::move(m_state.envelopes.front());
            m_state.envelopes.pop_front();
        }
    }
    Apdu apdu = toolkitApdu(0xc2, 0, 0);
    apdu.data = m_state.envelope->data;
    apdu.expected = 256;
    m_state.endAwaited = m_state.envelope->selection;
    const auto answer = send(std::move(apdu), now);
    if (!answer || isToBeRepeated(answer->status, now))
        return;
    const char *name = m_state.envelope->name;
    m_state.envelope.reset();
    takeStatus(name, answer->status);
}

// True where the card's toolkit is busy: what was sent is to be sent again, later and later, but
// not for ever.
bool ToolkitCard::isToBeRepeated(uint16_t status, Time now)
{
    if (statusKind(status) == StatusKind::Busy) {
        if (m_state.busyDelay.count() == 0) {
            m_state.busyDelay = FirstBusyDelay;
            m_state.busyUntil = now + BusyTime;
        }
        if (now < m_state.busyUntil) {
            m_state.busyAt = now + m_state.busyDelay;
            m_state.busyDelay = std::min(2 * m_state.busyDelay, LastBusyDelay);
            return true;
        }
    }
    m_state.busyDelay = milliseconds(0);
    m_state.busyAt = now;
    return false;
}

void ToolkitCard::queueEnvelope(Bytes data, const char *name)
{
    if (m_state.envelopes.size() < MaxEnvelopes)
        m_state.envelopes.push_back({std::move(data), name});
}

bool ToolkitCard::reportsEvent(uint8_t event) const
{
    const Bytes &list = m_state.eventList;
    return std::find(list.begin(), list.end(), event) != list.end();
}

// The card asks to be told once (clause 7.5.5).
void ToolkitCard::userActed()
{
    if (!reportsEvent(cat::UserActivity))
        return;
    Bytes &list = m_state.eventList;
    list.erase(std::remove(list.begin(), list.end(), cat::UserActivity), list.end());
    queueEnvelope(cat::encodeUserActivity(), "EVENT DOWNLOAD (user activity)");
}

void ToolkitCard::poll(Time now)
{
    m_state.pollAt = now + *m_state.pollInterval;
    Apdu apdu = toolkitApdu(0xf2, 0, m_state.isUicc ? 0x0c : 0);
    if (!m_state.isUicc)
        apdu.expected = m_state.statusLength;
    const auto answer = send(std::move(apdu), now);
    if (answer && !answer->data.empty())
        m_state.statusLength = static_cast<uint16_t>(std::min<size_t>(answer->data.size(), 256));
}

void ToolkitCard::passTimers(Time now)
{
    for (size_t i = 0; i < m_state.timers.size(); ++i) {
        Timer &timer = m_state.timers[i];
        if (!timer.started || now < *timer.started + timer.value)
            continue;
        const auto ran = std::chrono::duration_cast<seconds>(now - *timer.started);
        queueEnvelope(cat::encodeTimerExpiration(static_cast<uint8_t>(i + 1), ran),
                      "TIMER EXPIRATION");
        timer.started.reset();
    }
}

void ToolkitCard::checkMenu(Time now)
{
    if (m_state.menuChecked || now < m_state.restAt)
        return;
    m_state.menuChecked = true;
    m_failures = 0;
    if (!m_state.menuSeen)
        notice(m_state.noMenu, m_state.noMenuStatus);
}

// What the card says to a terminal response, an envelope, or a FETCH that failed.
void ToolkitCard::takeStatus(const char *what, uint16_t status)
{
    if (statusKind(status) == StatusKind::ProactiveCommand)
        return; // send() has seen it
    if (!isDone(status))
        m_listener.noticed(noticeOf(NoticeId::CardRefuses, {m_readerName, what}, status));
    endOfSession();
}

void ToolkitCard::endOfSession()
{
    m_state.pending.reset();
    m_state.unwanted = false;
    const bool quiet = std::exchange(m_state.endQuietly, false);
    const bool awaited = std::exchange(m_state.endAwaited, false);
    const bool selected = m_state.selection || (m_state.envelope && m_state.envelope->selection);
    if (quiet || !awaited || selected) // selected: the user has gone on
        return;
    if (m_state.textShown)
        m_state.endHeld = true;
    else
        m_events.push_back(SessionEnd());
}

std::optional<ApduAnswer> ToolkitCard::send(Apdu command, Time now)
{
    auto answer = exchange(*m_channel, command,
                           [this](const ApduTraffic &traffic) { m_listener.exchanged(traffic); });
    if (!answer) {
        m_failures = m_channel->isPresent() ? m_failures + 1 : 0;
        if (m_failures == 1)
            notice(NoticeId::CardSilent);
        lose(now);
    } else if (statusKind(answer->status) == StatusKind::ProactiveCommand) {
        m_state.pending = answer->status & 0xff ? answer->status & 0xff : 256;
    }
    return answer;
}

Apdu ToolkitCard::toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const
{
    return {uint8_t(m_state.isUicc ? 0x80 : 0xa0), ins, p1, p2};
}

void ToolkitCard::notice(NoticeId id, std::optional<uint16_t> status)
{
    m_listener.noticed(noticeOf(id, {m_readerName}, status));
}
