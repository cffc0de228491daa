#include "MbimPort.h"

#include <algorithm>
#include <utility>

#include "MbimMessages.h"
#include "ModemMonitor.h"

using MbimMessages::CardState;
using MbimMessages::PinState;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr seconds ShortPatience{3}, Patience{10}, CardPatience{40};
constexpr milliseconds LongRetryPeriod = seconds(30);
constexpr uint8_t SetUpMenuType = 0x25; // ETSI TS 102 223 clause 9.4

// The modem can say more once its card is ready.
bool waitsForCard(std::optional<int> status)
{
    return status == MBIM_STATUS_ERROR_PIN_REQUIRED || status == MBIM_STATUS_ERROR_NOT_INITIALIZED;
}

// Empty where there is none.
std::string firstDevice()
{
    for (const Modem &modem : listModems()) {
        if (modem.kind == Modem::Kind::Mbim)
            return modem.device;
    }
    return {};
}

} // namespace

MbimPort::MbimPort(std::string device, std::vector<uint8_t> types, PortReports &reports)
    : ModemPort(device, reports)
    , m_wanted(std::move(device))
    , m_types(std::move(types))
    , m_link([this](const MbimMessage &message) { notified(message); },
             [this] {
                 tell(NoticeId::ModemGone);
                 m_lost = true;
             })
{
}

MbimPort::~MbimPort()
{
    close();
}

// The modem carries out by itself again what it did before.
void MbimPort::disconnect(bool taken)
{
    constexpr milliseconds Moment{1000};
    int left = 0;
    const auto finish = [this, &left](MbimMessage *message) {
        MbimLink::Message last(message, mbim_message_unref);
        m_reports.spoken(false, MbimMessages::nameOf(*last) + ", at the end");
        ++left;
        m_link.command(std::move(last), Patience, [&left](const Result &) { --left; });
    };
    const uint8_t nothing[32] = {};
    if (taken && !m_lost)
        finish(mbim_message_stk_pac_set_new(nothing, nullptr));
    // Whoever has switched the card off, and the network with it, must switch it on again.
    if (m_switchedOff && !m_lost)
        finish(mbim_message_radio_state_set_new(MBIM_RADIO_SWITCH_STATE_ON, nullptr));
    if (left != 0) {
        const GlibLoop::Use use(m_link.loop());
        m_link.loop().runUntil(std::chrono::steady_clock::now() + Moment,
                               [&left] { return left == 0; });
    }
    if (std::exchange(m_lost, false))
        m_link.drop();
    else
        m_link.close();
    m_waiting = false;
}

// ---- The start ----

void MbimPort::enter(Stage stage)
{
    switch (stage) {
    case Stage::Modem:
        m_step = Step::Open;
        break;
    case Stage::Card:
        m_step = Step::ReadCard;
        break;
    case Stage::SwitchOff:
        m_step = Step::SwitchOff;
        break;
    case Stage::Pin:
        m_step = Step::ReadPin;
        break;
    case Stage::EnterPin:
        m_step = Step::EnterPin;
        break;
    case Stage::Toolkit:
        m_step = Step::ReadSupport;
        break;
    }
}

void MbimPort::go(Step step)
{
    m_step = step;
    m_stepAt = m_now;
}

void MbimPort::say(MbimMessage *message, Handler done)
{
    say(MbimLink::Message(message, mbim_message_unref), done);
}

void MbimPort::say(MbimLink::Message message, Handler done)
{
    m_waiting = true;
    const bool slow =
        m_step == Step::EnterPin || m_step == Step::SwitchOff || m_step == Step::SwitchOn;
    const seconds patience = isInDoubt() ? ShortPatience : slow ? CardPatience : Patience;
    const std::string name = MbimMessages::nameOf(*message);
    m_link.command(std::move(message), patience,
                   [this, done](const Result &result) { heard(result, done); });
    m_reports.spoken(false, name);
}

void MbimPort::heard(const Result &result, Handler done)
{
    m_reports.spoken(true, MbimMessages::inWords(result));
    m_waiting = false;
    const bool isAnswer = result.message || result.isDone();
    m_lost |= !isWorthAsking(isAnswer);
    // What was lost on the way is said once more, but never a PIN.
    const bool isOver = isAnswer || m_toolkit.isRunning() || m_step == Step::EnterPin;
    if (done && isOver && !m_lost && wantsAnswer())
        (this->*done)(result);
}

void MbimPort::takeStep(Time)
{
    switch (m_step) {
    case Step::Open:
        return openDevice();
    case Step::ReadServices:
        return say(mbim_message_device_services_query_new(nullptr), &MbimPort::servicesRead);
    case Step::ReadCard:
        return say(mbim_message_subscriber_ready_status_query_new(nullptr), &MbimPort::cardRead);
    case Step::SwitchOff:
        return say(mbim_message_radio_state_set_new(MBIM_RADIO_SWITCH_STATE_OFF, nullptr),
                   &MbimPort::switchedOff);
    case Step::SwitchOn:
        m_switchedOff = false; // what comes from now on is the new start's
        return say(mbim_message_radio_state_set_new(MBIM_RADIO_SWITCH_STATE_ON, nullptr),
                   &MbimPort::switchedOn);
    case Step::ReadPin:
        return say(mbim_message_pin_query_new(nullptr), &MbimPort::pinRead);
    case Step::EnterPin:
        return say(MbimMessages::enterPin(pin()), &MbimPort::pinSent);
    case Step::ReadSupport:
        return say(mbim_message_stk_pac_query_new(nullptr), &MbimPort::supportRead);
    case Step::ReadEnvelopes:
        return say(mbim_message_stk_envelope_query_new(nullptr), &MbimPort::envelopesRead);
    case Step::Subscribe:
        return say(MbimMessages::subscribe(), &MbimPort::subscribed);
    case Step::TakeOver:
        m_taken = true;
        return say(mbim_message_stk_pac_set_new(hostControl(m_types, m_support).data(), nullptr),
                   &MbimPort::tookOver);
    }
}

void MbimPort::openDevice()
{
    if (m_wanted.empty())
        m_device = firstDevice();
    if (m_device.empty()) {
        tell(NoticeId::NoMbimModem);
        m_stepAt = Never; // lookAgain() tells
        m_events->departed();
        return;
    }
    if (!isDevice(false, m_now))
        return;
    m_waiting = true;
    m_reports.spoken(false, "open");
    m_link.open(m_device, [this](const Result &result) {
        m_reports.spoken(true, MbimMessages::inWords(result));
        m_waiting = false;
        opened(result);
    });
}

void MbimPort::opened(const Result &result)
{
    if (result.isDone())
        return go(Step::ReadServices);
    if (result.timedOut)
        tell(NoticeId::ModemSilent);
    else
        tell(NoticeId::ModemNotOpened, result.error);
    m_lost = true;
}

void MbimPort::servicesRead(const Result &result)
{
    const auto offers =
        result.isDone() ? MbimMessages::offersToolkit(*result.message) : std::nullopt;
    if (offers == true)
        return go(Step::ReadCard);
    tell(NoticeId::ModemNoToolkit);
    m_stepAt = m_now + LongRetryPeriod;
    m_lost = !offers;
    if (offers)
        m_events->departed();
}

void MbimPort::cardRead(const Result &result)
{
    const CardState state =
        result.isDone() ? MbimMessages::cardStateIn(*result.message) : CardState::There;
    if (state == CardState::There) {
        cardIsThere(m_now);
        return;
    }
    if (state == CardState::Missing)
        tell(NoticeId::ModemNoSim);
    m_stepAt = m_now + RetryPeriod;
    m_events->departed();
}

void MbimPort::switchedOff(const Result &)
{
    go(Step::SwitchOn);
}

void MbimPort::switchedOn(const Result &)
{
    go(Step::ReadPin);
}

void MbimPort::pinRead(const Result &result)
{
    const PinState state = result.isDone() && !isPinDeclined()
        ? MbimMessages::pinStateIn(*result.message)
        : PinState();
    if (state.lock == PinState::Wanted)
        return wantPin(state.triesLeft, m_now);
    if (state.lock == PinState::Blocked)
        goOnWithoutPin(NoticeId::PinBlocked);
    goTo(Stage::Toolkit, m_now);
}

// What the modem says to a wrong one is not the same everywhere: its state is read anew.
void MbimPort::pinSent(const Result &result)
{
    pinEntered(result.message && !result.isDone(), m_now);
}

bool MbimPort::lacksCard(const Result &result)
{
    if (result.status == MBIM_STATUS_ERROR_SIM_NOT_INSERTED) {
        tell(NoticeId::ModemNoSim);
        cardIsGone(m_now);
        return true;
    }
    if (!waitsForCard(result.status))
        return false;
    if (result.status != MBIM_STATUS_ERROR_PIN_REQUIRED || !isPinDeclined())
        tell(NoticeId::ModemNotReady, result.error); // else the reason is told already
    goTo(Stage::Pin, m_now + RetryPeriod); // it may be wanted by then
    return true;
}

void MbimPort::supportRead(const Result &result)
{
    if (lacksCard(result))
        return;
    const auto support = result.isDone() ? MbimMessages::supportIn(*result.message) : std::nullopt;
    m_support = support.value_or(MbimSupport());
    if (m_support.isDecimal())
        tell(NoticeId::ModemCountsDecimally);
    go(Step::ReadEnvelopes);
}

void MbimPort::envelopesRead(const Result &)
{
    go(Step::Subscribe); // a modem that takes no envelope says so when it gets one
}

// Some modems have subscribed everybody, and say that they do not know how to.
void MbimPort::subscribed(const Result &)
{
    go(Step::TakeOver);
}

void MbimPort::tookOver(const Result &result)
{
    if (!result.isDone()) {
        m_taken = false;
        if (lacksCard(result))
            return;
        tell(result.status == MBIM_STATUS_ERROR_STK_BUSY ? NoticeId::ModemToolkitInUse
                                                         : NoticeId::ModemNotReady,
             result.error);
        m_stepAt = m_now + RetryPeriod;
        return;
    }
    m_support = MbimMessages::supportIn(*result.message).value_or(m_support);
    const std::string kept = keptByModem(m_types, m_support);
    if (!kept.empty())
        tell(NoticeId::ModemKeepsCommands, kept);
    m_keepsMenu = !m_support.isHosts(SetUpMenuType);
    if (m_keepsMenu)
        tell(NoticeId::ModemKeepsMenu);
    m_toolkit.run(m_now);
}

// ---- The toolkit at work ----

void MbimPort::notified(const MbimMessage &message)
{
    m_reports.spoken(true, MbimMessages::nameOf(message) + " notification");
    const auto service = mbim_message_indicate_status_get_service(&message);
    const guint32 command = mbim_message_indicate_status_get_cid(&message);
    if (service == MBIM_SERVICE_STK && command == MBIM_CID_STK_PAC)
        takeCommand(message);
    else if (service == MBIM_SERVICE_BASIC_CONNECT &&
             command == MBIM_CID_BASIC_CONNECT_SUBSCRIBER_READY_STATUS)
        takeCardState(message);
}

void MbimPort::takeCommand(const MbimMessage &notification)
{
    const auto notified = MbimMessages::commandNotified(notification);
    if (!notified || notified->command.empty())
        tell(NoticeId::ModemUnreadable);
    else if (isInUse() && !isStartingAnew()) // else the card sends it again
        m_toolkit.commandArrived(notified->command, notified->wantsAnswer, m_now);
}

void MbimPort::takeCardState(const MbimMessage &notification)
{
    const auto state = MbimMessages::cardStateNotified(notification);
    if (state == CardState::There)
        lookAgain(m_now);
    else if (state)
        cardIsTaken(state == CardState::Missing, m_waiting, m_now);
}

void MbimPort::send(const ModemToolkit::Message &message, Time)
{
    if (message.kind == ModemToolkit::Message::Kind::Response)
        say(MbimMessages::terminalResponse(message.data), &MbimPort::responseSent);
    else
        say(MbimMessages::envelope(message.data), &MbimPort::envelopeSent);
}

void MbimPort::responseSent(const Result &result)
{
    const uint16_t status = result.isDone() ? MbimMessages::statusIn(*result.message) : 0;
    answered({result.isDone(), status, {}}, reactionIn(result), m_now);
}

void MbimPort::envelopeSent(const Result &result)
{
    answered({result.isDone(), std::nullopt, {}}, reactionIn(result), m_now);
}

MbimPort::Reaction MbimPort::reactionIn(const Result &result)
{
    if (result.status == MBIM_STATUS_ERROR_STK_BUSY)
        return Reaction::Busy;
    return result.message ? Reaction::Definite : Reaction::Silent;
}

// ---- Time ----

void MbimPort::work(Time now)
{
    if (!isOpen())
        return;
    m_now = now;
    m_link.loop().run();
    if (m_lost)
        lose(now);
    else if (!m_waiting && isInDoubt()) // one end may have lost its place in the other's bytes
        say(mbim_message_device_services_query_new(nullptr), nullptr);
    else if (!m_waiting)
        goOn(now);
}

MbimPort::Time MbimPort::wakeUp() const
{
    if (!isOpen())
        return Never;
    const Time library = m_link.loop().prepare();
    if (m_lost || (isInDoubt() && !m_waiting))
        return Time{};
    return m_waiting ? library : std::min(library, nextTime());
}
