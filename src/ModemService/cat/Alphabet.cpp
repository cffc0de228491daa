#include "Alphabet.h"

#include <algorithm>
#include <iterator>

namespace cat {

namespace {

constexpr uint8_t Escape = 0x1b;
constexpr char16_t Unknown = u'\ufffd';
constexpr size_t CodeBits = 7;

// Clause 6.2.1; a code stands at its place.
constexpr char16_t DefaultAlphabet[] = u"@£$¥èéùìòÇ\nØø\rÅå"
                                       u"Δ_ΦΓΛΩΠΨΣΘΞ\u001bÆæßÉ"
                                       u" !\"#¤%&'()*+,-./"
                                       u"0123456789:;<=>?"
                                       u"¡ABCDEFGHIJKLMNO"
                                       u"PQRSTUVWXYZÄÖÑÜ§"
                                       u"¿abcdefghijklmno"
                                       u"pqrstuvwxyzäöñüà";
static_assert(std::size(DefaultAlphabet) == 128 + 1);

// Clause 6.2.1.1.
struct Extension {
    uint8_t code;
    char16_t character;
};
constexpr Extension Extensions[] = {
    {0x0a, u'\f'}, {0x14, u'^'}, {0x28, u'{'}, {0x29, u'}'}, {0x2f, u'\\'},
    {0x3c, u'['},  {0x3d, u'~'}, {0x3e, u']'}, {0x40, u'|'}, {0x65, u'€'},
};

char16_t character(uint8_t code)
{
    return code < 0x80 ? DefaultAlphabet[code] : Unknown;
}

// The character of a code behind an escape.  What the extension table lacks is shown as in the
// default alphabet, a further escape as a space.
char16_t extendedCharacter(uint8_t code)
{
    if (code == Escape)
        return u' ';
    const auto found = std::find_if(std::begin(Extensions), std::end(Extensions),
                                    [code](const Extension &row) { return row.code == code; });
    return found == std::end(Extensions) ? character(code) : found->character;
}

} // namespace

std::u16string fromDefaultAlphabet(ByteView codes)
{
    std::u16string text;
    text.reserve(codes.size());
    for (size_t i = 0; i < codes.size(); ++i) {
        if (codes[i] != Escape)
            text += character(codes[i]);
        else if (++i < codes.size())
            text += extendedCharacter(codes[i]);
        else
            text += u' ';
    }
    return text;
}

std::optional<Bytes> toDefaultAlphabet(const std::u16string &text)
{
    const auto end = std::end(DefaultAlphabet) - 1;
    Bytes codes;
    codes.reserve(text.size());
    for (const char16_t wanted : text) {
        const auto code = std::find(std::begin(DefaultAlphabet), end, wanted);
        if (code != end && wanted != Escape) {
            codes.push_back(uint8_t(code - std::begin(DefaultAlphabet)));
            continue;
        }
        const auto row = std::find_if(std::begin(Extensions), std::end(Extensions),
                                      [=](const Extension &e) { return e.character == wanted; });
        if (row == std::end(Extensions))
            return std::nullopt;
        codes.push_back(Escape);
        codes.push_back(row->code);
    }
    return codes;
}

Bytes pack(ByteView codes)
{
    Bytes packed((codes.size() * CodeBits + 7) / 8);
    for (size_t i = 0; i < codes.size(); ++i) {
        const size_t bit = i * CodeBits;
        const unsigned shifted = unsigned(codes[i]) << bit % 8;
        packed[bit / 8] |= uint8_t(shifted);
        if (shifted > 0xff)
            packed[bit / 8 + 1] |= uint8_t(shifted >> 8);
    }
    return packed;
}

Bytes unpack(ByteView packed)
{
    Bytes codes = unpack(packed, 0, SIZE_MAX);
    if (packed.size() % CodeBits == 0 && !codes.empty() && codes.back() == 0)
        codes.pop_back();
    return codes;
}

Bytes unpack(ByteView packed, size_t firstBit, size_t count)
{
    const size_t bits = packed.size() * 8;
    Bytes codes;
    codes.reserve(std::min(count, bits / CodeBits));
    for (size_t bit = firstBit; bit + CodeBits <= bits && codes.size() < count; bit += CodeBits) {
        const size_t byte = bit / 8;
        const unsigned pair = packed[byte] | (byte + 1 < packed.size() ? packed[byte + 1] << 8 : 0);
        codes.push_back(pair >> bit % 8 & 0x7f);
    }
    return codes;
}

} // namespace cat
