#include "DataObject.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "Coding.h"
#include "Digits.h"
#include "TextString.h"

namespace cat {

namespace {

// Those that no command here reads.
constexpr DataObject OtherObjects[] = {
    {0x03, "8.12", "result"},
    {0x07, "8.4", "capability configuration parameters"},
    {0x08, "8.3", "subaddress"},
    {0x0c, "8.5", "cell broadcast page"},
    {0x13, "8.19", "location information"},
    {0x14, "8.20", "IMEI"},
    {0x15, "8.21", "help request"},
    {0x16, "8.22", "network measurement results"},
    {0x18, "8.24", "items next action indicator"},
    {0x1a, "8.26", "cause"},
    {0x1b, "8.27", "location status"},
    {0x1c, "8.28", "transaction identifier"},
    {0x1d, "8.29", "BCCH channel list"},
    {0x20, "8.33", "card reader status"},
    {0x21, "8.34", "card ATR"},
    {0x23, "8.36", "R-APDU"},
    {0x26, "8.39", "date-time and time zone"},
    {0x27, "8.30", "call control requested action"},
    {0x29, "8.41", "AT response"},
    {0x2a, "8.42", "BC repeat indicator"},
    {0x2e, "8.46", "timing advance"},
    {0x2f, "8.60", "AID"},
    {0x30, "8.47", "browser identity"},
    {0x32, "8.49", "bearer"},
    {0x33, "8.50", "provisioning reference file"},
    {0x34, "8.51", "browser termination cause"},
    {0x35, "8.52", "bearer description"},
    {0x38, "8.56", "channel status"},
    {0x39, "8.55", "buffer size"},
    {0x3a, "8.57", "card reader identifier"},
    {0x3b, "3GPP TS 31.111", "file update information"},
    {0x3c, "8.59", "UICC/terminal interface transport level"},
    {0x3e, "8.58", "other address"},
    {0x3f, "8.61", "access technology"},
    {0x40, "8.62", "display parameters"},
    {0x41, "8.63", "service record"},
    {0x42, "8.64", "device filter"},
    {0x43, "8.65", "service search"},
    {0x44, "8.66", "attribute information"},
    {0x45, "8.67", "service availability"},
    {0x46, "8.69", "ESN"},
    {0x47, "8.70", "network access name"},
    {0x48, "8.71", "CDMA-SMS-TPDU"},
    {0x49, "8.68", "remote entity address"},
    {0x4a, "3GPP TS 31.111", "I-WLAN identifier"},
    {0x4b, "3GPP TS 31.111", "I-WLAN access status"},
    {0x50, "8.72", "text attribute"},
    {0x51, "8.73", "item text attribute list"},
    {0x52, "3GPP TS 31.111", "PDP context activation parameters"},
    {0x53, "8.91", "contactless state request"},
    {0x54, "8.92", "contactless functionality state"},
    {0x55, "3GPP TS 31.111", "CSG cell selection status"},
    {0x56, "3GPP TS 31.111", "CSG ID"},
    {0x57, "3GPP TS 31.111", "HNB name"},
    {0x62, "8.74", "IMEISV"},
    {0x63, "8.76", "battery state"},
    {0x64, "8.77", "browsing status"},
    {0x65, "8.75", "network search mode"},
    {0x66, "8.78", "frame layout"},
    {0x67, "8.79", "frames information"},
    {0x68, "8.80", "frame identifier"},
    {0x69, "3GPP TS 31.111", "UTRAN measurement qualifier"},
    {0x6a, "8.82", "multimedia message reference"},
    {0x6b, "8.83", "multimedia message identifier"},
    {0x6c, "8.84", "multimedia message transfer status"},
    {0x6d, "8.81", "MEID"},
    {0x6e, "8.85", "multimedia message content identifier"},
    {0x6f, "8.86", "multimedia message notification"},
    {0x70, "8.87", "last envelope"},
    {0x71, "8.88", "registry application data"},
    {0x72, "3GPP TS 31.111", "PLMNwAcT list"},
    {0x73, "3GPP TS 31.111", "routing area information"},
    {0x74, "3GPP TS 31.111", "update/attach type"},
    {0x75, "3GPP TS 31.111", "rejection cause code"},
    {0x76, "3GPP TS 31.111", "geographical location parameters"},
    {0x77, "3GPP TS 31.111", "GAD shapes"},
    {0x78, "3GPP TS 31.111", "NMEA sentence"},
    {0x79, "3GPP TS 31.111", "PLMN list"},
    {0x7a, "8.90", "broadcast network information"},
    {0x7b, "8.89", "ACTIVATE descriptor"},
    {0x7c, "3GPP TS 31.111", "EPS PDN connection activation parameters"},
    {0x7d, "3GPP TS 31.111", "tracking area identification"},
    {0x7e, "3GPP TS 31.111", "CSG ID list"},
};

constexpr const DataObject *ReadObjects[] = {
    &Objects::CommandDetails,
    &Objects::DeviceIdentities,
    &Objects::Duration,
    &Objects::AlphaIdentifier,
    &Objects::Address,
    &Objects::SsString,
    &Objects::UssdString,
    &Objects::SmsTpdu,
    &Objects::TextString,
    &Objects::Tone,
    &Objects::Item,
    &Objects::ItemIdentifier,
    &Objects::ResponseLength,
    &Objects::FileList,
    &Objects::DefaultText,
    &Objects::EventList,
    &Objects::IconIdentifier,
    &Objects::ItemIconIdentifierList,
    &Objects::CommandApdu,
    &Objects::TimerIdentifier,
    &Objects::TimerValue,
    &Objects::AtCommand,
    &Objects::ImmediateResponse,
    &Objects::DtmfString,
    &Objects::Language,
    &Objects::Url,
    &Objects::ChannelData,
    &Objects::ChannelDataLength,
};

constexpr std::array<bool, 128> knownTags()
{
    std::array<bool, 128> known{};
    for (const DataObject &object : OtherObjects)
        known[object.tag] = true;
    for (const DataObject *object : ReadObjects)
        known[object->tag] = true;
    return known;
}
constexpr std::array<bool, 128> KnownTags = knownTags();

} // namespace

bool isKnownTag(unsigned tag)
{
    return tag < KnownTags.size() && KnownTags[tag];
}

bool readCommandDetails(ByteView bytes, CommandDetails &details)
{
    if (bytes.size() < 3)
        return false;
    details.number = bytes[0];
    details.type = bytes[1];
    details.qualifier = bytes[2];
    return true;
}

bool readDeviceIdentities(ByteView bytes, DeviceIdentities &devices)
{
    if (bytes.size() != 2)
        return false;
    devices = {bytes[0], bytes[1]};
    return true;
}

bool readDuration(ByteView bytes, Duration &duration)
{
    if (bytes.size() != 2 || bytes[0] > uint8_t(Duration::Unit::TenthsOfSeconds))
        return false;
    duration = {Duration::Unit(bytes[0]), bytes[1]};
    return true;
}

bool readAlpha(ByteView bytes, std::string &text)
{
    text = decodeAlpha(bytes);
    return true;
}

bool readAddress(ByteView bytes, std::string &address)
{
    if (bytes.empty())
        return false;
    address = decodeNumber(bytes);
    return true;
}

bool readSsString(ByteView bytes, std::string &code)
{
    if (bytes.empty())
        return false;
    code = decodeDigits(bytes.part(1)); // dialled as it is, whatever the type of number says
    return true;
}

bool readUssdString(ByteView bytes, std::string &code)
{
    const auto coding = bytes.empty() ? std::nullopt : broadcastCoding(bytes[0]);
    if (!coding)
        return false;
    const ByteView text = bytes.part(1);
    code = decodeText(text, *coding);
    // Seven spare bits are filled with a carriage return (3GPP TS 23.038 clause 6.1.2.3.1).
    const bool filled = *coding == TextCoding::Packed && !text.empty() && text.size() % 7 == 0;
    if (filled && !code.empty() && code.back() == '\r')
        code.pop_back();
    return true;
}

bool readTextString(ByteView bytes, std::string &text)
{
    text = decodeTextString(bytes);
    return bytes.empty() || messageCoding(bytes[0]);
}

// An empty value is a null item: identifier 0, which no other item may have.
bool readItem(ByteView bytes, Item &item)
{
    if (bytes.empty())
        return true;
    item.id = bytes[0];
    item.text = decodeAlpha(bytes.part(1));
    return item.id != 0;
}

bool readResponseLength(ByteView bytes, ResponseLength &length)
{
    if (bytes.size() != 2)
        return false;
    length = {bytes[0], bytes[1]};
    return true;
}

bool readIcon(ByteView bytes, IconIdentifier &icon)
{
    if (bytes.size() != 2)
        return false;
    icon.selfExplanatory = (bytes[0] & 0x01) == 0;
    return true;
}

bool readTimerIdentifier(ByteView bytes, uint8_t &timer)
{
    return readByte(bytes, timer) && timer >= 1 && timer <= 8;
}

bool readTimerValue(ByteView bytes, std::chrono::seconds &value)
{
    if (bytes.size() != 3)
        return false;
    const auto hours = decodeDecimal(bytes[0]);
    const auto minutes = decodeDecimal(bytes[1]);
    const auto seconds = decodeDecimal(bytes[2]);
    if (!hours || !minutes || !seconds || *minutes > 59 || *seconds > 59)
        return false;
    value = std::chrono::hours(*hours) + std::chrono::minutes(*minutes) +
        std::chrono::seconds(*seconds);
    return true;
}

bool readLanguage(ByteView bytes, std::string &language)
{
    if (bytes.size() != 2)
        return false;
    language = decodeText(bytes, TextCoding::Unpacked);
    return true;
}

// ISO/IEC 646, which is not the default alphabet: '_' and '@' stand elsewhere there.
bool readUrl(ByteView bytes, std::string &url)
{
    std::u16string text(bytes.begin(), bytes.end());
    std::replace_if(
        text.begin(), text.end(), [](char16_t c) { return c > 0x7f; }, u'\ufffd');
    url = toUtf8WithoutZeros(std::move(text));
    return true;
}

bool readByte(ByteView bytes, uint8_t &value)
{
    if (bytes.size() != 1)
        return false;
    value = bytes[0];
    return true;
}

bool readBytes(ByteView bytes, Bytes &value)
{
    value = bytes.copy();
    return true;
}

bool readPresence(ByteView, bool &there)
{
    there = true;
    return true;
}

} // namespace cat
