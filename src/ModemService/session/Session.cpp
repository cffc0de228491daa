#include "Session.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "ServiceStatus.h"

using Lock = std::unique_lock<std::mutex>;

namespace {

constexpr Card::Time Never = Card::Time::max();

// A terminal begins to wait for the card's next word when the call that answered has returned, and
// takes what came before for old.  A card may be quicker than that: so much time the terminal gets.
constexpr std::chrono::milliseconds HoldBack{20};
// Whoever answers without a pause does not keep the card's word from others for ever.
constexpr std::chrono::milliseconds LongestHoldBack = 10 * HoldBack;
// A terminal that waits for the card's next word sees within 100 ms that there is one, and closes
// nothing until then.  So much time it gets before the card or the modem is told to be gone.
constexpr std::chrono::milliseconds BeforeGone = LongestHoldBack;

int32_t faultStatus(const Faults &faults, ServiceFunction function)
{
    const auto fault = faults.find(function);
    return fault == faults.end() ? StatusSuccess : fault->second;
}

bool givesDetails(ServiceFunction function)
{
    return function != ServiceFunction::AnswerInKey && function != ServiceFunction::AnswerInput &&
        function != ServiceFunction::SelectSubMenuItem &&
        function != ServiceFunction::SendNoDataResponse;
}

} // namespace

class Session::Guard {
public:
    explicit Guard(Session &session)
        : m_session(session)
        , m_lock(session.m_mutex)
    {
    }
    ~Guard()
    {
        m_lock.unlock();
        m_session.m_transcript.deliver();
    }

private:
    Session &m_session;
    Lock m_lock;
};

class Session::Answering {
public:
    explicit Answering(Session &session)
        : m_session(session)
        , m_counts(std::this_thread::get_id() != session.m_thread.get_id())
    {
        if (!m_counts)
            return;
        std::lock_guard<std::mutex> lock(m_session.m_mutex);
        ++m_session.m_answering;
    }
    ~Answering()
    {
        if (!m_counts)
            return;
        std::lock_guard<std::mutex> lock(m_session.m_mutex);
        --m_session.m_answering;
        m_session.m_heldUntil = std::max(m_session.m_heldUntil, Card::Clock::now() + HoldBack);
        m_session.m_alarm.ring();
    }
    Answering(const Answering &) = delete;
    Answering &operator=(const Answering &) = delete;

private:
    Session &m_session;
    const bool m_counts;
};

Session::Session()
    : m_thread(&Session::run, this)
{
}

Session::~Session()
{
    stop(std::chrono::milliseconds(0));
    m_thread.join();
}

bool Session::stop(std::chrono::milliseconds patience)
{
    m_transcript.removeAllListeners();
    Lock lock(m_mutex);
    m_commandCallback = nullptr;
    m_deviceCallback = nullptr;
    m_stop = true;
    if (m_card)
        m_card->interrupt();
    m_alarm.ring();
    return m_returned.wait_for(lock, patience, [this] { return m_ended; });
}

// ---- The terminal's side ----

template <class Callback>
int32_t Session::registerCallback(ServiceFunction function, Callback &slot, Callback callback)
{
    Guard guard(*this);
    if (!callback)
        return refuse(function, std::nullopt, StatusBadArgument);
    if (const int32_t fault = faultStatus(m_traits.faults, function))
        return refuse(function, std::nullopt, fault);
    if (slot && slot != callback)
        return refuse(function, std::nullopt, StatusRegistered);
    slot = callback;
    return StatusSuccess;
}

template <class Callback>
int32_t Session::unregisterCallback(ServiceFunction function, Callback &slot, Callback callback,
                                    Running kind)
{
    {
        Guard guard(*this);
        if (const int32_t fault = faultStatus(m_traits.faults, function))
            return refuse(function, std::nullopt, fault);
        if (!callback || slot != callback)
            return refuse(function, std::nullopt, StatusNotRegistered);
        slot = nullptr;
    }
    Lock lock(m_mutex);
    if (std::this_thread::get_id() != m_thread.get_id())
        m_returned.wait(lock, [&] { return m_running != kind; });
    return StatusSuccess;
}

int32_t Session::registerCommandCallback(MOVA_STKCallback callback)
{
    return registerCallback(ServiceFunction::RegisterCallBack, m_commandCallback, callback);
}

int32_t Session::registerDeviceCallback(MOVA_DevMgrCallback callback)
{
    return registerCallback(ServiceFunction::RegisterDevMgrCallback, m_deviceCallback, callback);
}

int32_t Session::unregisterCommandCallback(MOVA_STKCallback callback)
{
    return unregisterCallback(ServiceFunction::UnRegisterCallBack, m_commandCallback, callback,
                              Running::CommandCallback);
}

int32_t Session::unregisterDeviceCallback(MOVA_DevMgrCallback callback)
{
    return unregisterCallback(ServiceFunction::UnRegisterDevMgrCallback, m_deviceCallback, callback,
                              Running::DeviceCallback);
}

int32_t Session::mainMenu(CommandMenu &menu)
{
    Guard guard(*this);
    if (const int32_t status = mainMenuStatus(ServiceFunction::GetMainMenu))
        return refuse(ServiceFunction::GetMainMenu, std::nullopt, status);
    menu = *commandMenu(m_menu->body);
    return StatusSuccess;
}

int32_t Session::selectMenuItem(int16_t itemId)
{
    constexpr ServiceFunction Function = ServiceFunction::SelectMenuItem;
    const Answering answering(*this);
    Guard guard(*this);
    if (const int32_t status = mainMenuStatus(Function))
        return refuse(Function, std::nullopt, status);
    const CommandMenuItem *item = commandMenu(m_menu->body)->find(itemId);
    if (!item)
        return refuse(Function, std::nullopt, StatusUnknownItem);

    const int16_t current = m_current ? m_current->id : int16_t(0);
    if (const auto response = closeCurrent())
        postResponse(current, *response);
    m_transcript.selection(*item);
    m_underWay = true;
    ++m_selections;
    post([this, card = m_card, itemId] {
        std::optional<TerminalResponse> response;
        {
            // The card may have sent a command before it heard of the choice.
            Guard inner(*this);
            --m_selections;
            response = closeCurrent();
        }
        if (response)
            card->respond(*response, Card::Clock::now());
        card->selectMenuItem(itemId, Card::Clock::now());
    });
    return StatusSuccess;
}

int32_t Session::details(ServiceFunction function, int16_t commandId, int32_t type,
                         CommandBody &body)
{
    Guard guard(*this);
    if (const int32_t status = commandStatus(function, commandId, type))
        return refuse(function, commandId, status);
    body = m_current->command.body;
    return StatusSuccess;
}

int32_t Session::selectSubMenuItem(int16_t commandId, int32_t action, int16_t itemId)
{
    constexpr ServiceFunction Function = ServiceFunction::SelectSubMenuItem;
    using Result = TerminalResponse::Result;
    const Answering answering(*this);
    Guard guard(*this);
    if (const int32_t status = commandStatus(Function, commandId, SelectItem::Type))
        return refuse(Function, commandId, status);
    const bool knownItem = commandMenu(m_current->command.body)->find(itemId);
    switch (action) {
    case MOVA_SUBMENU_ACTION_SELECT:
        if (!knownItem)
            return refuse(Function, commandId, StatusUnknownItem);
        answerCurrent({Result::Performed, itemId}, Function);
        return StatusSuccess;
    case MOVA_SUBMENU_ACTION_BACK:
        answerCurrent({Result::BackwardMove}, Function);
        return StatusSuccess;
    case MOVA_SUBMENU_ACTION_NONE:
        answerCurrent({Result::Terminated}, Function);
        return StatusSuccess;
    default:
        return refuse(Function, commandId, StatusBadArgument);
    }
}

int32_t Session::answer(ServiceFunction function, int16_t commandId, int32_t type,
                        const TerminalResponse &response)
{
    const Answering answering(*this);
    Guard guard(*this);
    if (function == ServiceFunction::AnswerInKey && isLate(commandId))
        return StatusSuccess;
    if (const int32_t status = commandStatus(function, commandId, type))
        return refuse(function, commandId, status);
    const auto &coding = m_current->command.answerCoding;
    const bool enters = response.result == TerminalResponse::Result::Performed && response.text;
    if (enters && coding) {
        const auto value = cat::encodeTextString(*response.text, *coding);
        if (!value)
            return refuse(function, commandId, StatusNotEncodable);
        if (value->size() > m_current->command.answerRoom)
            return refuse(function, commandId, StatusTooLong);
    }
    answerCurrent(response, function);
    return StatusSuccess;
}

int32_t Session::refuseArgument(ServiceFunction function, std::optional<int16_t> commandId)
{
    Guard guard(*this);
    return refuse(function, commandId, StatusBadArgument);
}

int32_t Session::releaseStatus(ServiceFunction function)
{
    Guard guard(*this);
    int32_t fault = faultStatus(m_traits.faults, function);
    if (!fault && function == ServiceFunction::ReleaseMenus && m_menu)
        fault = faultStatus(m_menu->faults, function);
    if (!fault && function == ServiceFunction::ReleaseSubMenus && m_current)
        fault = faultStatus(m_current->command.faults, function);
    return fault ? refuse(function, std::nullopt, fault) : StatusSuccess;
}

// ---- The network's side ----

void Session::insertCard(std::unique_ptr<Card> card)
{
    Guard guard(*this);
    if (!m_card && !card)
        return;
    const bool wasReady = m_card && !m_removed;
    forgetSession();
    if (m_card) {
        m_transcript.cardClosed();
        m_card->interrupt();
        m_oldCards.push_back(std::move(m_card));
    }
    m_menu.reset();
    m_removed = false;
    m_card = std::move(card);
    m_traits = m_card ? m_card->traits() : CardTraits();
    if (m_card)
        m_transcript.cardOpened(m_traits.name);
    if (!m_card && wasReady)
        postDevice(MOVA_DEV_EVENT_DEVICE_NOT_READY);
    if (m_card && !wasReady)
        postDevice(MOVA_DEV_EVENT_DEVICE_READY);
    if (m_card)
        post([inserted = m_card] { inserted->powerOn(Card::Clock::now()); });
}

void Session::removeModem()
{
    Guard guard(*this);
    if (!m_card || m_removed)
        return;
    post([card = m_card] { card->powerOff(); });
    loseModem();
}

void Session::insertModem()
{
    Guard guard(*this);
    if (!m_card || !m_removed)
        return;
    forgetSession();
    m_removed = false;
    m_transcript.device(true);
    postDevice(MOVA_DEV_EVENT_DEVICE_READY);
    post([card = m_card] { card->powerOn(Card::Clock::now()); });
}

void Session::endSession()
{
    Guard guard(*this);
    post([this, card = m_card] {
        if (card)
            card->endSession();
        Lock lock(m_mutex);
        reportEndOfSession(lock);
    });
}

void Session::timeOutSession()
{
    Guard guard(*this);
    post([this, card = m_card] {
        Lock lock(m_mutex);
        const bool unanswered =
            m_current && m_current->open && !isAnsweredByModem(m_current->command.body);
        lock.unlock();
        if (card && unanswered)
            card->respond({TerminalResponse::Result::NoResponse}, Card::Clock::now());
        if (card)
            card->endSession();
        lock.lock();
        reportTimeOut(lock);
    });
}

CardHost::ModemState Session::state()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_card)
        return CardHost::ModemState::NoCard;
    if (m_removed)
        return CardHost::ModemState::Removed;
    return m_underWay ? CardHost::ModemState::Busy : CardHost::ModemState::Ready;
}

bool Session::hasMenu()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_menu && !commandMenu(m_menu->body)->items.empty();
}

void Session::setCommandListener(CardHost::CommandListener listener)
{
    std::lock_guard<std::mutex> lock(m_listenerMutex);
    m_commandListener = std::move(listener);
}

void Session::withCard(std::function<void(Card &)> function, bool alsoWhileRemoved)
{
    Guard guard(*this);
    if (m_card && (!m_removed || alsoWhileRemoved))
        post([card = m_card, function = std::move(function)] { function(*card); });
}

// ---- With the lock held ----

// Success where a card can be spoken to and wants the call to work.
int32_t Session::cardStatus(ServiceFunction function) const
{
    if (!m_card)
        return StatusNoCard;
    if (m_removed)
        return StatusModemRemoved;
    return faultStatus(m_traits.faults, function);
}

int32_t Session::mainMenuStatus(ServiceFunction function) const
{
    if (const int32_t status = cardStatus(function))
        return status;
    return m_menu ? faultStatus(m_menu->faults, function) : int32_t(StatusNoMenu);
}

int32_t Session::commandStatus(ServiceFunction function, int16_t commandId, int32_t type) const
{
    if (const int32_t status = cardStatus(function))
        return status;
    if (!m_current || m_current->id != commandId)
        return StatusNotInProgress;
    const CommandBody &body = m_current->command.body;
    const bool readable = givesDetails(function) && isAnsweredByModem(body);
    if (!m_current->open && !readable)
        return StatusNotInProgress;
    const bool withoutDetails = std::holds_alternative<UnknownCommand>(body);
    if (commandType(body) != type ||
        (withoutDetails && function != ServiceFunction::SendNoDataResponse))
        return StatusWrongCommand;
    return faultStatus(m_current->command.faults, function);
}

int32_t Session::refuse(ServiceFunction function, std::optional<int16_t> commandId, int32_t status)
{
    m_transcript.refused(function, commandId, status);
    return status;
}

void Session::post(Request request)
{
    m_requests.push_back(std::move(request));
    m_alarm.ring();
}

void Session::postResponse(int16_t commandId, const TerminalResponse &response)
{
    post([this, card = m_card, commandId, response] {
        {
            // A card that does not wait may have sent another command before it heard the answer.
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_current && m_current->id != commandId)
                return;
        }
        card->respond(response, Card::Clock::now());
    });
}

void Session::answerCurrent(const TerminalResponse &response,
                            std::optional<ServiceFunction> function)
{
    m_transcript.response(m_current->id, m_current->command.body, response, function);
    m_current->open = false;
    postResponse(m_current->id, response);
}

// Ends the command in progress for the user, who went on to something else.  The result, if any, is
// still to be told to the card.
std::optional<TerminalResponse> Session::closeCurrent()
{
    if (!m_current || !m_current->open)
        return std::nullopt;
    using Result = TerminalResponse::Result;
    const CommandBody &body = m_current->command.body;
    const TerminalResponse response = isAnsweredByModem(body)
        ? m_current->command.modemAnswer
        : TerminalResponse{Result::Terminated};
    m_transcript.response(m_current->id, body, response, std::nullopt);
    dropCurrent();
    return response;
}

// What the card was about to do, and what it was to be told, does not count any more.  Whoever
// waits for its next word hears that there is none.
void Session::forgetSession()
{
    ++m_epoch;
    dropCurrent();
    if (!std::exchange(m_underWay, false))
        return;
    const int16_t id = newCommandId();
    m_transcript.endOfSession(id);
    post([this, id] {
        Lock lock(m_mutex);
        callCommand(MOVA_STKTYPE_END_SESSION, id, false, lock);
    });
}

void Session::loseModem()
{
    forgetSession();
    m_menu.reset();
    m_removed = true;
    m_transcript.device(false);
    postDevice(MOVA_DEV_EVENT_DEVICE_REMOVED);
}

void Session::postDevice(int code)
{
    post([this, code] {
        Lock lock(m_mutex);
        callDevice(code, lock);
    });
}

void Session::dropCurrent()
{
    if (!m_current)
        return;
    const auto *inkey = std::get_if<GetInkey>(&m_current->command.body);
    if (m_current->open && inkey && inkey->inputType == YesOrNo)
        m_lateKeyId = m_current->id;
    m_current.reset();
}

// A yes-no box outlives its command, and answers all the same.  To refuse that would be a
// terminal's failure to handle the command; it changes nothing, and whoever waits for the card's
// next word hears that there is none.
bool Session::isLate(int16_t keyId)
{
    if (m_lateKeyId != keyId || isCurrent(keyId))
        return false;
    m_lateKeyId.reset();
    post([this] {
        Lock lock(m_mutex);
        if (!m_current && !m_underWay)
            reportEndOfSession(lock);
    });
    return true;
}

int16_t Session::newCommandId()
{
    const bool last = m_lastCommandId == std::numeric_limits<int16_t>::max();
    m_lastCommandId = last ? int16_t(1) : int16_t(m_lastCommandId + 1);
    return m_lastCommandId;
}

Card::Time Session::deadline() const
{
    return m_current && m_current->open ? m_current->deadline : Never;
}

// ---- On the session's thread ----

void Session::run()
{
    Lock lock(m_mutex);
    while (true) {
        if (runRequest(lock))
            continue;
        if (m_stop)
            break;
        Card::Time wakeUp = Never;
        if (pollCard(lock, wakeUp) || passDeadline(lock))
            continue;
        if (!m_requests.empty() || m_stop)
            continue;
        // Nobody but this thread destroys a card.
        const Card::Time until = std::min(wakeUp, deadline());
        const int descriptor = m_card ? m_card->descriptor() : -1;
        lock.unlock();
        m_alarm.wait(until, descriptor);
        lock.lock();
    }
    const auto oldCards = std::exchange(m_oldCards, {});
    const auto card = std::exchange(m_card, nullptr);
    m_ended = true;
    m_returned.notify_all();
}

bool Session::runRequest(Lock &lock)
{
    if (m_requests.empty() && m_oldCards.empty())
        return false;
    auto oldCards = std::exchange(m_oldCards, {});
    Request request;
    if (!m_requests.empty()) {
        request = std::move(m_requests.front());
        m_requests.pop_front();
    }
    lock.unlock();
    oldCards.clear();
    if (request)
        request();
    request = nullptr; // may hold the last reference to a card
    m_transcript.deliver();
    lock.lock();
    return true;
}

bool Session::pollCard(Lock &lock, Card::Time &wakeUp)
{
    if (!m_card)
        return false;
    const std::shared_ptr<Card> card = m_card;
    const unsigned epoch = m_epoch;
    lock.unlock();
    std::optional<CardEvent> event = card->nextEvent(Card::Clock::now());
    wakeUp = card->wakeUp();
    m_transcript.deliver();
    lock.lock();
    if (!event)
        return false;
    if (epoch == m_epoch)
        handle(*event, lock);
    return true;
}

bool Session::passDeadline(Lock &lock)
{
    if (Card::Clock::now() < deadline())
        return false;
    if (isAnsweredByModem(m_current->command.body)) {
        answerCurrent(m_current->command.modemAnswer, std::nullopt);
        return true;
    }
    postResponse(m_current->id, {TerminalResponse::Result::NoResponse});
    reportTimeOut(lock);
    return true;
}

void Session::handle(CardEvent &event, Lock &lock)
{
    if (auto *command = std::get_if<ProactiveCommand>(&event)) {
        announce(std::move(*command), lock);
    } else if (std::holds_alternative<SessionEnd>(event)) {
        // The card's main menu alone, at its start, is no session that anybody saw begin.
        // Nor does the end of the session before end the one that the user has just chosen.
        if (m_underWay && m_selections == 0)
            reportEndOfSession(lock);
        dropCurrent();
    } else if (std::holds_alternative<SessionTimeOut>(event)) {
        reportTimeOut(lock);
    } else if (std::holds_alternative<ModemRemoved>(event) && !m_removed) {
        loseModem();
    } else if (std::holds_alternative<ModemReady>(event) && m_removed) {
        lock.unlock();
        insertModem();
        lock.lock();
    }
}

void Session::announce(ProactiveCommand command, Lock &lock)
{
    if (m_current && m_current->open)
        m_transcript.overtaken(m_current->id, m_current->command.body);
    const int16_t id = newCommandId();
    const int32_t type = commandType(command.body);
    m_transcript.command(id, command.body);
    const bool isMenu = std::holds_alternative<SetUpMenu>(command.body);
    if (isMenu)
        m_menu = command;
    else
        m_underWay = true;

    // To keep a menu takes the modem no time.
    const bool byModem = isAnsweredByModem(command.body);
    const auto modemTime = isMenu ? std::chrono::milliseconds(0) : m_traits.modemTime;
    const std::chrono::milliseconds time = byModem ? modemTime : command.responseTime;
    const bool forEver = !byModem && time.count() == 0;
    const Card::Time deadline = forEver ? Never : Card::Clock::now() + time;
    dropCurrent();
    m_current = CommandInProgress{id, std::move(command), true, deadline};
    callCommand(type, id, false, lock);
}

void Session::reportEndOfSession(Lock &lock)
{
    dropCurrent();
    m_underWay = false;
    const int16_t id = newCommandId();
    m_transcript.endOfSession(id);
    callCommand(MOVA_STKTYPE_END_SESSION, id, false, lock);
}

void Session::reportTimeOut(Lock &lock)
{
    const int16_t id = m_current ? m_current->id : newCommandId();
    const int32_t type =
        m_current ? commandType(m_current->command.body) : int32_t(MOVA_STKTYPE_END_SESSION);
    dropCurrent();
    m_underWay = false;
    m_transcript.timeOut(id);
    callCommand(type, id, true, lock);
}

void Session::callCommand(int32_t type, int16_t id, bool timeOut, Lock &lock)
{
    lock.unlock();
    m_transcript.deliver();
    lock.lock();
    const bool isCommand = isCurrent(id);
    holdBack(lock);
    // The user may have gone on meanwhile: then the word would be taken for the card's next one.
    const bool stale = isCommand ? !isCurrent(id) : !timeOut && m_underWay;
    const MOVA_STKCallback callback = stale ? nullptr : m_commandCallback;
    m_running = Running::CommandCallback;
    lock.unlock();
    if (callback) {
        if (isCommand)
            tellListener(type);
        MOVA_STKNotifyData data{static_cast<_MOVA_EN_STKTYPE>(type), id, timeOut};
        callback(0, &data);
    }
    lock.lock();
    if (callback)
        m_toldAt = Card::Clock::now();
    m_running = Running::None;
    m_returned.notify_all();
}

void Session::tellListener(int32_t type)
{
    std::lock_guard<std::mutex> lock(m_listenerMutex);
    if (m_commandListener)
        m_commandListener(type);
}

bool Session::isCurrent(int16_t id) const
{
    return m_current && m_current->id == id;
}

// Waits until no call answers, and none has returned just now.
void Session::holdBack(Lock &lock)
{
    unsigned epoch = m_epoch;
    Card::Time now = Card::Clock::now();
    Card::Time latest = now + LongestHoldBack;
    while (m_commandCallback && now < latest && (m_answering != 0 || now < m_heldUntil)) {
        if (std::exchange(epoch, m_epoch) != m_epoch) // another card, or none: it waits to be told
            latest = std::min(latest, now + HoldBack);
        const Card::Time until = m_answering != 0 ? latest : std::min(latest, m_heldUntil);
        lock.unlock();
        m_alarm.wait(until);
        lock.lock();
        now = Card::Clock::now();
    }
}

void Session::callDevice(int code, Lock &lock)
{
    if (code != MOVA_DEV_EVENT_DEVICE_READY) {
        m_heldUntil = std::max(m_heldUntil, m_toldAt + BeforeGone);
        holdBack(lock);
    }
    const MOVA_DevMgrCallback callback = m_deviceCallback;
    m_running = Running::DeviceCallback;
    lock.unlock();
    m_transcript.deliver();
    if (callback)
        callback(code, nullptr);
    lock.lock();
    m_running = Running::None;
    m_returned.notify_all();
}
