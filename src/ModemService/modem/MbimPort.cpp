#include "MbimPort.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ModemMonitor.h"

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr seconds Patience{10}, CardPatience{40};
constexpr milliseconds LongRetryPeriod = seconds(30);
constexpr uint8_t SetUpMenuType = 0x25; // ETSI TS 102 223 clause 9.4

// The modem can say more once its card is ready.
bool waitsForCard(std::optional<int> status)
{
    return status == MBIM_STATUS_ERROR_PIN_REQUIRED || status == MBIM_STATUS_ERROR_NOT_INITIALIZED;
}

enum class CardState { There, Starting, Missing };

CardState stateOf(MbimSubscriberReadyState state)
{
    switch (state) {
    case MBIM_SUBSCRIBER_READY_STATE_SIM_NOT_INSERTED:
    case MBIM_SUBSCRIBER_READY_STATE_BAD_SIM:
    case MBIM_SUBSCRIBER_READY_STATE_FAILURE:
    case MBIM_SUBSCRIBER_READY_STATE_NO_ESIM_PROFILE:
        return CardState::Missing;
    case MBIM_SUBSCRIBER_READY_STATE_NOT_INITIALIZED:
        return CardState::Starting;
    default:
        return CardState::There;
    }
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
    if (taken && !m_lost) {
        const uint8_t nothing[32] = {};
        bool done = false;
        m_link.command({mbim_message_stk_pac_set_new(nothing, nullptr), mbim_message_unref},
                       Patience, [&done](const Result &) { done = true; });
        const GlibLoop::Use use(m_link.loop());
        m_link.loop().runUntil(std::chrono::steady_clock::now() + Moment, [&] { return done; });
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
    m_link.command(
        std::move(message), slow ? CardPatience : Patience, [this, done](const Result &result) {
            m_waiting = false;
            const bool isAnswer = result.message || result.isDone();
            m_lost |= !isWorthAsking(isAnswer);
            // What was lost on the way is said once more, but never a PIN.
            const bool isOver = isAnswer || m_toolkit.isRunning() || m_step == Step::EnterPin;
            if (!m_lost && wantsAnswer() && isOver)
                (this->*done)(result);
        });
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
    case Step::EnterPin: {
        std::string digits(pin().digits(), pin().size());
        MbimMessage *const message = mbim_message_pin_set_new(
            MBIM_PIN_TYPE_PIN1, MBIM_PIN_OPERATION_ENTER, digits.c_str(), "", nullptr);
        explicit_bzero(digits.data(), digits.size());
        return say(message, &MbimPort::pinSent);
    }
    case Step::ReadSupport:
        return say(mbim_message_stk_pac_query_new(nullptr), &MbimPort::supportRead);
    case Step::ReadEnvelopes:
        return say(mbim_message_stk_envelope_query_new(nullptr), &MbimPort::envelopesRead);
    case Step::Subscribe: {
        guint32 toolkit[] = {MBIM_CID_STK_PAC};
        guint32 card[] = {MBIM_CID_BASIC_CONNECT_SUBSCRIBER_READY_STATUS};
        MbimEventEntry entries[] = {{*mbim_uuid_from_service(MBIM_SERVICE_STK), 1, toolkit},
                                    {*mbim_uuid_from_service(MBIM_SERVICE_BASIC_CONNECT), 1, card}};
        const MbimEventEntry *const list[] = {&entries[0], &entries[1], nullptr};
        return say(mbim_message_device_service_subscribe_list_set_new(2, list, nullptr),
                   &MbimPort::subscribed);
    }
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
    m_waiting = true;
    m_link.open(m_device, [this](const Result &result) {
        m_waiting = false;
        opened(result);
    });
}

void MbimPort::opened(const Result &result)
{
    if (result.isDone())
        return go(Step::ReadServices);
    tell(NoticeId::ModemNotOpened, result.error);
    m_lost = true;
}

void MbimPort::servicesRead(const Result &result)
{
    MbimDeviceServiceElementArray *services = nullptr;
    guint32 count = 0;
    bool toolkit = false;
    const bool readable = result.isDone() &&
        mbim_message_device_services_response_parse(result.message, &count, nullptr, &services,
                                                    nullptr);
    if (readable) {
        for (guint32 i = 0; i < count; ++i)
            toolkit |= mbim_uuid_to_service(&services[i]->device_service_id) == MBIM_SERVICE_STK;
        mbim_device_service_element_array_free(services);
    }
    if (toolkit)
        return go(Step::ReadCard);
    tell(NoticeId::ModemNoToolkit);
    m_stepAt = m_now + LongRetryPeriod;
    m_lost = !readable;
    if (readable)
        m_events->departed();
}

void MbimPort::cardRead(const Result &result)
{
    MbimSubscriberReadyState state = MBIM_SUBSCRIBER_READY_STATE_INITIALIZED;
    if (result.isDone())
        mbim_message_subscriber_ready_status_response_parse(
            result.message, &state, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (stateOf(state) == CardState::There) {
        cardIsThere(m_now);
        return;
    }
    if (stateOf(state) == CardState::Missing)
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
    MbimPinType type = MBIM_PIN_TYPE_UNKNOWN;
    MbimPinState state = MBIM_PIN_STATE_UNLOCKED;
    guint32 tries = 0;
    const bool isLocked = result.isDone() && !isPinDeclined() &&
        mbim_message_pin_response_parse(result.message, &type, &state, &tries, nullptr) &&
        state == MBIM_PIN_STATE_LOCKED;
    constexpr guint32 Unknown = 0xffffffff;
    if (isLocked && type == MBIM_PIN_TYPE_PIN1 && tries != 0)
        return wantPin(tries == Unknown ? 0 : static_cast<int>(tries), m_now);
    if (isLocked && (type == MBIM_PIN_TYPE_PIN1 || type == MBIM_PIN_TYPE_PUK1))
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
    const guint8 *support = nullptr;
    m_support = MbimSupport();
    if (lacksCard(result))
        return;
    if (result.isDone() && mbim_message_stk_pac_response_parse(result.message, &support, nullptr))
        std::copy_n(support, MbimSupport::Types, m_support.of.begin());
    if (!m_support.isFree(SetUpMenuType))
        tell(NoticeId::ModemKeepsMenu);
    else if (m_support.isDecimal())
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
    const guint8 *support = nullptr;
    if (mbim_message_stk_pac_response_parse(result.message, &support, nullptr))
        std::copy_n(support, MbimSupport::Types, m_support.of.begin());
    if (!m_support.isHosts(SetUpMenuType))
        tell(NoticeId::ModemKeepsMenu);
    m_toolkit.run(m_now);
}

// ---- The toolkit at work ----

void MbimPort::notified(const MbimMessage &message)
{
    MbimMessage *const indication = const_cast<MbimMessage *>(&message);
    const auto service = mbim_message_indicate_status_get_service(indication);
    const guint32 command = mbim_message_indicate_status_get_cid(indication);
    if (service == MBIM_SERVICE_STK && command == MBIM_CID_STK_PAC)
        takeCommand(indication);
    else if (service == MBIM_SERVICE_BASIC_CONNECT &&
             command == MBIM_CID_BASIC_CONNECT_SUBSCRIBER_READY_STATUS)
        takeCardState(indication);
}

void MbimPort::takeCommand(MbimMessage *indication)
{
    MbimStkPacType type = MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND;
    guint32 size = 0;
    const guint8 *data = nullptr;
    if (!mbim_message_stk_pac_notification_parse(indication, &type, &size, &data, nullptr))
        tell(NoticeId::ModemUnreadable);
    else if (isInUse() && !isStartingAnew()) // else the card sends it again
        m_toolkit.commandArrived(commandIn({data, size}),
                                 type == MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND, m_now);
}

void MbimPort::takeCardState(MbimMessage *indication)
{
    MbimSubscriberReadyState state = MBIM_SUBSCRIBER_READY_STATE_INITIALIZED;
    if (!mbim_message_subscriber_ready_status_notification_parse(
            indication, &state, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr))
        return;
    const bool missing = stateOf(state) == CardState::Missing;
    // Between two steps, too: its PIN may be asked for.
    const bool atRest = m_toolkit.isRunning() || (missing && !m_waiting && !isStartingAnew());
    if (stateOf(state) == CardState::There) {
        lookAgain(m_now);
    } else if (isInUse() && atRest) {
        if (missing)
            tell(NoticeId::ModemNoSim);
        cardIsGone(m_now);
    }
}

void MbimPort::send(const ModemToolkit::Message &message, Time)
{
    const cat::Bytes &data = message.data;
    const guint32 size = static_cast<guint32>(data.size());
    if (message.kind == ModemToolkit::Message::Kind::Response)
        say(mbim_message_stk_terminal_response_set_new(size, data.data(), nullptr),
            &MbimPort::responseSent);
    else // the library's own message would pad the envelope within its announced length
        say(MbimLink::raw(MBIM_SERVICE_STK, MBIM_CID_STK_ENVELOPE, data.data(), size),
            &MbimPort::envelopeSent);
}

void MbimPort::responseSent(const Result &result)
{
    guint32 status = 0;
    if (result.isDone())
        mbim_message_stk_terminal_response_response_parse(result.message, nullptr, nullptr, &status,
                                                          nullptr);
    answered({result.isDone(), static_cast<uint16_t>(status), {}}, reactionIn(result), m_now);
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
    else if (!m_waiting)
        goOn(now);
}

MbimPort::Time MbimPort::wakeUp() const
{
    if (!isOpen())
        return Never;
    const Time library = m_link.loop().prepare();
    if (m_lost)
        return Time{};
    return m_waiting ? library : std::min(library, nextTime());
}
