#include "Command.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "CommandTable.h"
#include "DataObject.h"
#include "TextString.h"
#include "Tlv.h"

namespace cat {

namespace {

constexpr uint8_t ProactiveCommandTag = 0xd0; // clause 9.2
// Three bytes are of use; more must leave room for the rest of the response that repeats them.
constexpr size_t LongestDetails = 100;

// What can be wrong with a command.  The first of these is the one that is told.
enum class Fault {
    NoCommand,
    NoLength,
    WrongLength,
    NoDetails,
    BadDetails,
    UnknownType,
    CutOff,
    Missing,
    NotUnderstood,
    Malformed,
    IconWithoutText,
    Invalid,
    Beyond,
    None
};

Problem problemOf(Fault fault)
{
    switch (fault) {
    case Fault::None:
        return Problem::None;
    case Fault::UnknownType:
        return Problem::TypeNotUnderstood;
    case Fault::Missing:
        return Problem::ValuesMissing;
    case Fault::Beyond:
        return Problem::BeyondCapabilities;
    default:
        return Problem::DataNotUnderstood;
    }
}

std::string describe(const DataObject &object)
{
    return std::string(object.name) + " (clause " + object.clause + ")";
}

std::string hex(unsigned number)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%02X", number);
    return digits;
}

std::string at(size_t offset)
{
    return " at byte " + std::to_string(offset);
}

// One run over one command.
class Decoder {
public:
    explicit Decoder(Command &command)
        : m_command(command)
    {
    }

    void decode(ByteView fetched);

private:
    struct Complaint {
        Fault fault = Fault::None;
        const DataObject *object = nullptr;
        Tlv tlv{};
        const char *text = "";
    };

    void report(const Complaint &complaint);
    std::string reason() const;
    bool open(ByteView fetched);
    bool readDetails();
    void readCommand();
    void readObjects();
    void readObject(const Tlv &tlv);
    void readField(const Field &field, const Tlv &tlv);
    bool isNeeded(const Field &field) const;
    void checkPresence();
    void checkIcons();

    Command &m_command;
    const CommandRow *m_row = nullptr;
    ByteView m_objects;
    size_t m_offset = 0; // of the objects
    size_t m_length = 0; // of the objects, as the command has it
    bool m_seen[FieldCount] = {};
    std::optional<Tlv> m_icons[2];
    ByteView m_labels[2];
    Complaint m_complaint;
};

void Decoder::report(const Complaint &complaint)
{
    if (complaint.fault < m_complaint.fault)
        m_complaint = complaint;
}

std::string Decoder::reason() const
{
    const auto &[fault, object, tlv, text] = m_complaint;
    switch (fault) {
    case Fault::NoCommand:
        return "no proactive command: expected tag D0 at byte 0";
    case Fault::NoLength:
        return "length of the proactive command at byte 1: unreadable";
    case Fault::WrongLength:
        return "length of the proactive command at byte 1: " + std::to_string(m_length) + ", but " +
            std::to_string(m_objects.size()) + " bytes follow";
    case Fault::NoDetails:
        return describe(Objects::CommandDetails) + ": missing";
    case Fault::BadDetails:
        return describe(Objects::CommandDetails) + ": malformed";
    case Fault::UnknownType:
        return "type of command " + hex(m_command.details.type) + ": unknown (clause 9.4)";
    case Fault::CutOff:
        return "data object" + at(tlv.offset) + ": runs past the end of the command";
    case Fault::Missing:
        return describe(*object) + ": missing, " + m_row->name + " needs it (clause " +
            m_row->clause + ")";
    case Fault::NotUnderstood:
        return "data object with tag " + hex(tlv.tag) + at(tlv.offset) + ": none of " +
            m_row->name + ", and must be understood";
    case Fault::Malformed:
        return describe(*object) + at(tlv.offset) + ": malformed";
    case Fault::IconWithoutText:
        return describe(Objects::IconIdentifier) + at(tlv.offset) + ": comes without a text";
    case Fault::Invalid:
        return text;
    case Fault::Beyond:
        return std::string(m_row->name) + ": beyond what this terminal does";
    case Fault::None:
        break;
    }
    return {};
}

// What lies in the outer data object, or as much of it as is there.
bool Decoder::open(ByteView fetched)
{
    if (fetched.empty() || fetched[0] != ProactiveCommandTag) {
        report({Fault::NoCommand});
        return false;
    }
    const auto length = readLength(fetched.part(1));
    if (!length) {
        report({Fault::NoLength});
        return false;
    }
    m_offset = 1 + length->bytes;
    m_length = length->value;
    m_objects = fetched.part(m_offset, m_length);
    if (m_objects.size() != m_length)
        report({Fault::WrongLength});
    return true;
}

bool Decoder::readDetails()
{
    TlvReader reader(m_objects, m_offset);
    auto tlv = reader.next();
    while (tlv && tlv->tag != Objects::CommandDetails.tag)
        tlv = reader.next();
    const bool readable = tlv && tlv->whole.size() <= LongestDetails &&
        readCommandDetails(tlv->value, m_command.details);
    if (readable)
        m_command.details.object = tlv->whole.copy();
    else
        report({tlv ? Fault::BadDetails : Fault::NoDetails});
    return readable;
}

bool Decoder::isNeeded(const Field &field) const
{
    return field.mandatory.holds(m_command.details.qualifier);
}

void Decoder::readField(const Field &field, const Tlv &tlv)
{
    const size_t number = field.which == Which::Second;
    if (field.object == m_row->label)
        m_labels[number] = tlv.value;
    if (field.read(tlv.value, m_command)) {
        if (field.object == &Objects::IconIdentifier)
            m_icons[number] = tlv;
    } else if (tlv.required || isNeeded(field)) {
        report({Fault::Malformed, field.object, tlv});
    } else {
        m_command.isPartial = true;
    }
}

// Clause 6.10: what is none of the command's is passed over, unless it must be understood.  Of
// several of a kind the first ones count.
void Decoder::readObject(const Tlv &tlv)
{
    bool known = tlv.tag == Objects::CommandDetails.tag;
    for (size_t i = 0; i < FieldCount && m_row->fields[i].object; ++i) {
        const Field &field = m_row->fields[i];
        if (field.object->tag != tlv.tag)
            continue;
        if (field.which == Which::Every || !m_seen[i]) {
            m_seen[i] = true;
            readField(field, tlv);
            return;
        }
        known = true;
    }
    if (known || m_row->hasBesides(tlv.tag))
        return;
    if (tlv.required)
        report({Fault::NotUnderstood, nullptr, tlv});
    else
        m_command.isPartial = true;
}

void Decoder::readObjects()
{
    TlvReader reader(m_objects, m_offset);
    while (const auto tlv = reader.next()) {
        m_command.hasIcon |= tlv->tag == Objects::IconIdentifier.tag ||
            tlv->tag == Objects::ItemIconIdentifierList.tag;
        readObject(*tlv);
    }
    if (!reader.atEnd()) {
        Tlv rest;
        rest.offset = reader.offset();
        report({Fault::CutOff, nullptr, rest});
    }
}

void Decoder::checkPresence()
{
    for (size_t i = 0; i < FieldCount && m_row->fields[i].object; ++i) {
        const Field &field = m_row->fields[i];
        if (!m_seen[i] && isNeeded(field))
            report({Fault::Missing, field.object});
    }
}

// Clause 6.5.4.
void Decoder::checkIcons()
{
    for (const size_t number : {0, 1}) {
        IconIdentifier icon;
        if (!m_icons[number])
            continue;
        readIcon(m_icons[number]->value, icon);
        if (icon.selfExplanatory && m_row->iconText == IconText::UnlessSelfExplanatory)
            continue;
        const bool isTextString = m_row->label == &Objects::TextString;
        const ByteView label = m_labels[number];
        if ((isTextString ? decodeTextString(label) : decodeAlpha(label)).empty())
            report({Fault::IconWithoutText, nullptr, *m_icons[number]});
    }
}

void Decoder::decode(ByteView fetched)
{
    if (open(fetched) && readDetails())
        readCommand();
    if (m_command.details.object.empty())
        m_command.details.object = {0x81, 0x03, 0x00, 0x00, 0x00};
    m_command.problem = problemOf(m_complaint.fault);
    if (m_command.problem != Problem::None)
        m_command.reason = reason();
}

void Decoder::readCommand()
{
    m_row = findCommand(m_command.details.type);
    if (!m_row) {
        report({Fault::UnknownType});
        return;
    }
    m_command.name = m_row->name;
    m_row->create(m_command.body);
    readObjects();
    checkPresence();
    checkIcons();
    if (const char *text = m_row->check ? m_row->check(m_command) : nullptr)
        report({Fault::Invalid, nullptr, {}, text});
    if (std::holds_alternative<OtherCommand>(m_command.body))
        report({Fault::Beyond});
}

} // namespace

std::chrono::milliseconds Duration::time() const
{
    switch (unit) {
    case Unit::Minutes:
        return std::chrono::minutes(interval);
    case Unit::TenthsOfSeconds:
        return std::chrono::milliseconds(100) * interval;
    case Unit::Seconds:
        break;
    }
    return std::chrono::seconds(interval);
}

Command decode(ByteView fetched)
{
    Command command;
    Decoder(command).decode(fetched);
    return command;
}

} // namespace cat
