#include "Hex.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr char Digits[] = "0123456789ABCDEF";

std::optional<uint8_t> digitValue(char digit)
{
    const std::string digits = Digits;
    const size_t value = digits.find(static_cast<char>(std::toupper(digit)));
    if (digit == '\0' || value == std::string::npos)
        return std::nullopt;
    return static_cast<uint8_t>(value);
}

} // namespace

std::string hexDigits(cat::ByteView bytes)
{
    std::string text;
    for (const uint8_t byte : bytes) {
        text += Digits[byte >> 4];
        text += Digits[byte & 15];
    }
    return text;
}

std::optional<cat::Bytes> bytesOf(const std::string &hex)
{
    cat::Bytes bytes;
    for (size_t at = 0; at < hex.size();) {
        if (hex[at] == ' ') {
            ++at;
            continue;
        }
        const auto high = digitValue(hex[at]);
        const auto low = at + 1 < hex.size() ? digitValue(hex[at + 1]) : std::nullopt;
        if (!high || !low)
            return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(*high << 4 | *low));
        at += 2;
    }
    return bytes;
}

std::optional<HexPattern> HexPattern::read(const std::string &hex)
{
    HexPattern pattern;
    for (size_t at = 0; at < hex.size(); at += hex[at] == ' ' ? 1 : 2) {
        if (hex[at] == ' ')
            continue;
        const std::string pair = hex.substr(at, 2);
        const auto bytes = bytesOf(pair);
        if (pair == "??")
            pattern.m_bytes.push_back(std::nullopt);
        else if (bytes && bytes->size() == 1)
            pattern.m_bytes.push_back(bytes->front());
        else
            return std::nullopt;
    }
    return pattern;
}

bool HexPattern::matches(cat::ByteView bytes) const
{
    return std::equal(m_bytes.begin(), m_bytes.end(), bytes.begin(), bytes.end(),
                      [](const auto &wanted, uint8_t byte) { return !wanted || *wanted == byte; });
}

std::string HexPattern::text() const
{
    std::string text;
    for (const auto &byte : m_bytes)
        text += byte ? hexDigits({&*byte, 1}) : "??";
    return text;
}
