#include "Tlv.h"

namespace cat {

namespace {

constexpr uint8_t LongTag = 0x7f; // the tag follows, in two bytes
constexpr uint8_t ComprehensionBit = 0x80;
constexpr uint16_t LongComprehensionBit = 0x8000;

// Tag number and comprehension bit; gives the bytes that they take, 0 where there are too few.
size_t readTag(ByteView bytes, Tlv &tlv)
{
    if (bytes.empty())
        return 0;
    if (bytes[0] != LongTag) {
        tlv.tag = bytes[0] & ~ComprehensionBit;
        tlv.required = bytes[0] & ComprehensionBit;
        return 1;
    }
    if (bytes.size() < 3)
        return 0;
    const uint16_t number = uint16_t(bytes[1] << 8 | bytes[2]);
    tlv.required = number & LongComprehensionBit;
    tlv.tag = number & ~LongComprehensionBit;
    return 3;
}

} // namespace

std::optional<TlvLength> readLength(ByteView bytes)
{
    if (bytes.empty())
        return std::nullopt;
    if (bytes[0] < 0x80)
        return TlvLength{bytes[0], 1};
    if (bytes[0] == 0x81 && bytes.size() >= 2)
        return TlvLength{bytes[1], 2};
    if (bytes[0] == 0x82 && bytes.size() >= 3)
        return TlvLength{size_t(bytes[1]) << 8 | bytes[2], 3};
    return std::nullopt;
}

void appendLength(Bytes &bytes, size_t length)
{
    if (length > 0xff) {
        bytes.push_back(0x82);
        bytes.push_back(uint8_t(length >> 8));
    } else if (length > 0x7f) {
        bytes.push_back(0x81);
    }
    bytes.push_back(uint8_t(length));
}

std::optional<Tlv> TlvReader::next()
{
    const ByteView rest = m_bytes.part(m_position);
    if (!rest.empty() && (rest[0] == 0x00 || rest[0] == 0xff)) {
        m_position = m_bytes.size();
        return std::nullopt;
    }
    Tlv tlv;
    const size_t tagBytes = readTag(rest, tlv);
    const auto length = tagBytes ? readLength(rest.part(tagBytes)) : std::nullopt;
    if (!length)
        return std::nullopt;
    const size_t head = tagBytes + length->bytes;
    if (length->value > rest.size() - head)
        return std::nullopt;
    tlv.offset = offset();
    tlv.value = rest.part(head, length->value);
    tlv.whole = rest.part(0, head + length->value);
    m_position += tlv.whole.size();
    return tlv;
}

} // namespace cat
