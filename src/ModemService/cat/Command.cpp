#include "Command.h"

#include <cstdio>

#include "CommandTable.h"
#include "DataObject.h"
#include "TextString.h"
#include "Tlv.h"

namespace cat {

namespace {

constexpr uint8_t ProactiveCommandTag = 0xd0; // clause 9.2
// Three bytes are of use; more must leave room for the rest of the response that repeats them.
constexpr size_t LongestDetails = 100;

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
    void report(Problem problem, const std::string &reason);
    ByteView open(ByteView fetched);
    void checkObjects();
    void readHead();
    void readField(const CommandRow &row, const Field &field);
    bool readValue(const Field &field, const Tlv &tlv);
    void checkIcons(const CommandRow &row);
    std::string label(const DataObject &object, size_t number) const;

    // The n-th data object of the kind, from 0.
    std::optional<Tlv> find(const DataObject &object, size_t number = 0) const;

    Command &m_command;
    ByteView m_objects;
    size_t m_offset = 0; // of the objects
};

// The first problem is the one that is told.
void Decoder::report(Problem problem, const std::string &reason)
{
    if (m_command.problem != Problem::None)
        return;
    m_command.problem = problem;
    m_command.reason = reason;
}

// What lies in the outer data object, or as much of it as is there.
ByteView Decoder::open(ByteView fetched)
{
    if (fetched.empty() || fetched[0] != ProactiveCommandTag) {
        report(Problem::DataNotUnderstood, "no proactive command: expected tag D0 at byte 0");
        return {};
    }
    const auto length = readLength(fetched.part(1));
    if (!length) {
        report(Problem::DataNotUnderstood, "length of the proactive command at byte 1: unreadable");
        return {};
    }
    m_offset = 1 + length->bytes;
    const ByteView objects = fetched.part(m_offset, length->value);
    if (objects.size() != length->value)
        report(Problem::DataNotUnderstood,
               "length of the proactive command at byte 1: " + std::to_string(length->value) +
                   ", but " + std::to_string(objects.size()) + " bytes follow");
    return objects;
}

std::optional<Tlv> Decoder::find(const DataObject &object, size_t number) const
{
    TlvReader reader(m_objects, m_offset);
    while (const auto tlv = reader.next()) {
        if (tlv->tag == object.tag && number-- == 0)
            return tlv;
    }
    return std::nullopt;
}

// Clause 6.10: what is not known is passed over, unless it says that it must be understood.
void Decoder::checkObjects()
{
    TlvReader reader(m_objects, m_offset);
    while (const auto tlv = reader.next()) {
        if (tlv->required && !isKnownTag(tlv->tag))
            report(Problem::DataNotUnderstood,
                   "data object with tag " + hex(tlv->tag) + at(tlv->offset) +
                       ": unknown, and must be understood");
    }
    if (!reader.atEnd())
        report(Problem::DataNotUnderstood,
               "data object" + at(reader.offset()) + ": runs past the end of the command");
}

void Decoder::readHead()
{
    const auto details = find(Objects::CommandDetails);
    const bool readable = details && details->whole.size() <= LongestDetails &&
        Objects::CommandDetails.read(details->value, m_command.details);
    if (!readable) {
        report(Problem::DataNotUnderstood,
               describe(Objects::CommandDetails) + (details ? ": malformed" : ": missing"));
        return;
    }
    m_command.details.object = details->whole.copy();
}

bool Decoder::readValue(const Field &field, const Tlv &tlv)
{
    if (field.read(tlv.value, m_command))
        return true;
    if (field.presence == Presence::Mandatory || tlv.required)
        report(Problem::DataNotUnderstood,
               describe(*field.object) + at(tlv.offset) + ": malformed");
    return false;
}

void Decoder::readField(const CommandRow &row, const Field &field)
{
    size_t number = 0;
    TlvReader reader(m_objects, m_offset);
    while (const auto tlv = reader.next()) {
        if (tlv->tag != field.object->tag)
            continue;
        const size_t found = number++;
        if (field.which == Which::Every)
            readValue(field, *tlv);
        else if (found == size_t(field.which)) {
            readValue(field, *tlv);
            return;
        }
    }
    if (number == 0 && field.presence == Presence::Mandatory)
        report(Problem::ValuesMissing,
               describe(*field.object) + ": missing, " + row.name + " needs it (clause " +
                   row.clause + ")");
}

std::string Decoder::label(const DataObject &object, size_t number) const
{
    const auto tlv = find(object, number);
    if (!tlv)
        return {};
    const bool isTextString = object.tag == Objects::TextString.tag;
    return isTextString ? decodeTextString(tlv->value) : decodeAlpha(tlv->value);
}

// Clause 6.5.4: an icon that does not explain itself goes with a text.
void Decoder::checkIcons(const CommandRow &row)
{
    for (size_t number = 0; number < 2; ++number) {
        const auto tlv = find(Objects::IconIdentifier, number);
        IconIdentifier icon;
        if (!tlv || !readIcon(tlv->value, icon) || icon.selfExplanatory)
            continue;
        if (label(*row.label, number).empty())
            report(Problem::DataNotUnderstood,
                   describe(Objects::IconIdentifier) + at(tlv->offset) +
                       ": not self-explanatory, and there is no text");
    }
}

void Decoder::decode(ByteView fetched)
{
    m_objects = open(fetched);
    readHead();
    if (m_command.details.object.empty()) {
        m_command.details.object = {0x81, 0x03, 0x00, 0x00, 0x00};
        return;
    }
    const CommandRow *row = findCommand(m_command.details.type);
    if (!row) {
        report(Problem::TypeNotUnderstood,
               "type of command " + hex(m_command.details.type) + ": unknown (clause 9.4)");
        return;
    }
    m_command.name = row->name;
    m_command.hasIcon = find(Objects::IconIdentifier) || find(Objects::ItemIconIdentifierList);
    row->create(m_command.body);
    checkObjects();
    readField(*row, DevicesField);
    for (const Field *field = row->fields; field->object; ++field)
        readField(*row, *field);
    if (row->label)
        checkIcons(*row);
    if (row->check) {
        const Finding finding = row->check(m_command);
        report(finding.problem, finding.reason);
    }
    if (std::holds_alternative<OtherCommand>(m_command.body))
        report(Problem::BeyondCapabilities,
               std::string(row->name) + ": beyond what this terminal does");
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
