#include "Session.h"

#include <algorithm>
#include <utility>

#include "ServiceStatus.h"

Session::Session()
    : m_thread([this] { return work(); })
{
}

Session::~Session()
{
    stop(std::chrono::milliseconds(0));
}

bool Session::stop(std::chrono::milliseconds patience)
{
    m_transcript.removeAllListeners();
    m_callbacks.removeAll();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_thread.discard(m_slot.exchange(nullptr));
    }
    return m_thread.stop(patience);
}

// ---- The terminal's side ----

// Calls the function, which returns its status, with the lock held.
template <class Function>
int32_t Session::call(ServiceFunction name, std::optional<int16_t> commandId, Function function)
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    const int32_t status = function();
    if (status != StatusSuccess)
        m_transcript.refused(name, commandId, status);
    return status;
}

int32_t Session::registerCallback(ServiceFunction function, Callbacks::Kind kind,
                                  Callbacks::Callback callback)
{
    return call(function, std::nullopt, [&] {
        const int32_t fault = callback ? m_slot.fault(function) : StatusSuccess;
        return fault ? fault : m_callbacks.add(kind, callback);
    });
}

int32_t Session::unregisterCallback(ServiceFunction function, Callbacks::Kind kind,
                                    Callbacks::Callback callback)
{
    const int32_t status = call(function, std::nullopt, [&] {
        const int32_t fault = m_slot.fault(function);
        return fault ? fault : m_callbacks.remove(kind, callback);
    });
    if (status == StatusSuccess)
        m_callbacks.waitForReturn(kind); // without the lock, which the callback may want
    return status;
}

int32_t Session::mainMenu(CommandMenu &menu)
{
    constexpr ServiceFunction Name = ServiceFunction::GetMainMenu;
    return call(Name, std::nullopt, [&] {
        const int32_t status = m_slot.menuStatus(Name);
        if (status == StatusSuccess)
            menu = *m_slot.menu();
        return status;
    });
}

int32_t Session::selectMenuItem(int16_t itemId)
{
    constexpr ServiceFunction Name = ServiceFunction::SelectMenuItem;
    const Callbacks::Answering answering(m_callbacks);
    return call(Name, std::nullopt, [&]() -> int32_t {
        if (const int32_t status = m_slot.menuStatus(Name))
            return status;
        const CommandMenuItem *item = m_slot.menu()->find(itemId);
        if (!item)
            return StatusUnknownItem;
        if (const auto response = m_dialogue.leave())
            postResponse(m_dialogue.id(), *response);
        m_dialogue.choose(*item);
        m_thread.post([this, card = m_slot.card(), itemId] {
            std::optional<TerminalResponse> response;
            {
                const Transcript::Scope scope(m_transcript, m_mutex);
                response = m_dialogue.deliverChoice();
            }
            if (response)
                card->respond(*response, Card::Clock::now());
            card->selectMenuItem(itemId, Card::Clock::now());
        });
        return StatusSuccess;
    });
}

int32_t Session::details(ServiceFunction function, int16_t commandId, int32_t type,
                         CommandBody &body)
{
    return call(function, commandId, [&] {
        const int32_t status = commandStatus(function, commandId, type);
        if (status == StatusSuccess)
            body = m_dialogue.command()->body;
        return status;
    });
}

int32_t Session::selectSubMenuItem(int16_t commandId, int32_t action, int16_t itemId)
{
    constexpr ServiceFunction Name = ServiceFunction::SelectSubMenuItem;
    using Result = TerminalResponse::Result;
    const Callbacks::Answering answering(m_callbacks);
    return call(Name, commandId, [&]() -> int32_t {
        if (const int32_t status = commandStatus(Name, commandId, SelectItem::Type))
            return status;
        switch (action) {
        case MOVA_SUBMENU_ACTION_SELECT:
            if (!commandMenu(m_dialogue.command()->body)->find(itemId))
                return StatusUnknownItem;
            answerCurrent({Result::Performed, itemId}, Name);
            return StatusSuccess;
        case MOVA_SUBMENU_ACTION_BACK:
            answerCurrent({Result::BackwardMove}, Name);
            return StatusSuccess;
        case MOVA_SUBMENU_ACTION_NONE:
            answerCurrent({Result::Terminated}, Name);
            return StatusSuccess;
        default:
            return StatusBadArgument;
        }
    });
}

int32_t Session::answer(ServiceFunction function, int16_t commandId, int32_t type,
                        TerminalResponse response)
{
    const Callbacks::Answering answering(m_callbacks);
    return call(function, commandId, [&]() -> int32_t {
        // A yes-no box outlives its command, and answers all the same.  To refuse that would be a
        // terminal's failure to handle the command; it changes nothing, and whoever waits for the
        // card's next word hears that there is none.
        if (function == ServiceFunction::AnswerInKey && m_dialogue.isLateKey(commandId)) {
            m_thread.post([this] { tellWhat([this] { return m_dialogue.endAgain(); }); });
            return StatusSuccess;
        }
        if (const int32_t status = commandStatus(function, commandId, type))
            return status;
        if (const ServiceStatus status = codeText(*m_dialogue.command(), response))
            return status;
        answerCurrent(std::move(response), function);
        return StatusSuccess;
    });
}

int32_t Session::refuseArgument(ServiceFunction function, std::optional<int16_t> commandId)
{
    return call(function, commandId, [] { return StatusBadArgument; });
}

int32_t Session::releaseStatus(ServiceFunction function)
{
    return call(function, std::nullopt, [&] {
        if (const int32_t fault = m_slot.fault(function))
            return fault;
        return function == ServiceFunction::ReleaseMenus ? m_slot.menuFault(function)
                                                         : m_dialogue.fault(function);
    });
}

// ---- The network's side ----

void Session::insertCard(std::unique_ptr<Card> card)
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    if (!m_slot.card() && !card)
        return;
    const bool wasReady = m_slot.isReady();
    forgetSession();
    m_thread.discard(m_slot.exchange(std::move(card)));
    if (m_slot.isReady() != wasReady)
        postDevice(wasReady ? MOVA_DEV_EVENT_DEVICE_NOT_READY : MOVA_DEV_EVENT_DEVICE_READY);
    if (m_slot.card())
        postPowerOn();
}

void Session::removeModem()
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    if (!m_slot.isReady())
        return;
    m_thread.post([card = m_slot.card()] { card->powerOff(); });
    loseModem();
}

void Session::insertModem()
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    if (m_slot.isRemoved())
        regainModem();
}

void Session::endSession()
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    m_thread.post([this, card = m_slot.card()] {
        if (card)
            card->endSession();
        tellWhat([this] { return m_dialogue.end(); });
    });
}

void Session::timeOutSession()
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    m_thread.post([this, card = m_slot.card()] {
        bool unanswered;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            unanswered = m_dialogue.waitsForUser();
        }
        if (card && unanswered)
            card->respond({TerminalResponse::Result::NoResponse}, Card::Clock::now());
        if (card)
            card->endSession();
        tellWhat([this] { return m_dialogue.timeOut(); });
    });
}

CardHost::ModemState Session::state()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_slot.state(m_dialogue.isUnderWay());
}

bool Session::hasMenu()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_slot.menu() && !m_slot.menu()->items.empty();
}

void Session::withCard(std::function<void(Card &)> function, bool alsoWhileRemoved)
{
    const Transcript::Scope scope(m_transcript, m_mutex);
    if (m_slot.isReady() || (m_slot.card() && alsoWhileRemoved))
        m_thread.post([card = m_slot.card(), function = std::move(function)] { function(*card); });
}

// ---- With the lock held ----

int32_t Session::commandStatus(ServiceFunction function, int16_t commandId, int32_t type) const
{
    const int32_t status = m_slot.status(function);
    return status == StatusSuccess ? m_dialogue.status(function, commandId, type) : status;
}

void Session::answerCurrent(TerminalResponse response, std::optional<ServiceFunction> function)
{
    m_dialogue.answer(response, function);
    postResponse(m_dialogue.id(), std::move(response));
}

void Session::postResponse(int16_t commandId, TerminalResponse response)
{
    m_thread.post([this, card = m_slot.card(), commandId, response = std::move(response)] {
        {
            // A card that does not wait may have sent another command before it heard the answer.
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_dialogue.command() && m_dialogue.id() != commandId)
                return;
        }
        card->respond(response, Card::Clock::now());
    });
}

void Session::postPowerOn()
{
    m_thread.post([card = m_slot.card()] { card->powerOn(Card::Clock::now()); });
}

void Session::postDevice(int code)
{
    m_thread.post([this, code] {
        m_transcript.deliver();
        m_callbacks.callDevice(code);
    });
}

// What the card was about to do, and what it was to be told, does not count any more.  Whoever
// waits for its next word hears that there is none.
void Session::forgetSession()
{
    ++m_epoch;
    m_callbacks.hurry();
    if (const auto word = m_dialogue.forget())
        m_thread.post([this, word = *word] { tell(word); });
}

void Session::loseModem()
{
    forgetSession();
    m_slot.removeModem();
    postDevice(MOVA_DEV_EVENT_DEVICE_REMOVED);
}

void Session::regainModem()
{
    forgetSession();
    m_slot.insertModem();
    postDevice(MOVA_DEV_EVENT_DEVICE_READY);
    postPowerOn();
}

std::optional<Session::Word> Session::handle(CardEvent &event)
{
    if (auto *command = std::get_if<ProactiveCommand>(&event)) {
        if (std::holds_alternative<SetUpMenu>(command->body))
            m_slot.setMenu(*command);
        return m_dialogue.begin(std::move(*command), m_slot.traits().modemTime, Card::Clock::now());
    }
    if (std::holds_alternative<SessionEnd>(event))
        return m_dialogue.endByCard();
    if (std::holds_alternative<SessionTimeOut>(event))
        return m_dialogue.timeOut();
    if (std::holds_alternative<ModemRemoved>(event) && m_slot.isReady())
        loseModem();
    else if (std::holds_alternative<ModemReady>(event) && m_slot.isRemoved())
        regainModem();
    return std::nullopt;
}

std::optional<Session::Word> Session::passDeadline()
{
    if (!m_dialogue.waitsForUser()) {
        answerCurrent(m_dialogue.command()->modemAnswer, std::nullopt);
        return std::nullopt;
    }
    postResponse(m_dialogue.id(), {TerminalResponse::Result::NoResponse});
    return m_dialogue.timeOut();
}

// ---- On the session's thread ----

std::optional<SessionThread::Pause> Session::work()
{
    std::shared_ptr<Card> card;
    unsigned epoch = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_thread.hasRequests()) // a card is switched on before it is asked
            return std::nullopt;
        card = m_slot.card();
        epoch = m_epoch;
    }
    SessionThread::Pause pause{Card::Time::max(), -1};
    std::optional<CardEvent> event = card ? card->nextEvent(Card::Clock::now()) : std::nullopt;
    if (card)
        pause = {card->wakeUp(), card->descriptor()};
    // A command that the terminal cannot hear yet is not there yet for anybody.
    if (event && std::holds_alternative<ProactiveCommand>(*event))
        m_callbacks.holdBack();
    bool rests = false;
    tellWhat([&]() -> std::optional<Word> {
        if (event)
            return epoch == m_epoch ? handle(*event) : std::nullopt;
        const Card::Time deadline = m_dialogue.deadline();
        if (deadline <= Card::Clock::now())
            return passDeadline();
        pause.until = std::min(pause.until, deadline);
        rests = true;
        return std::nullopt;
    });
    return rests ? std::optional(pause) : std::nullopt;
}

// Calls the function, which finds out what is to be told, if anything, with the lock held.
template <class Function> void Session::tellWhat(Function function)
{
    std::optional<Word> word;
    {
        const Transcript::Scope scope(m_transcript, m_mutex);
        word = function();
    }
    if (word)
        tell(*word);
}

void Session::tell(const Word &word)
{
    m_transcript.deliver();
    m_callbacks.holdBack();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_dialogue.isNews(word))
            return;
    }
    m_callbacks.callCommand({static_cast<_MOVA_EN_STKTYPE>(word.type), word.id, word.timeOut},
                            word.isCommand);
}
