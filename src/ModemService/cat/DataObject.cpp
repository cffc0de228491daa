#include "DataObject.h"

#include "Coding.h"
#include "Digits.h"
#include "TextBuilder.h"
#include "TextString.h"

namespace cat {

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
    if (bytes.size() < 2)
        return false;
    devices = {bytes[0], bytes[1]};
    return true;
}

bool readDuration(ByteView bytes, Duration &duration)
{
    if (bytes.size() < 2 || bytes[0] > uint8_t(Duration::Unit::TenthsOfSeconds))
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
    code = decodeText(bytes.part(1), *coding, UssdFiller);
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
    if (bytes.size() < 2)
        return false;
    length = {bytes[0], bytes[1]};
    return true;
}

bool readIcon(ByteView bytes, IconIdentifier &icon)
{
    if (bytes.size() < 2)
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
    if (bytes.size() < 3)
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
    if (bytes.size() < 2)
        return false;
    language = decodeText(bytes.part(0, 2), TextCoding::Unpacked);
    return true;
}

// ISO/IEC 646, which is not the default alphabet: '_' and '@' stand elsewhere there.
bool readUrl(ByteView bytes, std::string &url)
{
    TextBuilder text(bytes.size());
    for (const uint8_t byte : bytes)
        text.add(byte < 0x80 ? byte : u'\ufffd');
    url = text.take();
    return true;
}

bool readByte(ByteView bytes, uint8_t &value)
{
    if (bytes.size() < 1)
        return false;
    value = bytes[0];
    return true;
}

bool readBytes(ByteView bytes, Bytes &value)
{
    value = bytes.copy();
    return true;
}

bool readFileList(ByteView bytes, Bytes &files)
{
    return !bytes.empty() && readBytes(bytes, files);
}

bool readPresence(ByteView, bool &there)
{
    there = true;
    return true;
}

} // namespace cat
