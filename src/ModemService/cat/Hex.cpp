#include "Hex.h"

namespace cat {

namespace {

constexpr char Digits[] = "0123456789ABCDEF";

std::optional<uint8_t> digitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return uint8_t(digit - '0');
    const char upper = char(digit & ~0x20);
    if (upper >= 'A' && upper <= 'F')
        return uint8_t(upper - 'A' + 10);
    return std::nullopt;
}

} // namespace

std::string toHex(ByteView bytes)
{
    std::string text;
    text.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        text += Digits[byte >> 4];
        text += Digits[byte & 0x0f];
    }
    return text;
}

std::optional<Bytes> fromHex(const std::string &text)
{
    Bytes bytes;
    for (size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            ++at;
            continue;
        }
        const auto high = digitValue(text[at]);
        const auto low = at + 1 < text.size() ? digitValue(text[at + 1]) : std::nullopt;
        if (!high || !low)
            return std::nullopt;
        bytes.push_back(uint8_t(*high << 4 | *low));
        at += 2;
    }
    return bytes;
}

} // namespace cat
