#include "MbimPort.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ModemMonitor.h"
#include "ModemTraffic.h"

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr ToolkitPort::Time Never = ToolkitPort::Time::max();

constexpr seconds Patience{10}, CardPatience{40};
constexpr milliseconds RetryPeriod = seconds(1), LongRetryPeriod = seconds(30);
constexpr milliseconds RestTime = seconds(5); // without a menu so long, none will come
// Without a word so long, the session is over; sooner where the card said that nothing follows.
constexpr milliseconds IdleTime = seconds(5), ShortIdleTime = seconds(2);
constexpr guint32 NothingFollows = 0x9000;

// ETSI TS 102 223 clause 9.4; SEND SS and SEND USSD stand between the first two.
constexpr uint8_t SetUpCallType = 0x10, SendShortMessageType = 0x13, SetUpMenuType = 0x25;

// Values of PacSupport.
enum : uint8_t {
    NotHandled = 0,
    HostMay = 1,
    ModemUnseen = 2,
    ModemCanNotify = 3,
    ModemNotifiesHostMay = 5,
    HostAlone = 6,
    HostInstead = 7
};

bool isOneOf(uint8_t value, std::initializer_list<uint8_t> values)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

// The modem can say more once its card is ready.
bool waitsForCard(std::optional<int> status)
{
    return status == MBIM_STATUS_ERROR_SIM_NOT_INSERTED ||
        status == MBIM_STATUS_ERROR_PIN_REQUIRED || status == MBIM_STATUS_ERROR_NOT_INITIALIZED;
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

bool MbimSupport::isDecimal() const
{
    constexpr size_t SetUpMenuDigits = 25;
    return isOneOf(of[SetUpMenuType], {NotHandled, ModemUnseen}) &&
        isOneOf(of[SetUpMenuDigits], {HostMay, ModemNotifiesHostMay, HostAlone, HostInstead});
}

size_t MbimSupport::position(uint8_t type) const
{
    return isDecimal() ? (type >> 4) * 10u + (type & 0x0f) : type;
}

bool MbimSupport::isFree(uint8_t type) const
{
    return isOneOf(of[position(type)],
                   {HostMay, ModemCanNotify, ModemNotifiesHostMay, HostAlone, HostInstead});
}

bool MbimSupport::isHosts(uint8_t type) const
{
    return isOneOf(of[position(type)], {HostAlone, HostInstead});
}

std::array<uint8_t, 32> hostControl(const std::vector<uint8_t> &types, const MbimSupport &support)
{
    std::array<uint8_t, 32> control{};
    for (const uint8_t type : types) {
        const size_t position = support.position(type);
        // Nobody but the modem has a network: it may tell, for people to see.
        const bool networks = type >= SetUpCallType && type <= SendShortMessageType;
        if (networks ? support.of[position] == ModemCanNotify : support.isFree(type))
            control[position / 8] |= static_cast<uint8_t>(1 << position % 8);
    }
    return control;
}

cat::ByteView commandIn(cat::ByteView bytes)
{
    constexpr uint8_t OneByteMore = 0x81; // ETSI TS 101 220 clause 7.1.2
    if (bytes.size() >= 3 && bytes[1] == OneByteMore)
        return bytes.part(0, 3u + bytes[2]);
    return bytes.size() >= 2 && bytes[1] < 0x80 ? bytes.part(0, 2u + bytes[1]) : bytes;
}

MbimPort::MbimPort(std::string device, std::vector<uint8_t> types, PortReports &reports)
    : m_wanted(std::move(device))
    , m_device(m_wanted)
    , m_types(std::move(types))
    , m_reports(reports)
    , m_link([this](const MbimMessage &message) { notified(message); }, [this] { m_lost = true; })
{
}

MbimPort::~MbimPort()
{
    close();
}

PortTraits MbimPort::traits() const
{
    PortTraits traits;
    traits.timers = traits.polling = traits.localInformation = traits.refresh = false;
    return traits;
}

void MbimPort::open(PortEvents &events, Time now)
{
    m_events = &events;
    m_place = Place::Awaited;
    m_trouble.clear();
    m_step = Step::Open;
    m_stepAt = now;
}

void MbimPort::start(Time now)
{
    if (m_place != Place::Announced)
        return;
    m_place = Place::InUse;
    m_step = Step::ReadPin;
    m_stepAt = now;
}

void MbimPort::close()
{
    m_place = Place::Closed; // what the modem says meanwhile is for nobody
    if (m_taken)
        giveBack();
    endPinRequest();
    m_link.close();
    m_open = false;
    m_response.reset();
    m_sentResponse.reset();
    m_overtaken = false;
    m_envelope.reset();
    m_restAt.reset();
    m_endAt.reset();
    m_busy.end();
    m_waiting = m_lost = m_taken = m_restart = false;
    m_pinWrong = m_pinDeclined = false;
}

// The modem carries out by itself again what it did before.
void MbimPort::giveBack()
{
    constexpr milliseconds Moment{1000};
    const uint8_t nothing[32] = {};
    bool done = false;
    m_link.command({mbim_message_stk_pac_set_new(nothing, nullptr), mbim_message_unref}, Patience,
                   [&done](const Result &) { done = true; });
    const GlibLoop::Use use(m_link.loop());
    m_link.loop().runUntil(std::chrono::steady_clock::now() + Moment, [&] { return done; });
}

// The modem is gone, or answers no more.
void MbimPort::lose()
{
    m_taken = false; // there is nobody to give it back to
    m_link.drop();
    close();
    m_place = Place::Awaited;
    m_step = Step::Open;
    m_stepAt = m_now + RetryPeriod;
    m_events->departed();
}

// ---- The start ----

void MbimPort::send(MbimMessage *message, Handler done)
{
    send(MbimLink::Message(message, mbim_message_unref), done);
}

void MbimPort::send(MbimLink::Message message, Handler done)
{
    m_waiting = true;
    const bool slow =
        m_step == Step::EnterPin || m_step == Step::SwitchOff || m_step == Step::SwitchOn;
    m_link.command(std::move(message), slow ? CardPatience : Patience,
                   [this, done](const Result &result) {
                       m_waiting = false;
                       if (!result.message && !result.isDone()) {
                           tell(NoticeId::ModemSilent);
                           m_lost = true;
                           return;
                       }
                       (this->*done)(result);
                   });
}

void MbimPort::go(Step step)
{
    m_step = step;
    m_stepAt = m_now;
}

void MbimPort::takeStep()
{
    switch (m_step) {
    case Step::Open:
        if (m_wanted.empty())
            m_device = firstDevice();
        if (m_device.empty()) {
            tell(NoticeId::NoMbimModem);
            m_stepAt = Never; // lookAgain() tells
            m_events->departed();
            return;
        }
        m_waiting = true;
        return m_link.open(m_device, [this](const Result &result) {
            m_waiting = false;
            opened(result);
        });
    case Step::ReadServices:
        return send(mbim_message_device_services_query_new(nullptr), &MbimPort::servicesRead);
    case Step::ReadCard:
        return send(mbim_message_subscriber_ready_status_query_new(nullptr), &MbimPort::cardRead);
    case Step::SwitchOff:
        return send(mbim_message_radio_state_set_new(MBIM_RADIO_SWITCH_STATE_OFF, nullptr),
                    &MbimPort::switchedOff);
    case Step::SwitchOn:
        return send(mbim_message_radio_state_set_new(MBIM_RADIO_SWITCH_STATE_ON, nullptr),
                    &MbimPort::switchedOn);
    case Step::ReadPin:
        return send(mbim_message_pin_query_new(nullptr), &MbimPort::pinRead);
    case Step::EnterPin: {
        std::string digits(m_pin.digits(), m_pin.size());
        m_pin = Pin();
        MbimMessage *const message = mbim_message_pin_set_new(
            MBIM_PIN_TYPE_PIN1, MBIM_PIN_OPERATION_ENTER, digits.c_str(), "", nullptr);
        explicit_bzero(digits.data(), digits.size());
        return send(message, &MbimPort::pinEntered);
    }
    case Step::ReadSupport:
        return send(mbim_message_stk_pac_query_new(nullptr), &MbimPort::supportRead);
    case Step::ReadEnvelopes:
        return send(mbim_message_stk_envelope_query_new(nullptr), &MbimPort::envelopesRead);
    case Step::Subscribe: {
        guint32 commands[] = {MBIM_CID_STK_PAC};
        MbimEventEntry entry{*mbim_uuid_from_service(MBIM_SERVICE_STK), 1, commands};
        const MbimEventEntry *const entries[] = {&entry, nullptr};
        return send(mbim_message_device_service_subscribe_list_set_new(1, entries, nullptr),
                    &MbimPort::subscribed);
    }
    case Step::TakeOver:
        m_taken = true;
        return send(mbim_message_stk_pac_set_new(hostControl(m_types, m_support).data(), nullptr),
                    &MbimPort::tookOver);
    case Step::AwaitPin:
    case Step::Run:
        return;
    }
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
    switch (state) {
    case MBIM_SUBSCRIBER_READY_STATE_SIM_NOT_INSERTED:
    case MBIM_SUBSCRIBER_READY_STATE_BAD_SIM:
    case MBIM_SUBSCRIBER_READY_STATE_FAILURE:
    case MBIM_SUBSCRIBER_READY_STATE_NO_ESIM_PROFILE:
        tell(NoticeId::ModemNoSim);
        [[fallthrough]];
    case MBIM_SUBSCRIBER_READY_STATE_NOT_INITIALIZED:
        m_stepAt = m_now + RetryPeriod;
        m_events->departed();
        return;
    default:
        break;
    }
    m_trouble.clear();
    m_place = Place::Announced;
    m_events->arrived(m_now);
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
    go(Step::ReadSupport);
    const bool wrong = std::exchange(m_pinWrong, false);
    if (!result.isDone() || m_pinDeclined ||
        !mbim_message_pin_response_parse(result.message, &type, &state, &tries, nullptr) ||
        state != MBIM_PIN_STATE_LOCKED)
        return;
    constexpr guint32 Unknown = 0xffffffff;
    if (type == MBIM_PIN_TYPE_PUK1 || (type == MBIM_PIN_TYPE_PIN1 && tries == 0))
        goOnWithoutPin(NoticeId::PinBlocked);
    else if (type == MBIM_PIN_TYPE_PIN1)
        wantPin(tries == Unknown ? std::nullopt : std::optional<int>(static_cast<int>(tries)),
                wrong);
}

void MbimPort::wantPin(std::optional<int> triesLeft, bool wrong)
{
    m_step = Step::AwaitPin;
    PinRequest request;
    request.card = m_device;
    request.triesLeft = triesLeft.value_or(0);
    request.wrong = wrong;
    m_pinRequest = request.id;
    m_reports.pinWanted(request);
}

void MbimPort::answerPin(int request, const Pin &pin, Time now)
{
    if (m_step != Step::AwaitPin || m_pinRequest != request)
        return;
    m_stepAt = now;
    if (pin.isValid()) {
        m_pin = pin;
        m_step = Step::EnterPin;
        return;
    }
    endPinRequest();
    goOnWithoutPin(NoticeId::PinLeftOut);
    m_step = Step::ReadSupport;
}

// What the modem says to a wrong one is not the same everywhere: its state is read anew.
void MbimPort::pinEntered(const Result &result)
{
    endPinRequest();
    m_pinWrong = !result.isDone();
    go(Step::ReadPin);
}

void MbimPort::goOnWithoutPin(NoticeId why)
{
    tell(why);
    m_pinDeclined = true;
}

void MbimPort::endPinRequest()
{
    m_pin = Pin();
    if (std::exchange(m_pinRequest, std::nullopt))
        m_reports.pinDone();
}

void MbimPort::supportRead(const Result &result)
{
    const guint8 *support = nullptr;
    m_support = MbimSupport();
    if (waitsForCard(result.status)) {
        tell(NoticeId::ModemNotReady, result.error);
        m_stepAt = m_now + RetryPeriod;
        return;
    }
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
        tell(result.status == MBIM_STATUS_ERROR_STK_BUSY ? NoticeId::ModemToolkitInUse
                                                         : NoticeId::ModemNotReady,
             result.error);
        m_taken = false;
        m_stepAt = m_now + RetryPeriod;
        return;
    }
    const guint8 *support = nullptr;
    if (mbim_message_stk_pac_response_parse(result.message, &support, nullptr))
        std::copy_n(support, MbimSupport::Types, m_support.of.begin());
    if (!m_support.isHosts(SetUpMenuType))
        tell(NoticeId::ModemKeepsMenu);
    go(Step::Run);
    m_restAt = m_now + RestTime;
}

void MbimPort::tellMissingMenu()
{
    tell(NoticeId::ModemNoMenu);
}

void MbimPort::restart(Time now)
{
    if (m_place != Place::InUse)
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

void MbimPort::lookAgain(Time now)
{
    if (m_place == Place::Awaited)
        m_stepAt = std::min(m_stepAt, now);
}

// ---- The toolkit at work ----

void MbimPort::notified(const MbimMessage &message)
{
    MbimMessage *const indication = const_cast<MbimMessage *>(&message);
    if (mbim_message_indicate_status_get_service(indication) != MBIM_SERVICE_STK ||
        mbim_message_indicate_status_get_cid(indication) != MBIM_CID_STK_PAC)
        return;
    MbimStkPacType type = MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND;
    guint32 size = 0;
    const guint8 *data = nullptr;
    if (!mbim_message_stk_pac_notification_parse(indication, &type, &size, &data, nullptr)) {
        tell(NoticeId::ModemUnreadable);
        return;
    }
    if (m_place != Place::InUse || m_restart || m_step == Step::SwitchOff)
        return; // the card sends it again
    const cat::ByteView command = commandIn({data, size});
    const bool wantsAnswer = type == MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND;
    m_endAt.reset();
    if (m_restAt)
        m_restAt = m_now + RestTime;
    if (wantsAnswer) {
        m_open = true;
        m_response.reset(); // the answer to the command before comes too late
        m_overtaken = m_sentResponse.has_value();
    } else if (!m_open) {
        m_endAt = m_now + IdleTime; // what the modem does by itself ends some time, too
    }
    m_reports.exchanged(fetchOf(command));
    m_events->commandArrived(command, wantsAnswer, m_now);
}

void MbimPort::respond(PortResponse response, Time)
{
    m_open = false;
    if (m_place == Place::InUse)
        m_response = std::move(response);
}

bool MbimPort::isInSession() const
{
    return m_open || expectsCommand();
}

bool MbimPort::expectsCommand() const
{
    return m_envelope || m_response || m_sentResponse || m_endAt;
}

bool MbimPort::takesEnvelope() const
{
    const bool free = !m_open && !m_response && !m_envelope;
    return m_place == Place::InUse && m_step == Step::Run && !m_restart && free;
}

void MbimPort::sendEnvelope(PortEnvelope envelope, Time)
{
    if (envelope.selection)
        m_endAt.reset(); // of a session that the person has left
    m_envelope = std::move(envelope);
}

void MbimPort::dropEnvelope()
{
    const bool underWay = m_waiting && !m_sentResponse;
    if (!m_envelope || underWay)
        return;
    m_envelope.reset();
    m_busy.end();
}

void MbimPort::sendWaiting(Time now)
{
    if (now < m_busy.at())
        return;
    if (m_response) {
        m_overtaken = false;
        m_sentResponse = std::exchange(m_response, std::nullopt);
        const cat::Bytes &data = m_sentResponse->data;
        send(mbim_message_stk_terminal_response_set_new(static_cast<guint32>(data.size()),
                                                        data.data(), nullptr),
             &MbimPort::responseSent);
    } else if (m_envelope) {
        // The library's own message would pad the envelope within its announced length.
        const cat::Bytes &data = m_envelope->data;
        send(MbimLink::raw(MBIM_SERVICE_STK, MBIM_CID_STK_ENVELOPE, data.data(), data.size()),
             &MbimPort::envelopeSent);
    }
}

void MbimPort::responseSent(const Result &result)
{
    PortResponse sent = std::move(*std::exchange(m_sentResponse, std::nullopt));
    const bool overtaken = std::exchange(m_overtaken, false);
    if (result.status == MBIM_STATUS_ERROR_STK_BUSY && m_busy.isWorthIt(m_now)) {
        if (!overtaken)
            m_response = std::move(sent);
        return;
    }
    m_busy.end();
    guint32 status = 0;
    if (result.isDone())
        mbim_message_stk_terminal_response_response_parse(result.message, nullptr, nullptr, &status,
                                                          nullptr);
    m_reports.exchanged(terminalResponseOf(sent, result.isDone(), static_cast<uint16_t>(status)));
    explicit_bzero(sent.data.data(), sent.data.size());
    if (!result.isDone())
        tell(NoticeId::ModemRefuses, "TERMINAL RESPONSE");
    if (!overtaken)
        m_endAt = m_now + (status == NothingFollows ? ShortIdleTime : IdleTime);
}

void MbimPort::envelopeSent(const Result &result)
{
    if (!m_envelope)
        return;
    if (result.status == MBIM_STATUS_ERROR_STK_BUSY && m_busy.isWorthIt(m_now))
        return;
    const PortEnvelope sent = std::move(*std::exchange(m_envelope, std::nullopt));
    m_busy.end();
    m_reports.exchanged(envelopeOf(sent, {}, result.isDone()));
    if (!result.isDone())
        tell(NoticeId::ModemRefuses, sent.name);
    if (m_open || m_response || (m_endAt && !sent.selection))
        return; // the session has gone on
    if (result.isDone())
        m_endAt = m_now + IdleTime;
    else
        endSession();
}

void MbimPort::endSession()
{
    m_endAt.reset();
    m_open = false;
    if (m_place == Place::InUse)
        m_events->sessionEnded();
}

// ---- Time ----

void MbimPort::work(Time now)
{
    if (m_place == Place::Closed)
        return;
    m_now = now;
    m_link.loop().run();
    if (std::exchange(m_lost, false)) {
        lose();
        return;
    }
    if (m_waiting || m_place == Place::Announced)
        return;
    if (std::exchange(m_restart, false))
        m_step = Step::SwitchOff;
    if (m_step != Step::Run) {
        if (now >= m_stepAt)
            takeStep();
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

ToolkitPort::Time MbimPort::wakeUp() const
{
    if (m_place == Place::Closed)
        return Never;
    const Time library = m_link.loop().prepare();
    if (m_lost)
        return Time{};
    if (m_waiting || m_place == Place::Announced)
        return library;
    if (m_restart)
        return Time{};
    if (m_step == Step::AwaitPin)
        return library;
    if (m_step != Step::Run)
        return std::min(library, m_stepAt);
    Time next = m_response || m_envelope ? m_busy.at() : Never;
    next = std::min({next, m_restAt.value_or(Never), m_endAt.value_or(Never)});
    return std::min(library, next);
}

void MbimPort::tell(NoticeId id, const std::string &argument)
{
    std::vector<std::string> arguments{m_device};
    if (!argument.empty())
        arguments.push_back(argument);
    const Notice notice = noticeOf(id, std::move(arguments));
    if (std::exchange(m_trouble, notice.text) != notice.text)
        m_reports.noticed(notice);
}
