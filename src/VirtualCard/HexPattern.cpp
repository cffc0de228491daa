#include "HexPattern.h"

#include <algorithm>

#include "cat/Hex.h"

std::optional<HexPattern> HexPattern::read(const std::string &hex)
{
    HexPattern pattern;
    for (size_t at = 0; at < hex.size(); at += hex[at] == ' ' ? 1 : 2) {
        if (hex[at] == ' ')
            continue;
        const std::string pair = hex.substr(at, 2);
        const auto bytes = cat::fromHex(pair);
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
        text += byte ? cat::toHex({&*byte, 1}) : "??";
    return text;
}
