#include "TextString.h"

#include <algorithm>

#include "Alphabet.h"
#include "Coding.h"
#include "Text.h"

namespace cat {

namespace {

constexpr char16_t Unknown = u'\ufffd';
constexpr char16_t Padding = u'\uffff';

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
std::u16string fromUcs2(ByteView bytes)
{
    std::u16string text(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = char16_t(bytes[2 * i] << 8 | bytes[2 * i + 1]);
    return text;
}

// ETSI TS 102 221 annex A, codings 0x81 and 0x82: bytes from 80 on are offsets from a base, the
// others default alphabet.
std::u16string fromHalfPage(ByteView bytes, unsigned base)
{
    std::u16string text;
    for (size_t i = 0; i < bytes.size();) {
        if (bytes[i] >= 0x80) {
            const unsigned code = base + (bytes[i++] & 0x7f);
            text += code > 0xffff ? Unknown : char16_t(code);
            continue;
        }
        const auto isOffset = [](uint8_t byte) { return byte >= 0x80; };
        const auto end = std::find_if(bytes.begin() + i, bytes.end(), isOffset);
        const size_t length = size_t(end - bytes.begin()) - i;
        text += fromDefaultAlphabet(bytes.part(i, length));
        i += length;
    }
    return text;
}

std::u16string fromPaddedUcs2(ByteView bytes)
{
    std::u16string text = fromUcs2(bytes);
    while (!text.empty() && text.back() == Padding)
        text.pop_back();
    return text;
}

std::u16string fromPaddedDefaultAlphabet(ByteView bytes)
{
    size_t size = bytes.size();
    while (size && bytes[size - 1] == 0xff)
        --size;
    return fromDefaultAlphabet(bytes.part(0, size));
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

std::string toUtf8WithoutZeros(std::u16string text)
{
    std::replace(text.begin(), text.end(), u'\0', Unknown);
    return toUtf8(text);
}

std::string decodeText(ByteView text, TextCoding coding)
{
    switch (coding) {
    case TextCoding::Packed:
        return toUtf8WithoutZeros(fromDefaultAlphabet(unpack(text)));
    case TextCoding::Unpacked:
        return toUtf8WithoutZeros(fromDefaultAlphabet(text));
    case TextCoding::Ucs2:
        break;
    }
    return toUtf8WithoutZeros(fromUcs2(text));
}

std::string decodeTextString(ByteView value)
{
    if (value.empty())
        return {};
    const auto coding = messageCoding(value[0]);
    return coding ? decodeText(value.part(1), *coding) : toUtf8WithoutZeros({Unknown});
}

std::optional<Bytes> encodeTextString(const std::string &utf8, TextCoding coding)
{
    if (utf8.empty())
        return Bytes();
    const std::u16string text = toUtf16(utf8);
    // What is no UTF-8 would not come back as it went, nor would a zero.
    if (toUtf8WithoutZeros(text) != utf8)
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
    std::u16string text;
    switch (value[0]) {
    case 0x80:
        text = fromPaddedUcs2(value.part(1));
        break;
    case 0x81: // count, bits 15 to 8 of the base
        if (value.size() > 3)
            text = fromHalfPage(value.part(3, value[1]), unsigned(value[2]) << 7);
        break;
    case 0x82: // count, base
        if (value.size() > 4)
            text = fromHalfPage(value.part(4, value[1]), unsigned(value[2]) << 8 | value[3]);
        break;
    default:
        text = fromPaddedDefaultAlphabet(value);
    }
    return toUtf8WithoutZeros(std::move(text));
}

} // namespace cat
