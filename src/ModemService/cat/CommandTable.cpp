#include "CommandTable.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace cat {

namespace {

template <class Class, class Member> Member &memberOf(Command &command, Member Class::*member)
{
    if constexpr (std::is_same_v<Class, Command>)
        return command.*member;
    else if constexpr (!std::is_same_v<Class, Menu>)
        return std::get<Class>(command.body).*member;
    else if (auto *setUpMenu = std::get_if<SetUpMenu>(&command.body))
        return setUpMenu->menu.*member;
    else
        return std::get<SelectItem>(command.body).menu.*member;
}

template <class Value>
bool readValue(const ReadableObject<Value> &object, ByteView bytes, std::vector<Value> &values)
{
    Value value;
    if (!object.read(bytes, value))
        return false;
    values.push_back(std::move(value));
    return true;
}

template <class Value, class Member>
bool readValue(const ReadableObject<Value> &object, ByteView bytes, Member &member)
{
    Value value{};
    if (!object.read(bytes, value))
        return false;
    member = std::move(value);
    return true;
}

template <const auto &Object, auto Member> bool into(ByteView bytes, Command &command)
{
    return readValue(Object, bytes, memberOf(command, Member));
}

// A value that has no place in the command, but must be well formed.
template <class Value> bool tryReading(const ReadableObject<Value> &object, ByteView bytes)
{
    Value value{};
    return object.read(bytes, value);
}

template <const auto &Object> bool nowhere(ByteView bytes, Command &)
{
    return tryReading(Object, bytes);
}

// Data objects of which one makes two members.

bool intoLimits(ByteView bytes, Command &command)
{
    ResponseLength length;
    if (!readResponseLength(bytes, length))
        return false;
    auto &input = std::get<GetInput>(command.body);
    input.minLength = length.min;
    input.maxLength = length.max;
    return true;
}

bool intoShortMessage(ByteView bytes, Command &command)
{
    Submission submission;
    if (!readSubmission(bytes, submission))
        return false;
    auto &message = std::get<SendShortMessage>(command.body);
    message.address = std::move(submission.address);
    message.message = std::move(submission.message);
    return true;
}

template <const auto &Object, auto Member> constexpr Field mandatory(Which which = Which::First)
{
    return {&Object, into<Object, Member>, Presence::Mandatory, which};
}

template <const auto &Object, auto Member> constexpr Field optional(Which which = Which::First)
{
    return {&Object, into<Object, Member>, Presence::Optional, which};
}

template <const auto &Object> constexpr Field mandatory()
{
    return {&Object, nowhere<Object>, Presence::Mandatory, Which::First};
}

template <const auto &Object> constexpr Field optional(Which which = Which::First)
{
    return {&Object, nowhere<Object>, Presence::Optional, which};
}

template <class Type> void make(Body &body)
{
    body.emplace<Type>();
}

// What the clauses ask for beyond a row.

Finding checkDisplayText(Command &command)
{
    if (std::get<DisplayText>(command.body).text.empty())
        return {Problem::DataNotUnderstood, "text string (clause 8.15): empty"};
    return {};
}

bool isNull(const Item &item)
{
    return item.id == 0;
}

bool hasNullItem(const std::vector<Item> &items)
{
    return std::any_of(items.begin(), items.end(), isNull);
}

constexpr Finding NullItem{Problem::DataNotUnderstood, "item (clause 8.9): null"};

// Clause 6.6.7: a single null item takes the menu away.
Finding checkSetUpMenu(Command &command)
{
    auto &items = std::get<SetUpMenu>(command.body).menu.items;
    if (!hasNullItem(items))
        return {};
    const bool single = items.size() == 1;
    items.erase(std::remove_if(items.begin(), items.end(), isNull), items.end());
    return single ? Finding{} : NullItem;
}

Finding checkSelectItem(Command &command)
{
    auto &items = std::get<SelectItem>(command.body).menu.items;
    if (!hasNullItem(items))
        return {};
    items.erase(std::remove_if(items.begin(), items.end(), isNull), items.end());
    return NullItem;
}

// Clause 6.4.7: the card says what changed.
Finding checkRefresh(Command &command)
{
    constexpr uint8_t FileChange = 0x01;
    if (command.details.qualifier == FileChange && std::get<Refresh>(command.body).files.empty())
        return {Problem::ValuesMissing, "file list (clause 8.18): missing"};
    return {};
}

// Clause 6.6.25: a notification of one language names it.
Finding checkLanguage(Command &command)
{
    constexpr uint8_t Specific = 0x01;
    if (command.details.qualifier & Specific &&
        std::get<LanguageNotification>(command.body).language.empty())
        return {Problem::ValuesMissing, "language (clause 8.45): missing"};
    return {};
}

// Clause 6.6.21.
Finding checkTimer(Command &command)
{
    constexpr uint8_t Action = 0x03;
    constexpr uint8_t Start = 0x00;
    if ((command.details.qualifier & Action) == Start &&
        !std::get<TimerManagement>(command.body).value)
        return {Problem::ValuesMissing, "timer value (clause 8.38): missing"};
    return {};
}

using namespace Objects;
constexpr Which Second = Which::Second;
constexpr Which Every = Which::Every;

// A row is a command: type, structure (mandatory and optional data objects), and what it becomes.
// What the standard has and this terminal does not do becomes an OtherCommand, its data objects
// being looked at all the same.
constexpr CommandRow Commands[] = {
    {0x01,
     "REFRESH",
     "6.6.13",
     make<cat::Refresh>,
     {optional<FileList, &Refresh::files>(), optional<AlphaIdentifier>(),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier,
     checkRefresh},
    {0x02, "MORE TIME", "6.6.4", make<MoreTime>, {}},
    {0x03,
     "POLL INTERVAL",
     "6.6.6",
     make<PollInterval>,
     {mandatory<Objects::Duration, &PollInterval::duration>()}},
    {0x04, "POLLING OFF", "6.6.14", make<PollingOff>, {}},
    {0x05,
     "SET UP EVENT LIST",
     "6.6.16",
     make<SetUpEventList>,
     {mandatory<EventList, &SetUpEventList::events>()}},
    {0x10,
     "SET UP CALL",
     "6.6.12",
     make<SetUpCall>,
     {optional<AlphaIdentifier, &SetUpCall::confirmation>(),
      mandatory<Address, &SetUpCall::address>(), optional<Objects::Duration>(),
      optional<Objects::IconIdentifier>(), optional<AlphaIdentifier, &SetUpCall::setUp>(Second),
      optional<Objects::IconIdentifier>(Second)},
     &AlphaIdentifier},
    {0x11,
     "SEND SS",
     "6.6.10",
     make<SendSs>,
     {optional<AlphaIdentifier, &SendSs::alpha>(), mandatory<SsString, &SendSs::code>(),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x12,
     "SEND USSD",
     "6.6.11",
     make<SendUssd>,
     {optional<AlphaIdentifier, &SendUssd::alpha>(), mandatory<UssdString, &SendUssd::code>(),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x13,
     "SEND SHORT MESSAGE",
     "6.6.9",
     make<SendShortMessage>,
     {optional<AlphaIdentifier, &SendShortMessage::alpha>(),
      optional<Address>(),
      {&SmsTpdu, intoShortMessage, Presence::Mandatory},
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x14,
     "SEND DTMF",
     "6.6.24",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), mandatory<DtmfString>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x15,
     "LAUNCH BROWSER",
     "6.6.26",
     make<LaunchBrowser>,
     {mandatory<Url, &LaunchBrowser::url>(), optional<AlphaIdentifier, &LaunchBrowser::alpha>(),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x16, "GEOGRAPHICAL LOCATION REQUEST", "3GPP TS 31.111", make<OtherCommand>, {}},
    {0x20,
     "PLAY TONE",
     "6.6.5",
     make<PlayTone>,
     {optional<AlphaIdentifier, &PlayTone::alpha>(), optional<Tone, &PlayTone::tone>(),
      optional<Objects::Duration, &PlayTone::duration>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x21,
     "DISPLAY TEXT",
     "6.6.1",
     make<DisplayText>,
     {mandatory<TextString, &DisplayText::text>(), optional<Objects::IconIdentifier>(),
      optional<ImmediateResponse, &DisplayText::immediateResponse>(),
      optional<Objects::Duration, &DisplayText::duration>()},
     &TextString,
     checkDisplayText},
    {0x22,
     "GET INKEY",
     "6.6.2",
     make<GetInkey>,
     {mandatory<TextString, &GetInkey::text>(), optional<Objects::IconIdentifier>(),
      optional<Objects::Duration, &GetInkey::duration>()},
     &TextString},
    {0x23,
     "GET INPUT",
     "6.6.3",
     make<GetInput>,
     {mandatory<TextString, &GetInput::text>(),
      {&Objects::ResponseLength, intoLimits, Presence::Mandatory},
      optional<DefaultText, &GetInput::defaultText>(),
      optional<Objects::IconIdentifier>()},
     &TextString},
    {0x24,
     "SELECT ITEM",
     "6.6.8",
     make<SelectItem>,
     {optional<AlphaIdentifier, &Menu::title>(), mandatory<Objects::Item, &Menu::items>(Every),
      optional<ItemIdentifier, &SelectItem::defaultItem>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier,
     checkSelectItem},
    {0x25,
     "SET UP MENU",
     "6.6.7",
     make<SetUpMenu>,
     {mandatory<AlphaIdentifier, &Menu::title>(), mandatory<Objects::Item, &Menu::items>(Every),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier,
     checkSetUpMenu},
    {0x26, "PROVIDE LOCAL INFORMATION", "6.6.15", make<ProvideLocalInformation>, {}},
    {0x27,
     "TIMER MANAGEMENT",
     "6.6.21",
     make<TimerManagement>,
     {mandatory<TimerIdentifier, &TimerManagement::timer>(),
      optional<TimerValue, &TimerManagement::value>()},
     nullptr,
     checkTimer},
    {0x28,
     "SET UP IDLE MODE TEXT",
     "6.6.22",
     make<SetUpIdleModeText>,
     {mandatory<TextString, &SetUpIdleModeText::text>(), optional<Objects::IconIdentifier>()},
     &TextString},
    {0x30, "PERFORM CARD APDU", "6.6.17", make<OtherCommand>, {mandatory<CommandApdu>()}},
    {0x31, "POWER ON CARD", "6.6.19", make<OtherCommand>, {}},
    {0x32, "POWER OFF CARD", "6.6.18", make<OtherCommand>, {}},
    {0x33, "GET READER STATUS", "6.6.20", make<OtherCommand>, {}},
    {0x34,
     "RUN AT COMMAND",
     "6.6.23",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), mandatory<AtCommand>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x35,
     "LANGUAGE NOTIFICATION",
     "6.6.25",
     make<LanguageNotification>,
     {optional<Language, &LanguageNotification::language>()},
     nullptr,
     checkLanguage},
    {0x40,
     "OPEN CHANNEL",
     "6.6.27",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x41,
     "CLOSE CHANNEL",
     "6.6.28",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x42,
     "RECEIVE DATA",
     "6.6.29",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), mandatory<ChannelDataLength>(),
      optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x43,
     "SEND DATA",
     "6.6.30",
     make<OtherCommand>,
     {optional<AlphaIdentifier>(), mandatory<ChannelData>(), optional<Objects::IconIdentifier>()},
     &AlphaIdentifier},
    {0x44, "GET CHANNEL STATUS", "6.6.31", make<OtherCommand>, {}},
    {0x45, "SERVICE SEARCH", "6.6.32", make<OtherCommand>, {}},
    {0x46, "GET SERVICE INFORMATION", "6.6.33", make<OtherCommand>, {}},
    {0x47, "DECLARE SERVICE", "6.6.34", make<OtherCommand>, {}},
    {0x50, "SET FRAMES", "6.6.35", make<OtherCommand>, {}},
    {0x51, "GET FRAMES STATUS", "6.6.36", make<OtherCommand>, {}},
    {0x60, "RETRIEVE MULTIMEDIA MESSAGE", "6.6.37", make<OtherCommand>, {}},
    {0x61, "SUBMIT MULTIMEDIA MESSAGE", "6.6.38", make<OtherCommand>, {}},
    {0x62, "DISPLAY MULTIMEDIA MESSAGE", "6.6.39", make<OtherCommand>, {}},
    {0x70, "ACTIVATE", "6.6.40", make<OtherCommand>, {}},
    {0x71, "CONTACTLESS STATE CHANGED", "6.6.41", make<OtherCommand>, {}},
    {0x72, "COMMAND CONTAINER", "6.6.42", make<OtherCommand>, {}},
    {0x73, "ENCAPSULATED SESSION CONTROL", "6.6.43", make<OtherCommand>, {}},
};

} // namespace

constexpr Field Devices = mandatory<Objects::DeviceIdentities, &Command::devices>();
const Field DevicesField = Devices;

const CommandRow *findCommand(uint8_t type)
{
    const auto found = std::find_if(std::begin(Commands), std::end(Commands),
                                    [type](const CommandRow &row) { return row.type == type; });
    return found == std::end(Commands) ? nullptr : found;
}

} // namespace cat
