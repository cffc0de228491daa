#include "TextString.h"

#include <algorithm>

#include "Alphabet.h"
#include "Coding.h"
#include "Text.h"

namespace cat {

namespace {

constexpr char16_t Unknown = u'\ufffd';

// Bits 4 and 3 of the general data coding groups; the fourth value is reserved and read as the
// first.
TextCoding generalCoding(uint8_t scheme)
{
    switch (scheme & 0x0c) {
    case 0x04:
        return TextCoding::Unpacked;
    case 0x08:
        return TextCoding::Ucs2;
    default:
        return TextCoding::Packed;
    }
}

TextCoding dataOrPacked(uint8_t scheme)
{
    return scheme & 0x04 ? TextCoding::Unpacked : TextCoding::Packed;
}

// Most significant byte first; an odd byte at the end is no character.
std::string fromUcs2(ByteView bytes)
{
    TextBuilder text(bytes.size() / 2 * 3);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        text.add(char16_t(bytes[i] << 8 | bytes[i + 1]));
    return text.take();
}

// A byte a character.
std::string fromCodes(ByteView codes)
{
    TextBuilder text(codes.size());
    addCodes(text, codes);
    return text.take();
}

// ETSI TS 102 221 annex A, codings 0x81 and 0x82: bytes from 80 on are offsets from a base, the
// others default alphabet.
std::string fromHalfPage(ByteView bytes, unsigned base)
{
    TextBuilder text(bytes.size() * 3);
    for (size_t i = 0; i < bytes.size();) {
        if (bytes[i] >= 0x80) {
            const unsigned code = base + (bytes[i++] & 0x7f);
            text.add(code > 0xffff ? Unknown : char16_t(code));
            continue;
        }
        const auto isOffset = [](uint8_t byte) { return byte >= 0x80; };
        const auto end = std::find_if(bytes.begin() + i, bytes.end(), isOffset);
        const size_t length = size_t(end - bytes.begin()) - i;
        addCodes(text, bytes.part(i, length));
        i += length;
    }
    return text.take();
}

// Without the bytes FF at its end, of which `unit` together are one.
ByteView withoutPadding(ByteView bytes, size_t unit)
{
    const auto isPadding = [](uint8_t byte) { return byte == 0xff; };
    size_t size = bytes.size() / unit * unit;
    while (size && std::all_of(bytes.begin() + size - unit, bytes.begin() + size, isPadding))
        size -= unit;
    return bytes.part(0, size);
}

} // namespace

std::optional<TextCoding> messageCoding(uint8_t scheme)
{
    switch (scheme >> 4) {
    case 0x0: // general, and marked for automatic deletion
    case 0x1:
    case 0x4:
    case 0x5:
        return generalCoding(scheme);
    case 0x2: // the same, compressed
    case 0x3:
    case 0x6:
    case 0x7:
        return std::nullopt;
    case 0xe: // message waiting
        return TextCoding::Ucs2;
    case 0xf:
        return dataOrPacked(scheme);
    default: // reserved ones are read as the default alphabet, as clause 4 wants
        return TextCoding::Packed;
    }
}

std::optional<TextCoding> broadcastCoding(uint8_t scheme)
{
    if (scheme == 0x11) // behind a language
        return TextCoding::Ucs2;
    switch (scheme >> 4) {
    case 0x4:
    case 0x5:
    case 0x9: // with a user data header
        return generalCoding(scheme);
    case 0x6:
    case 0x7:
        return std::nullopt;
    case 0xf:
        return dataOrPacked(scheme);
    default: // languages, and reserved ones
        return TextCoding::Packed;
    }
}

std::string decodeText(ByteView text, TextCoding coding, uint8_t filler)
{
    if (coding == TextCoding::Ucs2)
        return fromUcs2(text);
    if (coding == TextCoding::Unpacked)
        return fromCodes(text);
    const size_t count = countPacked(text, filler);
    TextBuilder decoded(count);
    addPacked(decoded, text, 0, count);
    return decoded.take();
}

std::string decodeTextString(ByteView value)
{
    if (value.empty())
        return {};
    const auto coding = messageCoding(value[0]);
    return coding ? decodeText(value.part(1), *coding) : toUtf8({Unknown});
}

std::optional<Bytes> encodeTextString(const std::string &utf8, TextCoding coding)
{
    if (utf8.empty())
        return Bytes();
    const std::u16string text = toUtf16(utf8);
    // What is no UTF-8 would not come back as it went, nor would a zero.
    if (toUtf8(text) != utf8 || utf8.find('\0') != std::string::npos)
        return std::nullopt;

    Bytes value{uint8_t(coding)};
    if (coding == TextCoding::Ucs2) {
        for (const char16_t unit : text) {
            if (unit >= 0xd800 && unit < 0xe000)
                return std::nullopt;
            value.push_back(uint8_t(unit >> 8));
            value.push_back(uint8_t(unit));
        }
    } else {
        const auto codes = toDefaultAlphabet(text);
        if (!codes)
            return std::nullopt;
        const Bytes bytes = coding == TextCoding::Packed ? pack(*codes) : *codes;
        value.insert(value.end(), bytes.begin(), bytes.end());
    }
    return value;
}

std::string decodeAlpha(ByteView value)
{
    if (value.empty())
        return {};
    switch (value[0]) {
    case 0x80:
        return fromUcs2(withoutPadding(value.part(1), 2));
    case 0x81: // count, bits 15 to 8 of the base
        if (value.size() <= 3)
            return {};
        return fromHalfPage(value.part(3, value[1]), unsigned(value[2]) << 7);
    case 0x82: // count, base
        if (value.size() <= 4)
            return {};
        return fromHalfPage(value.part(4, value[1]), unsigned(value[2]) << 8 | value[3]);
    default:
        return fromCodes(withoutPadding(value, 1));
    }
}

} // namespace cat
