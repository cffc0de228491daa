#include "AtModem.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "Say.h"
#include "cat/Hex.h"

using cat::Bytes;
using State = ModemCard::State;

namespace {

constexpr size_t LongestLine = 8192;
constexpr std::chrono::seconds SlowAnswer(2);

// Errors of 3GPP TS 27.007 clause 9.2.
enum {
    PlainError = -1,
    None = 0,
    NotAllowed = 3,
    NotSupported = 4,
    NoSim = 10,
    PinWanted = 11,
    SimFailure = 13,
    SimBusy = 14,
    WrongPin = 16,
    InvalidParameter = 50,
};
constexpr std::pair<int, const char *> ErrorWords[] = {
    {NotAllowed, "operation not allowed"}, {NotSupported, "operation not supported"},
    {NoSim, "SIM not inserted"},           {PinWanted, "SIM PIN required"},
    {SimFailure, "SIM failure"},           {SimBusy, "SIM busy"},
    {WrongPin, "incorrect password"},      {InvalidParameter, "Incorrect parameters"}};

// The bits of TERMINAL PROFILE (ETSI TS 102 223 clause 5.2) for what ModemCard does and a modem's
// network could, and those that terminal and modem may share: the download itself, REFRESH, SET UP
// EVENT LIST.
const Bytes ModemProfile = {0x21, 0x00, 0xe8, 0x0e, 0x00, 0x00, 0x00, 0x07, 0x08};
const Bytes SharedProfile = {0x01, 0x00, 0x80, 0x00, 0x01};

constexpr uint8_t SetUpMenu = 0x25;
constexpr uint8_t Refresh = 0x01;

// Byte by byte; of bytes that one of them does not have, `other` has the say.
template <typename Operation>
Bytes merged(const Bytes &one, const Bytes &other, Operation operation)
{
    Bytes result(std::max(one.size(), other.size()));
    for (size_t at = 0; at < result.size(); ++at)
        result[at] = static_cast<uint8_t>(
            operation(at < one.size() ? one[at] : 0, at < other.size() ? other[at] : 0));
    return result;
}

} // namespace

/// A command line behind "AT".
struct AtModem::Call {
    enum class Kind { Plain, Query, Test, Set };
    struct Parameter {
        std::string text;
        bool isQuoted = false;
    };
    std::string name;
    Kind kind = Kind::Plain;
    std::vector<Parameter> parameters;

    explicit Call(const std::string &text)
    {
        const size_t end = text.find_first_of("=?");
        name = text.substr(0, end);
        std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        if (end == std::string::npos)
            return;
        kind = text[end] == '?'              ? Kind::Query
            : text.substr(end + 1, 1) == "?" ? Kind::Test
                                             : Kind::Set;
        if (kind != Kind::Set)
            return;
        bool inQuotes = false;
        parameters.emplace_back();
        for (const char letter : text.substr(end + 1)) {
            Parameter &last = parameters.back();
            if (letter == '"')
                inQuotes = !std::exchange(last.isQuoted, true) || !inQuotes;
            else if (letter == ',' && !inQuotes)
                parameters.emplace_back();
            else
                last.text += letter;
        }
    }

    std::string text(size_t index) const
    {
        return index < parameters.size() ? parameters[index].text : std::string();
    }
    int number(size_t index) const
    {
        const std::string digits = text(index);
        const bool isNumber = !digits.empty() && digits.size() < 4 &&
            digits.find_first_not_of("0123456789") == std::string::npos;
        return isNumber ? std::atoi(digits.c_str()) : -1;
    }
};

struct AtModem::Answer {
    int error = None;
    std::vector<std::string> lines{};
};

struct AtModem::Row {
    const char *name;
    Answer (AtModem::*function)(const Call &);
};

const std::vector<AtModem::Row> &AtModem::rows()
{
    static const std::vector<Row> rows = {
        {"", &AtModem::attention},
        {"E0", &AtModem::echo},
        {"E1", &AtModem::echo},
        {"I", &AtModem::identity},
        {"+CGMI", &AtModem::identity},
        {"+CGMM", &AtModem::identity},
        {"+CMEE", &AtModem::errors},
        {"+CPIN", &AtModem::pin},
        {"+CFUN", &AtModem::functionality},
        {"+CUSATR", &AtModem::readProfile},
        {"+CUSATW", &AtModem::writeProfile},
        {"+CUSATD", &AtModem::download},
        {"+CUSATA", &AtModem::activate},
        {"+CUSATE", &AtModem::envelope},
        {"+CUSATT", &AtModem::terminalResponse},
    };
    return rows;
}

// ---- The port ----

void AtModem::portOpened()
{
    if (m_faults.has(Fault::Bare))
        m_card.attach();
    tellUnsolicited();
}

void AtModem::portClosed()
{
    m_card.detach();
    m_line.clear();
    m_unsolicited.clear();
    m_hasEcho = true;
    m_errors = 0;
    m_repeated = false;
}

void AtModem::received(cat::ByteView bytes)
{
    for (const uint8_t byte : bytes) {
        if (m_hasEcho)
            m_outbox.send({byte});
        if (byte == '\r') {
            take(std::exchange(m_line, {}));
            if (m_outbox.hangsUp())
                return;
        } else if (byte != '\n' && m_line.size() < LongestLine) {
            m_line += static_cast<char>(byte);
        }
    }
}

void AtModem::take(const std::string &line)
{
    if (line.empty())
        return;
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
    const Answer answer = carryOut(line);
    if (m_faults.has(Fault::Slow))
        m_outbox.pause(SlowAnswer);
    if (m_faults.has(Fault::Early))
        tellUnsolicited();
    for (const std::string &part : answer.lines)
        sendLine(part);
    if (m_faults.has(Fault::WrongFinal))
        sendLine(answer.error ? "OK" : "ERROR");
    else if (!m_faults.has(Fault::NoFinal))
        sendLine(answer.error ? error(answer.error) : "OK");
    tellUnsolicited();
}

void AtModem::tellUnsolicited()
{
    for (const std::string &line : std::exchange(m_unsolicited, {}))
        sendLine(line);
}

void AtModem::tellStateOfCard()
{
    const bool isThere = m_card.state() != State::NoSim;
    m_unsolicited.push_back(isThere ? "+CPIN: READY" : "+CPIN: NOT INSERTED");
}

void AtModem::sendLine(const std::string &line)
{
    std::string text = "\r\n" + line + "\r\n";
    const size_t blank = text.find(": ");
    if (m_faults.has(Fault::Tight) && blank != std::string::npos)
        text.erase(blank + 1, 1);
    m_outbox.send(Bytes(text.begin(), text.end()));
}

std::string AtModem::error(int number) const
{
    const bool inWords = m_errors == 2 || m_faults.has(Fault::Words);
    if (number == PlainError || (m_errors == 0 && !inWords))
        return "ERROR";
    const auto row = std::find_if(std::begin(ErrorWords), std::end(ErrorWords),
                                  [&](const auto &known) { return known.first == number; });
    return "+CME ERROR: " + (inWords ? row->second : std::to_string(number));
}

std::string AtModem::quoted(const std::string &hex) const
{
    return m_faults.has(Fault::Unquoted) ? hex : '"' + hex + '"';
}

// ---- Commands ----

AtModem::Answer AtModem::carryOut(const std::string &line)
{
    if (line.size() < 2 || ::toupper(line[0]) != 'A' || ::toupper(line[1]) != 'T')
        return {PlainError};
    const Call call(line.substr(2));
    const bool isEssential = call.name == "+CUSATT" || call.name == "+CUSATE";
    if (m_faults.has(Fault::Error) || (m_faults.has(Fault::Bare) && !isEssential) ||
        (m_faults.has(Fault::Off) && call.name.compare(0, 6, "+CUSAT") == 0))
        return {PlainError};
    if (m_faults.has(Fault::Busy)) {
        if (call.name == "+CUSATE")
            return {None, {"+CUSATE: " + quoted("") + ",1", "+CUSATE2: 147,0"}};
        return {SimBusy};
    }
    return dispatch(call);
}

AtModem::Answer AtModem::dispatch(const Call &call)
{
    for (const Row &row : rows()) {
        if (call.name == row.name)
            return (this->*row.function)(call);
    }
    return {NotSupported};
}

std::optional<Bytes> AtModem::hexOf(const Call &call, size_t index) const
{
    if (index >= call.parameters.size())
        return std::nullopt;
    const Call::Parameter &parameter = call.parameters[index];
    if (parameter.isQuoted && m_faults.has(Fault::Unquoted))
        return std::nullopt;
    const auto bytes = cat::fromHex(parameter.text);
    return bytes && bytes->size() <= 255 ? bytes : std::nullopt;
}

AtModem::Answer AtModem::attention(const Call &)
{
    return {};
}

AtModem::Answer AtModem::echo(const Call &call)
{
    m_hasEcho = call.name == "E1" || m_faults.has(Fault::Echo);
    return {};
}

AtModem::Answer AtModem::errors(const Call &call)
{
    if (call.kind != Call::Kind::Set || call.number(0) < 0 || call.number(0) > 2)
        return {NotSupported};
    m_errors = call.number(0);
    return {};
}

AtModem::Answer AtModem::identity(const Call &)
{
    return {None, {"VirtualModem"}};
}

AtModem::Answer AtModem::pin(const Call &call)
{
    switch (m_card.state()) {
    case State::Off:
    case State::NoSim:
        return {NoSim};
    case State::PinBlocked:
        return call.kind == Call::Kind::Query ? Answer{None, {"+CPIN: SIM PUK"}} : Answer{WrongPin};
    case State::PinWanted:
        if (call.kind == Call::Kind::Query)
            return {None, {"+CPIN: SIM PIN"}};
        return {m_card.verify(call.text(0)) ? None : WrongPin};
    case State::Ready:
        break;
    }
    return call.kind == Call::Kind::Query ? Answer{None, {"+CPIN: READY"}} : Answer{NotAllowed};
}

AtModem::Answer AtModem::functionality(const Call &call)
{
    const bool isOff = m_card.state() == State::Off;
    if (call.kind == Call::Kind::Query)
        return {None, {isOff ? "+CFUN: 4" : "+CFUN: 1"}};
    const int mode = call.number(0);
    if (call.kind != Call::Kind::Set || (mode != 0 && mode != 1 && mode != 4))
        return {NotSupported};
    if (mode != 1)
        m_card.switchOff();
    else if (isOff)
        m_card.switchOn();
    return {};
}

AtModem::Answer AtModem::readProfile(const Call &call)
{
    const std::pair<int, Bytes> storages[] = {
        {0, m_terminalProfile}, {1, ModemProfile}, {2, ModemProfile}, {3, m_activeProfile}};
    Answer answer;
    for (const auto &[storage, profile] : storages) {
        if (call.kind != Call::Kind::Set || call.number(0) == storage)
            answer.lines.push_back("+CUSATR: " + std::to_string(storage) + ',' +
                                   quoted(cat::toHex(profile)));
    }
    return answer;
}

AtModem::Answer AtModem::writeProfile(const Call &call)
{
    if (call.kind == Call::Kind::Test)
        return {};
    const auto profile = hexOf(call, 1);
    if (!profile || call.number(0) != 0)
        return {InvalidParameter};
    const auto twice = [](int one, int other) { return one & other; };
    const auto without = [](int one, int other) { return one & ~other; };
    const Bytes conflict = merged(merged(*profile, ModemProfile, twice), SharedProfile, without);
    if (std::any_of(conflict.begin(), conflict.end(), [](uint8_t byte) { return byte != 0; }))
        return {NotAllowed, {"+CUSATW: 0," + quoted(cat::toHex(conflict))}};
    m_terminalProfile = *profile;
    return {};
}

AtModem::Answer AtModem::download(const Call &call)
{
    if (call.kind != Call::Kind::Set) {
        return {None,
                {std::string("+CUSATD: ") + (m_combines ? "1," : "0,") + (m_reports ? "1" : "0")}};
    }
    if (call.number(0) != 0 && call.number(0) != 1)
        return {InvalidParameter};
    m_combines = call.number(0) == 1;
    m_reports = call.number(1) == 1;
    return {};
}

AtModem::Answer AtModem::activate(const Call &call)
{
    if (call.kind != Call::Kind::Set || call.number(0) < 0 || call.number(0) > 1)
        return {NotSupported};
    if (m_card.state() != State::Ready)
        return {m_card.state() == State::PinWanted ? PinWanted : NoSim};
    if (call.number(0) == 0) {
        m_card.detach();
        return {};
    }
    m_card.attach();
    if (m_faults.has(Fault::Forms))
        return {None, {"+CUSATA: 1,0"}};
    return {};
}

AtModem::Answer AtModem::envelope(const Call &call)
{
    const auto bytes = hexOf(call, 0);
    if (!bytes || bytes->empty())
        return {InvalidParameter};
    if (!m_card.isAttached())
        return {NotAllowed};
    say("ENVELOPE " + cat::toHex(*bytes));
    const uint16_t status = m_card.envelope(*bytes);
    const bool isBusy = status == 0x9300;
    const std::string data = "+CUSATE: " + quoted("") + (isBusy ? ",1" : ",0");
    const std::string words =
        "+CUSATE2: " + std::to_string(status >> 8) + ',' + std::to_string(status & 0xff);
    if (isBusy || !m_faults.has(Fault::Forms))
        return {None, {data, words}};
    const std::vector<Answer> forms = {
        {None, {"+CUSATER: " + cat::toHex(Bytes{0x90, 0x00})}}, {}, {None, {"+CUSATE: 0"}}};
    return forms[static_cast<size_t>(m_form++) % forms.size()];
}

AtModem::Answer AtModem::terminalResponse(const Call &call)
{
    const auto bytes = hexOf(call, 0);
    if (!bytes || bytes->empty())
        return {InvalidParameter};
    say("TERMINAL RESPONSE " + cat::toHex(*bytes));
    if (std::exchange(m_repeated, false)) {
        m_card.handOutPending();
        return {};
    }
    const bool wasAwaited = m_card.awaitsResponse();
    m_card.terminalResponse(*bytes);
    if (!wasAwaited)
        return {NotAllowed};
    return m_faults.has(Fault::Forms) ? Answer{None, {"+CUSATT: 0"}} : Answer{};
}

// ---- What the card wants ----

std::optional<Bytes> AtModem::proactiveCommand(const Bytes &command, uint8_t type)
{
    if (type == Refresh)
        return Bytes{0x00}; // the modem's own
    // One at a time: what comes later takes the place of what was not answered.
    if (!m_repeated)
        notify(command);
    if (type == SetUpMenu && m_faults.has(Fault::EarlyEnd))
        m_unsolicited.push_back("+CUSATEND");
    return std::nullopt;
}

bool AtModem::menuAgain(const Bytes &command)
{
    m_repeated = true;
    notify(command);
    return true;
}

void AtModem::notify(const Bytes &command)
{
    const std::string hex = cat::toHex(command);
    const int times = m_faults.has(Fault::Again) ? 2 : 1;
    for (int time = 0; time < times; ++time)
        m_unsolicited.push_back("+CUSATP: " +
                                (m_faults.has(Fault::Quoted) ? '"' + hex + '"' : hex));
}

void AtModem::sessionEnded()
{
    if (!m_faults.has(Fault::NoEnd))
        m_unsolicited.push_back("+CUSATEND");
}

Bytes AtModem::profile()
{
    m_repeated = false; // the card starts anew
    const auto either = [](int one, int other) { return one | other; };
    m_activeProfile = std::exchange(m_combines, false)
        ? merged(ModemProfile, m_terminalProfile, either)
        : ModemProfile;
    if (m_reports)
        m_unsolicited.push_back("+CUSATS: 1");
    return m_activeProfile;
}
