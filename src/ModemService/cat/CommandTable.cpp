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

template <const auto &Object, auto Member>
constexpr Field mandatory(Condition condition = Always, Which which = Which::First)
{
    return {&Object, into<Object, Member>, condition, which};
}

template <const auto &Object, auto Member> constexpr Field optional(Which which = Which::First)
{
    return {&Object, into<Object, Member>, Never, which};
}

template <const auto &Object> constexpr Field mandatory()
{
    return {&Object, nowhere<Object>, Always, Which::First};
}

template <const auto &Object> constexpr Field optional(Which which = Which::First)
{
    return {&Object, nowhere<Object>, Never, which};
}

template <class Type> void make(Body &body)
{
    body.emplace<Type>();
}

// What the clauses ask for beyond a row.

const char *checkDisplayText(Command &command)
{
    const bool empty = std::get<DisplayText>(command.body).text.empty();
    return empty ? "text string (clause 8.15): empty" : nullptr;
}

// False where there is none.
bool takeNullItems(std::vector<Item> &items)
{
    const auto isNull = [](const Item &item) { return item.id == 0; };
    const auto end = std::remove_if(items.begin(), items.end(), isNull);
    const bool any = end != items.end();
    items.erase(end, items.end());
    return any;
}

constexpr const char *NullItem = "item (clause 8.9): null";

// Clause 6.6.7: a single null item takes the menu away.
const char *checkSetUpMenu(Command &command)
{
    auto &items = std::get<SetUpMenu>(command.body).menu.items;
    const bool single = items.size() == 1;
    return takeNullItems(items) && !single ? NullItem : nullptr;
}

const char *checkSelectItem(Command &command)
{
    return takeNullItems(std::get<SelectItem>(command.body).menu.items) ? NullItem : nullptr;
}

// What the qualifier asks for, clause 8.6.
constexpr Condition FileChange{0xff, 0x01}; // REFRESH
constexpr Condition OneLanguage{0x01, 0x01}; // LANGUAGE NOTIFICATION
constexpr Condition TimerStart{0x03, 0x00}; // TIMER MANAGEMENT

// Tags that nobody here reads, clause 9.3.
enum : uint8_t {
    Capabilities = 0x07,
    Subaddress = 0x08,
    NextActions = 0x18,
    Aid = 0x2f,
    BrowserIdentity = 0x30,
    Bearer = 0x32,
    ProvisioningFile = 0x33,
    BearerDescription = 0x35,
    BufferSize = 0x39,
    RefreshPolicy = 0x3a,
    TransportLevel = 0x3c,
    OtherAddress = 0x3e,
    ServiceRecord = 0x41,
    DeviceFilter = 0x42,
    ServiceSearch = 0x43,
    AttributeInformation = 0x44,
    NetworkAccessName = 0x47,
    CdmaMessage = 0x48,
    RemoteAddress = 0x49,
    TextAttribute = 0x50,
    ItemTextAttributes = 0x51,
    ContactlessRequest = 0x53,
    ContactlessState = 0x54,
    FrameLayout = 0x66,
    Frames = 0x67,
    Frame = 0x68,
    UtranQualifier = 0x69,
    MessageReference = 0x6a,
    MessageIdentifier = 0x6b,
    MessageContent = 0x6e,
    Networks = 0x72,
    LocationParameters = 0x76,
    GadShapes = 0x77,
    NmeaSentence = 0x78,
    ActivateDescriptor = 0x7b
};

using namespace Objects;
constexpr Which Second = Which::Second;
constexpr Which Every = Which::Every;

// Which every command has.
constexpr Field Devices = mandatory<Objects::DeviceIdentities, &Command::devices>();

// A row is a command: type, structure (mandatory and optional data objects), and what it becomes.
// What the standard has and this terminal does not do becomes an OtherCommand, its data objects
// being looked at all the same.
constexpr CommandRow Commands[] = {
    {0x01,
     "REFRESH",
     "6.6.13",
     make<cat::Refresh>,
     {Devices, mandatory<FileList, &Refresh::files>(FileChange), optional<AlphaIdentifier>(),
      optional<Objects::IconIdentifier>()},
     {Aid, RefreshPolicy, Networks, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x02, "MORE TIME", "6.6.4", make<MoreTime>, {Devices}},
    {0x03,
     "POLL INTERVAL",
     "6.6.6",
     make<PollInterval>,
     {Devices, mandatory<Objects::Duration, &PollInterval::duration>()}},
    {0x04, "POLLING OFF", "6.6.14", make<PollingOff>, {Devices}},
    {0x05,
     "SET UP EVENT LIST",
     "6.6.16",
     make<SetUpEventList>,
     {Devices, mandatory<EventList, &SetUpEventList::events>()}},
    {0x10,
     "SET UP CALL",
     "6.6.12",
     make<SetUpCall>,
     {Devices, optional<AlphaIdentifier, &SetUpCall::confirmation>(),
      mandatory<Address, &SetUpCall::address>(), optional<Objects::Duration>(),
      optional<Objects::IconIdentifier>(), optional<AlphaIdentifier, &SetUpCall::setUp>(Second),
      optional<Objects::IconIdentifier>(Second)},
     {Capabilities, Subaddress, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x11,
     "SEND SS",
     "6.6.10",
     make<SendSs>,
     {Devices, optional<AlphaIdentifier, &SendSs::alpha>(), mandatory<SsString, &SendSs::code>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x12,
     "SEND USSD",
     "6.6.11",
     make<SendUssd>,
     {Devices, optional<AlphaIdentifier, &SendUssd::alpha>(),
      mandatory<UssdString, &SendUssd::code>(), optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x13,
     "SEND SHORT MESSAGE",
     "6.6.9",
     make<SendShortMessage>,
     {Devices,
      optional<AlphaIdentifier, &SendShortMessage::alpha>(),
      optional<Address>(),
      {&SmsTpdu, intoShortMessage, Always},
      optional<Objects::IconIdentifier>()},
     {CdmaMessage, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x14,
     "SEND DTMF",
     "6.6.24",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), mandatory<DtmfString>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x15,
     "LAUNCH BROWSER",
     "6.6.26",
     make<LaunchBrowser>,
     {Devices, mandatory<Url, &LaunchBrowser::url>(),
      optional<AlphaIdentifier, &LaunchBrowser::alpha>(), optional<Objects::IconIdentifier>()},
     {BrowserIdentity, Bearer, ProvisioningFile, NetworkAccessName, TextString.tag, TextAttribute,
      Frame},
     &AlphaIdentifier},
    {0x16,
     "GEOGRAPHICAL LOCATION REQUEST",
     "3GPP TS 31.111",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {LocationParameters, GadShapes, NmeaSentence, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x20,
     "PLAY TONE",
     "6.6.5",
     make<PlayTone>,
     {Devices, optional<AlphaIdentifier, &PlayTone::alpha>(), optional<Tone, &PlayTone::tone>(),
      optional<Objects::Duration, &PlayTone::duration>(), optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x21,
     "DISPLAY TEXT",
     "6.6.1",
     make<DisplayText>,
     {Devices, mandatory<TextString, &DisplayText::text>(), optional<Objects::IconIdentifier>(),
      optional<ImmediateResponse, &DisplayText::immediateResponse>(),
      optional<Objects::Duration, &DisplayText::duration>()},
     {TextAttribute, Frame},
     &TextString,
     checkDisplayText},
    {0x22,
     "GET INKEY",
     "6.6.2",
     make<GetInkey>,
     {Devices, mandatory<TextString, &GetInkey::text>(), optional<Objects::IconIdentifier>(),
      optional<Objects::Duration, &GetInkey::duration>()},
     {TextAttribute, Frame},
     &TextString},
    {0x23,
     "GET INPUT",
     "6.6.3",
     make<GetInput>,
     {Devices,
      mandatory<TextString, &GetInput::text>(),
      {&Objects::ResponseLength, intoLimits, Always},
      optional<DefaultText, &GetInput::defaultText>(),
      optional<Objects::IconIdentifier>()},
     {Objects::Duration.tag, TextAttribute, Frame},
     &TextString},
    {0x24,
     "SELECT ITEM",
     "6.6.8",
     make<SelectItem>,
     {Devices, optional<AlphaIdentifier, &Menu::title>(),
      mandatory<Objects::Item, &Menu::items>(Always, Every),
      optional<ItemIdentifier, &SelectItem::defaultItem>(), optional<Objects::IconIdentifier>()},
     {NextActions, ItemIconIdentifierList.tag, ItemTextAttributes, TextAttribute, Frame},
     &AlphaIdentifier,
     checkSelectItem},
    {0x25,
     "SET UP MENU",
     "6.6.7",
     make<SetUpMenu>,
     {Devices, mandatory<AlphaIdentifier, &Menu::title>(),
      mandatory<Objects::Item, &Menu::items>(Always, Every), optional<Objects::IconIdentifier>()},
     {NextActions, ItemIconIdentifierList.tag, ItemTextAttributes, TextAttribute},
     &AlphaIdentifier,
     checkSetUpMenu},
    {0x26,
     "PROVIDE LOCAL INFORMATION",
     "6.6.15",
     make<ProvideLocalInformation>,
     {Devices},
     {UtranQualifier}},
    {0x27,
     "TIMER MANAGEMENT",
     "6.6.21",
     make<TimerManagement>,
     {Devices, mandatory<TimerIdentifier, &TimerManagement::timer>(),
      mandatory<TimerValue, &TimerManagement::value>(TimerStart)}},
    {0x28,
     "SET UP IDLE MODE TEXT",
     "6.6.22",
     make<SetUpIdleModeText>,
     {Devices, mandatory<TextString, &SetUpIdleModeText::text>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &TextString,
     nullptr,
     IconText::UnlessSelfExplanatory},
    {0x30, "PERFORM CARD APDU", "6.6.17", make<OtherCommand>, {Devices, mandatory<CommandApdu>()}},
    {0x31, "POWER ON CARD", "6.6.19", make<OtherCommand>, {Devices}},
    {0x32, "POWER OFF CARD", "6.6.18", make<OtherCommand>, {Devices}},
    {0x33, "GET READER STATUS", "6.6.20", make<OtherCommand>, {Devices}},
    {0x34,
     "RUN AT COMMAND",
     "6.6.23",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), mandatory<AtCommand>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x35,
     "LANGUAGE NOTIFICATION",
     "6.6.25",
     make<LanguageNotification>,
     {Devices, mandatory<Language, &LanguageNotification::language>(OneLanguage)}},
    {0x40,
     "OPEN CHANNEL",
     "6.6.27",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {Address.tag, Subaddress, Objects::Duration.tag, TextString.tag, BearerDescription, BufferSize,
      TransportLevel, OtherAddress, NetworkAccessName, RemoteAddress, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x41,
     "CLOSE CHANNEL",
     "6.6.28",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x42,
     "RECEIVE DATA",
     "6.6.29",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), mandatory<ChannelDataLength>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x43,
     "SEND DATA",
     "6.6.30",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), mandatory<ChannelData>(),
      optional<Objects::IconIdentifier>()},
     {TextAttribute, Frame},
     &AlphaIdentifier},
    {0x44, "GET CHANNEL STATUS", "6.6.31", make<OtherCommand>, {Devices}},
    {0x45,
     "SERVICE SEARCH",
     "6.6.32",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {ServiceSearch, DeviceFilter, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x46,
     "GET SERVICE INFORMATION",
     "6.6.33",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {AttributeInformation, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x47,
     "DECLARE SERVICE",
     "6.6.34",
     make<OtherCommand>,
     {Devices},
     {ServiceRecord, TransportLevel}},
    {0x50, "SET FRAMES", "6.6.35", make<OtherCommand>, {Devices}, {Frame, Frames, FrameLayout}},
    {0x51, "GET FRAMES STATUS", "6.6.36", make<OtherCommand>, {Devices}},
    {0x60,
     "RETRIEVE MULTIMEDIA MESSAGE",
     "6.6.37",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {MessageReference, MessageIdentifier, MessageContent, FileList.tag, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x61,
     "SUBMIT MULTIMEDIA MESSAGE",
     "6.6.38",
     make<OtherCommand>,
     {Devices, optional<AlphaIdentifier>(), optional<Objects::IconIdentifier>()},
     {MessageReference, MessageIdentifier, FileList.tag, TextAttribute, Frame},
     &AlphaIdentifier},
    {0x62,
     "DISPLAY MULTIMEDIA MESSAGE",
     "6.6.39",
     make<OtherCommand>,
     {Devices},
     {MessageIdentifier, MessageContent, FileList.tag, ImmediateResponse.tag, Frame}},
    {0x70, "ACTIVATE", "6.6.40", make<OtherCommand>, {Devices}, {ActivateDescriptor}},
    {0x71,
     "CONTACTLESS STATE CHANGED",
     "6.6.41",
     make<OtherCommand>,
     {Devices},
     {ContactlessRequest, ContactlessState}},
    {0x72, "COMMAND CONTAINER", "6.6.42", make<OtherCommand>, {Devices}},
    {0x73, "ENCAPSULATED SESSION CONTROL", "6.6.43", make<OtherCommand>, {Devices}},
};

} // namespace

const CommandRow *findCommand(uint8_t type)
{
    const auto found = std::find_if(std::begin(Commands), std::end(Commands),
                                    [type](const CommandRow &row) { return row.type == type; });
    return found == std::end(Commands) ? nullptr : found;
}

} // namespace cat
