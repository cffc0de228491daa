#include "MbimSupport.h"

#include <algorithm>
#include <initializer_list>

#include "cat/CommandTable.h"

namespace {

// ETSI TS 102 223 clause 9.4; SEND SS and SEND USSD stand between the first two.
constexpr uint8_t SetUpCallType = 0x10, SendShortMessageType = 0x13, SetUpMenuType = 0x25;

// Values of PacSupport.
enum : uint8_t {
    NotHandled = 0,
    HostMay = 1,
    ModemUnseen = 2,
    ModemCanNotify = 3,
    ModemNotifiesHostMay = 5,
    HostAlone = 6,
    HostInstead = 7
};

bool isOneOf(uint8_t value, std::initializer_list<uint8_t> values)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

// Nobody but the modem has a network: it may tell, for people to see.
bool isNetworks(uint8_t type)
{
    return type >= SetUpCallType && type <= SendShortMessageType;
}

} // namespace

bool MbimSupport::isDecimal() const
{
    constexpr size_t SetUpMenuDigits = 25;
    return isOneOf(of[SetUpMenuType], {NotHandled, ModemUnseen}) &&
        isOneOf(of[SetUpMenuDigits], {HostMay, ModemNotifiesHostMay, HostAlone, HostInstead});
}

size_t MbimSupport::position(uint8_t type) const
{
    return isDecimal() ? (type >> 4) * 10u + (type & 0x0f) : type;
}

bool MbimSupport::isFree(uint8_t type) const
{
    return isOneOf(of[position(type)],
                   {HostMay, ModemCanNotify, ModemNotifiesHostMay, HostAlone, HostInstead});
}

bool MbimSupport::isHosts(uint8_t type) const
{
    return isOneOf(of[position(type)], {HostAlone, HostInstead});
}

std::array<uint8_t, 32> hostControl(const std::vector<uint8_t> &types, const MbimSupport &support)
{
    std::array<uint8_t, 32> control{};
    for (const uint8_t type : types) {
        const size_t position = support.position(type);
        if (isNetworks(type) ? support.of[position] == ModemCanNotify : support.isFree(type))
            control[position / 8] |= static_cast<uint8_t>(1 << position % 8);
    }
    return control;
}

std::string keptByModem(const std::vector<uint8_t> &types, const MbimSupport &support)
{
    std::string names;
    for (const uint8_t type : types) {
        if (type != SetUpMenuType && !isNetworks(type) && !support.isHosts(type))
            names += (names.empty() ? "" : ", ") + std::string(cat::findCommand(type)->name);
    }
    return names;
}

cat::ByteView commandIn(cat::ByteView bytes)
{
    constexpr uint8_t OneByteMore = 0x81; // ETSI TS 101 220 clause 7.1.2
    if (bytes.size() >= 3 && bytes[1] == OneByteMore)
        return bytes.part(0, 3u + bytes[2]);
    return bytes.size() >= 2 && bytes[1] < 0x80 ? bytes.part(0, 2u + bytes[1]) : bytes;
}
