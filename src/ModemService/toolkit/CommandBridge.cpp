#include "CommandBridge.h"

#include <limits>
#include <utility>

#include "cat/Response.h"

namespace {

using cat::TextCoding;
using std::chrono::milliseconds;

constexpr milliseconds UserTime = std::chrono::minutes(2); // the user's for an answer
constexpr milliseconds SpareTime = std::chrono::minutes(1); // beyond what takes its own time
// How much later than the session the window closes by itself: then the session has answered.
constexpr milliseconds WindowDelay{250};
constexpr uint16_t TextSeconds = 3; // of a text that goes by itself
constexpr uint8_t GeneralBeep = 0x10; // clause 8.16

// Bits of the qualifiers, clause 8.6.
constexpr uint8_t UserClears = 0x80; // DISPLAY TEXT
constexpr uint8_t Help = 0x80; // GET INKEY, GET INPUT
constexpr uint8_t AlphabetSet = 0x01; // else digits
constexpr uint8_t Ucs2Alphabet = 0x02;
constexpr uint8_t YesNo = 0x04; // GET INKEY
constexpr uint8_t HiddenInput = 0x04; // GET INPUT
constexpr uint8_t PackedInput = 0x08; // GET INPUT

CommandText text(const std::string &utf8)
{
    return {utf8, false};
}

bool has(const cat::Command &command, uint8_t bit)
{
    return command.details.qualifier & bit;
}

// A duration of nothing (clause 8.8 reserves it) is none.
milliseconds timeOf(const std::optional<cat::Duration> &duration)
{
    return duration ? duration->time() : milliseconds(0);
}

uint16_t secondsRoundedUp(milliseconds time)
{
    return uint16_t((time.count() + 999) / 1000);
}

InputType alphabet(const cat::Command &command)
{
    if (!has(command, AlphabetSet))
        return DigitsOnly;
    return has(command, Ucs2Alphabet) ? Ucs2Characters : AnyCharacters;
}

CommandMenu menu(const cat::Menu &menu)
{
    CommandMenu result;
    result.title = text(menu.title);
    for (const cat::Item &item : menu.items)
        result.items.push_back({item.id, text(item.text)});
    return result;
}

ProactiveCommand forUser(CommandBody body, milliseconds time = UserTime)
{
    ProactiveCommand command;
    command.body = std::move(body);
    command.responseTime = time;
    return command;
}

ProactiveCommand forModem(CommandBody body, TerminalResponse::Result result)
{
    ProactiveCommand command;
    command.body = std::move(body);
    command.modemAnswer.result = result;
    return command;
}

// There is no network behind a reader.
constexpr auto Unable = TerminalResponse::Result::Unable;
constexpr auto Performed = TerminalResponse::Result::Performed;

using Result = std::optional<ProactiveCommand>;

// What has no window is answered without the session.
template <class Body> Result convert(const Body &, const cat::Command &)
{
    return std::nullopt;
}

Result convert(const cat::DisplayText &from, const cat::Command &command)
{
    DisplayText body;
    body.text = text(from.text);
    const milliseconds time = timeOf(from.duration);
    if (has(command, UserClears) && time.count() == 0)
        return forUser(std::move(body));
    body.clearMode = 0;
    body.duration = time.count() ? secondsRoundedUp(time) : TextSeconds;
    return forUser(body, std::chrono::seconds(body.duration) + SpareTime);
}

Result convert(const cat::GetInkey &from, const cat::Command &command)
{
    GetInkey body;
    body.text = text(from.text);
    body.inputType = has(command, YesNo) ? YesOrNo : alphabet(command);
    body.option = has(command, Help);
    const milliseconds time = timeOf(from.duration);
    // The window counts milliseconds here, and the card's own limit runs in the session.
    const auto window = (time + WindowDelay).count();
    if (time.count() && window <= std::numeric_limits<uint16_t>::max())
        body.duration = uint16_t(window);
    ProactiveCommand result = forUser(body, time.count() ? time : UserTime);
    result.answerCoding =
        body.inputType == Ucs2Characters ? TextCoding::Ucs2 : TextCoding::Unpacked;
    result.answerRoom = cat::textRoom(command);
    return result;
}

Result convert(const cat::GetInput &from, const cat::Command &command)
{
    GetInput body;
    body.text = text(from.text);
    body.inputType = alphabet(command);
    body.echo = !has(command, HiddenInput);
    body.minLength = from.minLength;
    body.maxLength = from.maxLength;
    body.option = has(command, Help);
    body.defaultText = text(from.defaultText);
    ProactiveCommand result = forUser(body);
    if (body.inputType == Ucs2Characters)
        result.answerCoding = TextCoding::Ucs2;
    else
        result.answerCoding = has(command, PackedInput) ? TextCoding::Packed : TextCoding::Unpacked;
    result.answerRoom = cat::textRoom(command);
    return result;
}

Result convert(const cat::PlayTone &from, const cat::Command &)
{
    PlayTone body;
    body.text = text(from.alpha);
    body.tone = from.tone.value_or(GeneralBeep);
    const milliseconds time = timeOf(from.duration);
    if (time.count())
        body.duration = secondsRoundedUp(time);
    return forUser(body, std::chrono::seconds(body.duration) + SpareTime);
}

Result convert(const cat::SetUpMenu &from, const cat::Command &)
{
    SetUpMenu body;
    body.menu = menu(from.menu);
    return forModem(std::move(body), Performed);
}

Result convert(const cat::SelectItem &from, const cat::Command &)
{
    SelectItem body;
    body.menu = menu(from.menu);
    body.defaultItem = from.defaultItem;
    return forUser(std::move(body));
}

Result convert(const cat::SetUpIdleModeText &from, const cat::Command &)
{
    SetUpIdleModeText body;
    body.text = text(from.text);
    return forUser(std::move(body));
}

Result convert(const cat::SetUpCall &from, const cat::Command &)
{
    SetUpCall body;
    body.text = text(from.confirmation.empty() ? from.setUp : from.confirmation);
    body.address = from.address;
    return forUser(std::move(body));
}

Result convert(const cat::SendSs &from, const cat::Command &)
{
    SendSs body;
    body.text = text(from.alpha);
    body.code = from.code;
    return forModem(std::move(body), Unable);
}

Result convert(const cat::SendUssd &from, const cat::Command &)
{
    SendUssd body;
    body.text = text(from.alpha);
    body.code = from.code;
    return forModem(std::move(body), Unable);
}

Result convert(const cat::SendShortMessage &from, const cat::Command &)
{
    SendShortMessage body;
    body.text = text(from.alpha);
    body.address = from.address;
    body.message = from.message;
    return forModem(std::move(body), Unable);
}

Result convert(const cat::LaunchBrowser &from, const cat::Command &command)
{
    LaunchBrowser body;
    body.url = text(from.url);
    body.launchMode = command.details.qualifier;
    return forUser(std::move(body));
}

Result convert(const cat::Refresh &from, const cat::Command &command)
{
    Refresh body;
    body.qualifier = command.details.qualifier;
    body.files = from.files;
    return forModem(std::move(body), Performed);
}

} // namespace

std::optional<ProactiveCommand> toProactiveCommand(const cat::Command &command)
{
    if (command.problem != cat::Problem::None)
        return std::nullopt;
    return std::visit([&command](const auto &body) { return convert(body, command); },
                      command.body);
}
