#include "Digits.h"

namespace cat {

std::string decodeDigits(ByteView bytes, size_t count)
{
    constexpr uint8_t Filler = 0x0f;
    std::string text;
    for (size_t i = 0; i < std::min(count, bytes.size() * 2); ++i) {
        const uint8_t digit = i % 2 ? bytes[i / 2] >> 4 : bytes[i / 2] & 0x0f;
        if (digit == Filler)
            break;
        text += "0123456789*#p?&"[digit];
    }
    return text;
}

std::string decodeNumber(ByteView bytes, size_t count)
{
    constexpr uint8_t International = 0x10;
    const std::string text = decodeDigits(bytes.part(1), count);
    const bool international = (bytes[0] & TypeOfNumber) == International;
    return international && !text.empty() ? '+' + text : text;
}

std::optional<unsigned> decodeDecimal(uint8_t byte)
{
    const unsigned tens = byte & 0x0f;
    const unsigned ones = byte >> 4;
    if (tens > 9 || ones > 9)
        return std::nullopt;
    return tens * 10 + ones;
}

uint8_t encodeDecimal(unsigned number)
{
    return uint8_t(number % 10 << 4 | number / 10 % 10);
}

} // namespace cat
