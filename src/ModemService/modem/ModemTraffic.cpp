#include "ModemTraffic.h"

#include <algorithm>

namespace {

constexpr uint8_t Fetch = 0x12, TerminalResponse = 0x14, Envelope = 0xc2;
constexpr uint8_t Blank = 0xff;

cat::Bytes command(uint8_t instruction, cat::ByteView data)
{
    cat::Bytes bytes(5 + data.size());
    bytes[0] = 0x80;
    bytes[1] = instruction;
    bytes[4] = static_cast<uint8_t>(data.size());
    std::copy(data.begin(), data.end(), bytes.begin() + 5);
    return bytes;
}

cat::Bytes answered(cat::Bytes data, uint16_t status)
{
    data.push_back(static_cast<uint8_t>(status >> 8));
    data.push_back(static_cast<uint8_t>(status & 0xff));
    return data;
}

} // namespace

PortTraffic fetchOf(cat::ByteView command)
{
    const uint8_t length = static_cast<uint8_t>(command.size()); // 256 is written as 0
    return {{0x80, Fetch, 0x00, 0x00, length}, answered(command.copy(), 0x9000)};
}

PortTraffic terminalResponseOf(const PortResponse &response, bool taken,
                               std::optional<uint16_t> status)
{
    PortTraffic traffic{command(TerminalResponse, response.data), {}};
    std::fill_n(traffic.command.rbegin(), response.secret, Blank);
    if (taken)
        traffic.response = answered({}, status.value_or(0x9000));
    return traffic;
}

PortTraffic envelopeOf(const PortEnvelope &envelope, cat::Bytes answer, bool taken,
                       std::optional<uint16_t> status)
{
    PortTraffic traffic{command(Envelope, envelope.data), {}};
    if (taken)
        traffic.response = answered(std::move(answer), status.value_or(0x9000));
    return traffic;
}
