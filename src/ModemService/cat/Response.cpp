#include "Response.h"

#include <algorithm>

#include "DataObject.h"
#include "Digits.h"
#include "Tlv.h"

namespace cat {

namespace {

constexpr uint8_t ComprehensionBit = 0x80;

// Tags that only a terminal sends, clause 9.3.
constexpr uint8_t ResultTag = 0x03;
constexpr uint8_t DateTimeTag = 0x26;

// Tags of envelopes, clause 9.2.
constexpr uint8_t MenuSelectionTag = 0xd3;
constexpr uint8_t EventDownloadTag = 0xd6;
constexpr uint8_t TimerExpirationTag = 0xd7;

// Clause 8.7.
constexpr uint8_t Keypad = 0x01;
constexpr uint8_t Card = 0x81;
constexpr uint8_t Terminal = 0x82;

void append(Bytes &bytes, uint8_t tag, ByteView value)
{
    bytes.push_back(tag | ComprehensionBit);
    appendLength(bytes, value.size());
    bytes.insert(bytes.end(), value.begin(), value.end());
}

void append(Bytes &bytes, const DataObject &object, ByteView value)
{
    append(bytes, object.tag, value);
}

void appendDevices(Bytes &bytes, uint8_t source)
{
    append(bytes, Objects::DeviceIdentities, Bytes{source, Card});
}

Bytes letters(const std::string &language)
{
    return Bytes(language.begin(), language.end());
}

// Clause 8.38.
Bytes timerValue(std::chrono::seconds value)
{
    constexpr long Longest = 99 * 3600 + 59 * 60 + 59;
    const auto seconds = unsigned(std::clamp<long>(value.count(), 0, Longest));
    return {encodeDecimal(seconds / 3600), encodeDecimal(seconds / 60 % 60),
            encodeDecimal(seconds % 60)};
}

Bytes envelope(uint8_t tag, ByteView objects)
{
    Bytes bytes{tag};
    appendLength(bytes, objects.size());
    bytes.insert(bytes.end(), objects.begin(), objects.end());
    return bytes;
}

// Clause 7.5: the event, and who saw it.
Bytes event(uint8_t code)
{
    Bytes objects;
    append(objects, Objects::EventList, Bytes{code});
    appendDevices(objects, Terminal);
    return objects;
}

} // namespace

std::optional<Bytes> encode(const Response &response)
{
    Bytes result{response.result};
    result.insert(result.end(), response.additional.begin(), response.additional.end());

    // In the order of clause 6.8.
    Bytes bytes = response.details.object;
    appendDevices(bytes, Terminal);
    append(bytes, ResultTag, result);
    if (response.duration)
        append(bytes, Objects::Duration,
               Bytes{uint8_t(response.duration->unit), response.duration->interval});
    if (response.text)
        append(bytes, Objects::TextString, *response.text);
    if (response.item)
        append(bytes, Objects::ItemIdentifier, Bytes{*response.item});
    if (response.dateTime)
        append(bytes, DateTimeTag, *response.dateTime);
    if (response.language)
        append(bytes, Objects::Language, letters(*response.language));
    if (response.timer)
        append(bytes, Objects::TimerIdentifier, Bytes{*response.timer});
    if (response.timerValue)
        append(bytes, Objects::TimerValue, timerValue(*response.timerValue));
    if (bytes.size() > LongestResponse)
        return std::nullopt;
    return bytes;
}

size_t textRoom(const Command &command)
{
    Response response{command.details};
    if (const auto *inkey = std::get_if<GetInkey>(&command.body))
        response.duration = inkey->duration; // told with the answer (clause 6.4.2)
    constexpr size_t Head = 3; // of a text string of more than 127 bytes
    return LongestResponse - encode(response)->size() - Head;
}

Bytes encodeDateTime(const std::tm &local)
{
    // The zone counts quarters of an hour, its sign in the tens (3GPP TS 23.040 clause 9.2.3.11).
    constexpr long QuarterOfAnHour = 15 * 60;
    constexpr uint8_t West = 0x08;
    const long quarters = local.tm_gmtoff / QuarterOfAnHour;
    const uint8_t zone = encodeDecimal(unsigned(std::abs(quarters)));
    return {encodeDecimal(unsigned(local.tm_year % 100)), encodeDecimal(unsigned(local.tm_mon + 1)),
            encodeDecimal(unsigned(local.tm_mday)),       encodeDecimal(unsigned(local.tm_hour)),
            encodeDecimal(unsigned(local.tm_min)),        encodeDecimal(unsigned(local.tm_sec)),
            uint8_t(quarters < 0 ? zone | West : zone)};
}

Bytes encodeMenuSelection(uint8_t item)
{
    Bytes objects;
    appendDevices(objects, Keypad);
    append(objects, Objects::ItemIdentifier, Bytes{item});
    return envelope(MenuSelectionTag, objects);
}

Bytes encodeTimerExpiration(uint8_t timer, std::chrono::seconds value)
{
    Bytes objects;
    appendDevices(objects, Terminal);
    append(objects, Objects::TimerIdentifier, Bytes{timer});
    append(objects, Objects::TimerValue, timerValue(value));
    return envelope(TimerExpirationTag, objects);
}

Bytes encodeUserActivity()
{
    return envelope(EventDownloadTag, event(UserActivity));
}

Bytes encodeLanguageSelection(const std::string &language)
{
    Bytes objects = event(LanguageSelection);
    append(objects, Objects::Language, letters(language));
    return envelope(EventDownloadTag, objects);
}

} // namespace cat
