#include "Apdu.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using cat::Bytes;
using cat::ByteView;

namespace {

constexpr int MaxRounds = 32;
constexpr size_t MaxData = 64 * 1024;

struct StatusRow {
    uint16_t value;
    uint16_t mask;
    StatusKind kind;
    const char *text;
};

// The first row that fits counts.  "102 221" is ETSI TS 102 221 clause 10.2.1, "51.011" is 3GPP TS
// 51.011 clause 9.4, "102 223" is ETSI TS 102 223 clause 6.2 and 7.
constexpr StatusRow StatusRows[] = {
    {0x9000, 0xffff, StatusKind::Done, "done"}, // 102 221, 51.011
    {0x9100, 0xff00, StatusKind::ProactiveCommand, "a proactive command waits"}, // 102 223
    {0x6100, 0xff00, StatusKind::MoreData, "more data waits"}, // 102 221 clause 7.3.1.1
    {0x9f00, 0xff00, StatusKind::MoreData, "more data waits"}, // 51.011
    {0x6c00, 0xff00, StatusKind::OtherLength, "another length was expected"}, // 102 221
    {0x9300, 0xffff, StatusKind::Busy, "the card's toolkit is busy"}, // 102 221, 51.011
    {0x6282, 0xffff, StatusKind::Warning, "the end of the file was reached"}, // 102 221
    {0x6283, 0xffff, StatusKind::Warning, "the selected file is deactivated"}, // 102 221
    {0x6285, 0xffff, StatusKind::Warning, "the selected file is terminated"}, // 102 221
    {0x6200, 0xff00, StatusKind::Warning, "done, with a warning"}, // 102 221
    {0x63c0, 0xfff0, StatusKind::Warning, "not verified, or done after a retry"}, // 102 221
    {0x6300, 0xff00, StatusKind::Warning, "done, with a warning"}, // 102 221
    {0x9200, 0xfff0, StatusKind::Done, "done after a retry"}, // 51.011
    {0x9240, 0xffff, StatusKind::Error, "memory problem"}, // 51.011
    {0x9400, 0xffff, StatusKind::Error, "no file is selected"}, // 51.011
    {0x9402, 0xffff, StatusKind::Error, "address out of range"}, // 51.011
    {0x9404, 0xffff, StatusKind::Error, "file not found"}, // 51.011
    {0x9408, 0xffff, StatusKind::Error, "the file does not fit the command"}, // 51.011
    {0x9802, 0xffff, StatusKind::Error, "no PIN is defined"}, // 51.011
    {0x9804, 0xffff, StatusKind::Error, "wrong PIN, or access not allowed"}, // 51.011
    {0x9808, 0xffff, StatusKind::Error, "in contradiction with the PIN's state"}, // 51.011
    {0x9810, 0xffff, StatusKind::Error, "in contradiction with the file's state"}, // 51.011
    {0x9840, 0xffff, StatusKind::Error, "the PIN is blocked"}, // 51.011
    {0x9850, 0xffff, StatusKind::Error, "the largest value is reached"}, // 102 221, 51.011
    {0x9e00, 0xff00, StatusKind::Error, "the toolkit reports an error"}, // 51.011
    {0x6400, 0xff00, StatusKind::Error, "execution error"}, // 102 221
    {0x6500, 0xff00, StatusKind::Error, "memory problem"}, // 102 221
    {0x6700, 0xff00, StatusKind::Error, "wrong length"}, // 102 221, 51.011
    {0x6881, 0xffff, StatusKind::Error, "logical channels are not supported"}, // 102 221
    {0x6882, 0xffff, StatusKind::Error, "secure messaging is not supported"}, // 102 221
    {0x6981, 0xffff, StatusKind::Error, "the file does not fit the command"}, // 102 221
    {0x6982, 0xffff, StatusKind::Error, "access not allowed"}, // 102 221
    {0x6983, 0xffff, StatusKind::Error, "the PIN is blocked"}, // 102 221
    {0x6984, 0xffff, StatusKind::Error, "the PIN is not in use"}, // 102 221
    {0x6985, 0xffff, StatusKind::Error, "the conditions of use are not met"}, // 102 221
    {0x6986, 0xffff, StatusKind::Error, "no file is selected"}, // 102 221
    {0x6a80, 0xffff, StatusKind::Error, "wrong data"}, // 102 221
    {0x6a81, 0xffff, StatusKind::Error, "function not supported"}, // 102 221
    {0x6a82, 0xffff, StatusKind::Error, "file not found"}, // 102 221
    {0x6a83, 0xffff, StatusKind::Error, "record not found"}, // 102 221
    {0x6a86, 0xffff, StatusKind::Error, "wrong parameters"}, // 102 221
    {0x6a87, 0xffff, StatusKind::Error, "the length does not fit the parameters"}, // 102 221
    {0x6a88, 0xffff, StatusKind::Error, "reference not found"}, // 102 221
    {0x6b00, 0xff00, StatusKind::Error, "wrong parameters"}, // 102 221, 51.011
    {0x6d00, 0xff00, StatusKind::Error, "the card does not know the command"}, // 102 221, 51.011
    {0x6e00, 0xff00, StatusKind::Error, "the card does not know the class of the command"}, // both
    {0x6f00, 0xff00, StatusKind::Error, "technical problem of the card"}, // 102 221, 51.011
    {0x0000, 0x0000, StatusKind::Error, "unknown status"},
};

const StatusRow &statusRow(uint16_t status)
{
    return *std::find_if(std::begin(StatusRows), std::end(StatusRows),
                         [&](const StatusRow &row) { return (status & row.mask) == row.value; });
}

// ISO/IEC 7816-3 clause 12.1 and 12.2: T=1 carries the command as it is; T=0 always has five bytes
// of header and length, and leaves it to GET RESPONSE to fetch what a command with data returns.
Bytes wireFormat(const Apdu &command, CardChannel::Protocol protocol)
{
    const bool isT0 = protocol == CardChannel::Protocol::T0;
    Bytes wire;
    wire.reserve(6 + command.data.size()); // a secret must not stay behind in a smaller block
    wire = {command.cla, command.ins, command.p1, command.p2};
    if (!command.data.empty()) {
        wire.push_back(static_cast<uint8_t>(command.data.size()));
        wire.insert(wire.end(), command.data.begin(), command.data.end());
    }
    if (command.expected && (command.data.empty() || !isT0))
        wire.push_back(static_cast<uint8_t>(*command.expected)); // 256 is coded 00
    else if (command.data.empty() && isT0)
        wire.push_back(0);
    return wire;
}

std::optional<ApduAnswer> exchangeOnce(CardChannel &channel, const Apdu &command,
                                       const ApduTeller &tell)
{
    Bytes wire = wireFormat(command, channel.protocol());
    std::optional<Bytes> received = channel.transmit(wire);
    if (command.secret > 0) {
        const auto end = wire.begin() + 5 + static_cast<ptrdiff_t>(command.data.size());
        std::fill(end - static_cast<ptrdiff_t>(command.secret), end, uint8_t(0xff));
    }
    tell({std::move(wire), received.value_or(Bytes())});
    if (!received || received->size() < 2)
        return std::nullopt;

    ApduAnswer answer;
    const size_t size = received->size() - 2;
    answer.status = static_cast<uint16_t>((*received)[size] << 8 | (*received)[size + 1]);
    received->resize(size);
    answer.data = std::move(*received);
    return answer;
}

// Whether the card names another length than the command's: 6Cxx, and 67xx on a 2G card (3GPP TS
// 51.011 clause 9.4.6).
bool namesLength(const Apdu &command, uint16_t status)
{
    const bool is2g = command.cla == 0xa0 && (status & 0xff00) == 0x6700 && (status & 0xff);
    return statusKind(status) == StatusKind::OtherLength ||
        (is2g && command.data.empty() && command.expected);
}

// A card may give a warning in place of the announcement of its data, for T=0 (ISO/IEC 7816-3
// clause 12.2.4).
bool isWarnedOfData(const Apdu &command, CardChannel::Protocol protocol, const ApduAnswer &answer)
{
    return protocol == CardChannel::Protocol::T0 && !command.data.empty() && command.expected &&
        answer.data.empty() && statusKind(answer.status) == StatusKind::Warning;
}

// 00 stands for 256.
uint16_t lengthIn(uint16_t status)
{
    const uint16_t length = status & 0xff;
    return length ? length : 256;
}

} // namespace

std::optional<ApduAnswer> exchange(CardChannel &channel, Apdu &command, const ApduTeller &tell)
{
    std::optional<ApduAnswer> answer = exchangeOnce(channel, command, tell);
    // A secret is sent once: a PIN presented twice may cost two tries.
    if (answer && namesLength(command, answer->status) && command.secret == 0) {
        command.expected = lengthIn(answer->status);
        answer = exchangeOnce(channel, command, tell);
    }
    if (command.secret > 0)
        explicit_bzero(command.data.data(), command.data.size());

    // GET RESPONSE has the class of the command, but 00 for all of a UICC (ETSI TS 102 221 clause
    // 10.1.1).
    Apdu getResponse{uint8_t(command.cla == 0xa0 ? 0xa0 : 0x00), 0xc0, 0, 0};
    Bytes data;
    std::optional<uint16_t> warning; // which is what the command ends with
    for (int round = 0; answer && round < MaxRounds; ++round) {
        data.insert(data.end(), answer->data.begin(), answer->data.end());
        const StatusKind kind = statusKind(answer->status);
        const bool repeat = kind == StatusKind::OtherLength && round > 0;
        const bool warned = round == 0 && isWarnedOfData(command, channel.protocol(), *answer);
        if (warned)
            warning = answer->status;
        if ((kind != StatusKind::MoreData && !repeat && !warned) || data.size() > MaxData)
            break;
        getResponse.expected = warned ? uint16_t(256) : lengthIn(answer->status);
        answer = exchangeOnce(channel, getResponse, tell);
    }
    if (!answer)
        return answer;
    answer->data = std::move(data);
    if (warning && statusKind(answer->status) != StatusKind::ProactiveCommand)
        answer->status = *warning;
    return answer;
}

StatusKind statusKind(uint16_t status)
{
    return statusRow(status).kind;
}

bool isDone(uint16_t status)
{
    const StatusKind kind = statusKind(status);
    return kind == StatusKind::Done || kind == StatusKind::ProactiveCommand ||
        kind == StatusKind::Warning;
}

std::string statusDigits(uint16_t status)
{
    char digits[5];
    std::snprintf(digits, sizeof digits, "%04X", status);
    return digits;
}

std::string statusMeaning(uint16_t status)
{
    return statusRow(status).text;
}
