#include "MbimModem.h"

#include <algorithm>
#include <utility>

#include "Say.h"
#include "cat/Hex.h"

using cat::Bytes;
using cat::ByteView;
using mbim::Type;
using mbim::Writer;
using State = ModemCard::State;

namespace {

constexpr size_t ShortestMessage = 64; // that a host may ask for
constexpr std::chrono::seconds SlowAnswer(2);

const mbim::Uuid BasicConnect = {0xa2, 0x89, 0xcc, 0x33, 0xbc, 0xbb, 0x8b, 0x4f,
                                 0xb6, 0xb0, 0x13, 0x3e, 0xc2, 0xaa, 0xe6, 0xdf};
const mbim::Uuid Stk = {0xd8, 0xf2, 0x01, 0x31, 0xfc, 0xb5, 0x4e, 0x17,
                        0x86, 0x02, 0xd6, 0xed, 0x38, 0x16, 0x16, 0x4c};
enum : uint32_t {
    DeviceCaps = 1,
    ReadyStatus,
    RadioState,
    Pin,
    DeviceServices = 16,
    Subscribe = 19
};
enum : uint32_t { Pac = 1, TerminalResponse, Envelope };

enum Status : uint32_t {
    Success = 0,
    Failure = 2,
    SimNotInserted = 3,
    PinRequired = 5,
    NoDeviceSupport = 9,
    NotInitialized = 14,
    InvalidParameters = 21,
    StkBusy = 27,
    OperationNotAllowed = 28,
};

constexpr uint8_t SetUpMenu = 0x25;
constexpr uint8_t SetUpCall = 0x10;
constexpr size_t PacSupportSize = 256;
constexpr size_t HostControlSize = 32;
constexpr size_t PaddingSize = 5;

// Who does what; the bits of PacHostControl make 4 of 3, 6 of 1 and 7 of 5.
enum Support : uint8_t {
    Nobody = 0,
    HostMay = 1,
    ModemUnseen = 2,
    ModemCanTell = 3,
    ModemTells = 4,
    HostMayTakeOver = 5,
    Host = 6,
    HostTookOver = 7,
};
constexpr std::pair<uint8_t, Support> Supports[] = {
    {0x01, ModemCanTell}, {0x02, ModemUnseen},  {0x03, ModemUnseen},     {0x04, ModemUnseen},
    {0x05, HostMay},      {0x10, ModemCanTell}, {0x11, ModemCanTell},    {0x12, ModemCanTell},
    {0x13, ModemCanTell}, {0x15, HostMay},      {0x20, HostMayTakeOver}, {0x21, HostMay},
    {0x22, HostMay},      {0x23, HostMay},      {0x24, HostMay},         {0x25, HostMay},
    {0x26, ModemUnseen},  {0x27, ModemUnseen},  {0x28, HostMay},         {0x35, HostMay}};

// General results, ETSI TS 102 223 clause 8.12.
const Bytes Performed = {0x00};
const Bytes NoService = {0x20, 0x04};
const Bytes BeyondCapabilities = {0x30};
const Bytes TypeNotUnderstood = {0x31};

ByteView view(const mbim::Uuid &uuid)
{
    return {uuid.data(), uuid.size()};
}

// What the modem, alone, answers a command with that it knows.
Bytes resultOfModem(uint8_t type)
{
    if (type == 0x01 || type == 0x20)
        return Performed;
    return type > SetUpCall && type <= 0x13 ? NoService : BeyondCapabilities;
}

} // namespace

struct MbimModem::Answer {
    uint32_t status = Success;
    Bytes information{};
};

struct MbimModem::Row {
    const mbim::Uuid &service;
    uint32_t cid;
    Answer (MbimModem::*function)(const mbim::Command &);
};

const std::vector<MbimModem::Row> &MbimModem::rows()
{
    static const std::vector<Row> rows = {
        {BasicConnect, DeviceCaps, &MbimModem::deviceCapabilities},
        {BasicConnect, ReadyStatus, &MbimModem::readyStatus},
        {BasicConnect, RadioState, &MbimModem::radio},
        {BasicConnect, Pin, &MbimModem::pin},
        {BasicConnect, DeviceServices, &MbimModem::deviceServices},
        {BasicConnect, Subscribe, &MbimModem::subscribe},
        {Stk, Pac, &MbimModem::pac},
        {Stk, TerminalResponse, &MbimModem::terminalResponse},
        {Stk, Envelope, &MbimModem::envelope},
    };
    return rows;
}

// ---- Messages ----

void MbimModem::portClosed()
{
    m_parser.clear();
    forgetHost();
}

void MbimModem::forgetHost()
{
    m_card.detach();
    m_isOpen = false;
    m_hostControl.clear();
    m_menu.reset();
    m_unsolicited.clear();
}

void MbimModem::received(ByteView bytes)
{
    m_parser.add(bytes);
    while (const auto message = m_parser.next()) {
        take(*message);
        if (m_outbox.hangsUp())
            return;
    }
    if (const auto error = m_parser.takeError())
        simpleDone(Type::FunctionError, error->first, error->second);
}

void MbimModem::take(const mbim::Message &message)
{
    m_faults.nextMessage();
    if (const char *const fault = m_faults.nameOfMoment())
        say(fault);
    if (m_faults.has(Fault::HangUp))
        m_outbox.hangUp();
    if (m_faults.has(Fault::HangUp) || m_faults.has(Fault::Never))
        return;
    if (m_faults.has(Fault::Garbage)) {
        m_outbox.send(m_faults.garbage());
        return;
    }
    if (m_faults.has(Fault::Slow))
        m_outbox.pause(SlowAnswer);
    switch (message.type) {
    case Type::Open:
        forgetHost();
        m_isOpen = true;
        m_longest = std::max<size_t>(mbim::numberAt(message.body, 0), ShortestMessage);
        simpleDone(Type::OpenDone, message.transaction,
                   m_faults.has(Fault::Error) ? Failure : Success);
        break;
    case Type::Close:
        forgetHost();
        simpleDone(Type::CloseDone, message.transaction, Success);
        break;
    case Type::Command:
        if (m_isOpen)
            command(message);
        else
            simpleDone(Type::FunctionError, message.transaction, mbim::Parser::NotOpened);
        break;
    default: // HOST_ERROR wants no answer
        break;
    }
}

void MbimModem::command(const mbim::Message &message)
{
    const auto command = mbim::Command::read(message.body);
    const bool setsToolkit = command && command->service == Stk && command->isSet;
    Answer answer{InvalidParameters};
    if (m_faults.has(Fault::Error))
        answer = {Failure};
    else if (setsToolkit && m_faults.has(Fault::Busy))
        answer = {StkBusy};
    else if (command)
        answer = dispatch(*command);
    if (m_faults.has(Fault::Early))
        tellUnsolicited();
    if (command && command->service == Stk && command->cid == TerminalResponse && m_menu)
        send(*std::exchange(m_menu, std::nullopt)); // so late that its answer is on its way
    done(message, answer);
    tellUnsolicited();
}

MbimModem::Answer MbimModem::dispatch(const mbim::Command &command)
{
    if (command.service == Stk && m_faults.has(Fault::Off))
        return {NoDeviceSupport};
    for (const Row &row : rows()) {
        if (command.service == row.service && command.cid == row.cid)
            return (this->*row.function)(command);
    }
    return {NoDeviceSupport};
}

void MbimModem::done(const mbim::Message &message, const Answer &answer)
{
    if (m_faults.has(Fault::NoFinal))
        return;
    Writer writer;
    writer
        .bytes(ByteView(message.body).part(0, 20)) // service and CID
        .number(m_faults.has(Fault::WrongFinal) ? uint32_t(Failure) : answer.status)
        .number(static_cast<uint32_t>(answer.information.size()))
        .bytes(answer.information);
    send({Type::CommandDone, message.transaction, writer.take()});
}

void MbimModem::simpleDone(Type type, uint32_t transaction, uint32_t number)
{
    send({type, transaction, Writer().number(number).take()});
}

void MbimModem::send(const mbim::Message &message)
{
    const size_t longest = m_faults.has(Fault::Fragments) ? ShortestMessage : m_longest;
    for (const Bytes &frame : mbim::framed(message, longest))
        m_outbox.send(frame);
}

void MbimModem::tellUnsolicited()
{
    for (const mbim::Message &message : std::exchange(m_unsolicited, {}))
        send(message);
}

void MbimModem::tellStateOfCard()
{
    m_unsolicited.push_back(indication(BasicConnect, ReadyStatus, readyInformation()));
}

// ---- Basic Connect ----

MbimModem::Answer MbimModem::deviceCapabilities(const mbim::Command &)
{
    // An embedded modem for GSM networks, without voice, its SIM removable; LTE; no messages; PINs;
    // one session.
    Writer writer;
    for (const uint32_t number : {1, 1, 1, 2, 0x20, 0, 1, 1})
        writer.number(number);
    for (const char *const text : {"", "000000000000000", "1.0", "VirtualModem"})
        writer.text(text);
    return {Success, writer.take()};
}

Bytes MbimModem::readyInformation()
{
    enum : uint32_t { NotInitialized, Initialized, NoSim, Locked = 6 };
    const std::pair<State, uint32_t> states[] = {{State::Off, NotInitialized},
                                                 {State::NoSim, NoSim},
                                                 {State::PinWanted, Locked},
                                                 {State::PinBlocked, Locked},
                                                 {State::Ready, Initialized}};
    const auto row = std::find_if(std::begin(states), std::end(states),
                                  [&](const auto &known) { return known.first == m_card.state(); });
    // IMSI and ICCID, nothing to hide, no telephone numbers.
    return Writer().number(row->second).text("").text("").number(0).number(0).take();
}

MbimModem::Answer MbimModem::readyStatus(const mbim::Command &)
{
    return {Success, readyInformation()};
}

MbimModem::Answer MbimModem::radio(const mbim::Command &command)
{
    const bool isOff = m_card.state() == State::Off;
    const bool wantsOff = mbim::numberAt(command.information, 0) == 0;
    if (command.isSet && wantsOff)
        m_card.switchOff();
    else if (command.isSet && isOff)
        m_card.switchOn();
    const bool isOn = m_card.state() != State::Off;
    return {Success, Writer().number(1).number(isOn).take()};
}

MbimModem::Answer MbimModem::pin(const mbim::Command &command)
{
    enum : uint32_t { Pin1 = 2, Puk1 = 11 };
    enum : uint32_t { Unlocked, Locked };
    constexpr uint32_t UsualPukTries = 10;
    constexpr uint32_t Unknown = 0xffffffff;
    uint32_t status = Success;
    if (command.isSet) {
        const size_t offset = mbim::numberAt(command.information, 8);
        std::string digits;
        for (const uint8_t byte :
             ByteView(command.information).part(offset, mbim::numberAt(command.information, 12)))
            digits += byte ? std::string(1, static_cast<char>(byte)) : std::string();
        if (m_card.state() != State::PinWanted)
            status = OperationNotAllowed;
        else if (!m_card.verify(digits))
            status = Failure;
        else
            m_unsolicited.insert(m_unsolicited.begin(),
                                 indication(BasicConnect, ReadyStatus, readyInformation()));
        m_lockedAnswers = status == Success && m_faults.has(Fault::LatePin) ? 2 : 0;
    }
    const bool isLate = !command.isSet && m_lockedAnswers > 0;
    m_lockedAnswers -= isLate;
    Writer writer;
    if (m_card.state() == State::PinBlocked)
        writer.number(Puk1).number(Locked).number(UsualPukTries);
    else if (m_card.state() == State::PinWanted || isLate)
        writer.number(Pin1).number(Locked).number(static_cast<uint32_t>(m_card.pinTries()));
    else
        writer.number(Pin1).number(Unlocked).number(Unknown);
    return {status, writer.take()};
}

MbimModem::Answer MbimModem::deviceServices(const mbim::Command &)
{
    std::vector<mbim::Uuid> services = {BasicConnect};
    if (!m_faults.has(Fault::Off))
        services.push_back(Stk);
    std::vector<Bytes> elements;
    for (const mbim::Uuid &service : services) {
        Writer cids;
        uint32_t count = 0;
        for (const Row &row : rows()) {
            if (row.service == service) {
                cids.number(row.cid);
                ++count;
            }
        }
        elements.push_back(Writer()
                               .bytes(view(service))
                               .number(0)
                               .number(0)
                               .number(count)
                               .bytes(cids.take())
                               .take());
    }
    Writer writer;
    writer.number(static_cast<uint32_t>(elements.size())).number(0);
    size_t offset = 8 + 8 * elements.size();
    for (const Bytes &element : elements) {
        writer.number(static_cast<uint32_t>(offset)).number(static_cast<uint32_t>(element.size()));
        offset += element.size();
    }
    for (const Bytes &element : elements)
        writer.bytes(element);
    return {Success, writer.take()};
}

// Everything is told anyway.
MbimModem::Answer MbimModem::subscribe(const mbim::Command &command)
{
    return {Success, command.information};
}

// ---- STK ----

uint32_t MbimModem::stateOfCard()
{
    switch (m_card.state()) {
    case State::Ready:
        return Success;
    case State::NoSim:
        return SimNotInserted;
    case State::PinWanted:
    case State::PinBlocked:
        return PinRequired;
    case State::Off:
        break;
    }
    return NotInitialized;
}

MbimModem::Answer MbimModem::pac(const mbim::Command &command)
{
    if (command.isSet) {
        if (command.information.size() != HostControlSize)
            return {InvalidParameters};
        if (const uint32_t problem = stateOfCard())
            return {problem};
        m_hostControl = command.information;
        const bool isNothing = std::all_of(m_hostControl.begin(), m_hostControl.end(),
                                           [](uint8_t byte) { return byte == 0; });
        if (isNothing)
            m_card.detach();
        else
            m_card.attach();
    }
    Bytes supports(PacSupportSize);
    for (const auto &row : Supports)
        supports[position(row.first)] = support(row.first);
    return {Success, supports};
}

MbimModem::Answer MbimModem::terminalResponse(const mbim::Command &command)
{
    const size_t length = mbim::numberAt(command.information, 0);
    const ByteView response = ByteView(command.information).part(4, length);
    if (!command.isSet || response.empty() || response.size() != length || length > 255)
        return {InvalidParameters};
    say("TERMINAL RESPONSE " + cat::toHex(response));
    const bool wasAwaited = m_card.awaitsResponse();
    const uint16_t status = m_card.terminalResponse(response);
    if (!wasAwaited)
        return {OperationNotAllowed};
    const uint32_t told = m_faults.has(Fault::NoEnd) ? 0x9000 : status;
    // No data, at no place.
    return {Success, Writer().number(0).number(0).number(told).take()};
}

MbimModem::Answer MbimModem::envelope(const mbim::Command &command)
{
    if (!command.isSet) {
        // Those of ETSI TS 102 223 clause 7: menu selection, events.
        Bytes supported(32);
        for (const uint8_t tag : {0xd3, 0xd6})
            supported[tag / 8u] |= static_cast<uint8_t>(1 << tag % 8);
        return {Success, supported};
    }
    if (const uint32_t problem = stateOfCard())
        return {problem};
    if (command.information.empty() || command.information.size() > 255)
        return {InvalidParameters};
    say("ENVELOPE " + cat::toHex(command.information));
    const uint16_t status = m_card.envelope(command.information);
    return {status == 0x9300 ? uint32_t(StkBusy) : uint32_t(Success)};
}

// ---- What the card wants ----

size_t MbimModem::position(uint8_t type) const
{
    return m_faults.has(Fault::Decimal) ? (type >> 4) * 10u + (type & 15u) : type;
}

bool MbimModem::isWanted(uint8_t type) const
{
    const size_t place = position(type);
    return !m_hostControl.empty() && m_hostControl[place / 8] & 1 << place % 8;
}

// Whose the command is now.
uint8_t MbimModem::support(uint8_t type) const
{
    const auto row = std::find_if(std::begin(Supports), std::end(Supports),
                                  [&](const auto &known) { return known.first == type; });
    if (row == std::end(Supports))
        return Nobody;
    if (!isWanted(type))
        return row->second;
    switch (row->second) {
    case ModemCanTell:
        return ModemTells;
    case HostMay:
        return Host;
    case HostMayTakeOver:
        return HostTookOver;
    default:
        return row->second;
    }
}

std::optional<Bytes> MbimModem::proactiveCommand(const Bytes &command, uint8_t type)
{
    const bool isTold = type == SetUpMenu && m_faults.has(Fault::Notified);
    switch (support(type)) {
    case Host:
    case HostTookOver:
        notify(command, !isTold);
        if (type == SetUpMenu && m_faults.has(Fault::Again))
            m_menu = m_unsolicited.back();
        return isTold ? std::optional(Performed) : std::nullopt;
    case ModemTells:
        notify(command, false);
        return resultOfModem(type);
    case Nobody:
        return type >= 0x40 && type < 0x50 ? BeyondCapabilities : TypeNotUnderstood;
    default:
        return resultOfModem(type);
    }
}

bool MbimModem::menuAgain(const Bytes &command)
{
    if (isWanted(SetUpMenu))
        notify(command, false);
    return false;
}

void MbimModem::notify(const Bytes &command, bool isToBeAnswered)
{
    Bytes information = Writer().number(isToBeAnswered ? 0 : 1).bytes(command).take();
    if (m_faults.has(Fault::Padding))
        information.resize(information.size() + PaddingSize);
    const int times = m_faults.has(Fault::Again) ? 2 : 1;
    for (int time = 0; time < times; ++time)
        m_unsolicited.push_back(indication(Stk, Pac, information));
}

mbim::Message MbimModem::indication(const mbim::Uuid &service, uint32_t cid,
                                    const Bytes &information)
{
    Writer writer;
    writer.bytes(view(service))
        .number(cid)
        .number(static_cast<uint32_t>(information.size()))
        .bytes(information);
    return {Type::IndicateStatus, 0, writer.take()};
}

// What the modem claims for its host: SET UP MENU and all the other commands that it hands out.
Bytes MbimModem::profile()
{
    return {0x29, 0xe1, 0xff, 0x2f, 0x21, 0x01, 0x00, 0x1f, 0x69};
}
