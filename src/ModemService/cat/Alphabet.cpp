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

template <class CodeAt> void add(TextBuilder &text, size_t count, CodeAt codeAt)
{
    for (size_t i = 0; i < count; ++i) {
        const uint8_t code = codeAt(i);
        if (code != Escape)
            text.add(character(code));
        else if (++i < count)
            text.add(extendedCharacter(codeAt(i)));
        else
            text.add(u' ');
    }
}

} // namespace

void addCodes(TextBuilder &text, ByteView codes)
{
    add(text, codes.size(), [codes](size_t i) { return codes[i]; });
}

void addPacked(TextBuilder &text, ByteView packed, size_t firstBit, size_t count)
{
    const size_t bits = packed.size() * 8;
    const size_t there = firstBit < bits ? (bits - firstBit) / CodeBits : 0;
    add(text, std::min(count, there), [packed, firstBit](size_t i) {
        const size_t bit = firstBit + i * CodeBits;
        const size_t byte = bit / 8;
        const unsigned pair = packed[byte] | (byte + 1 < packed.size() ? packed[byte + 1] << 8 : 0);
        return uint8_t(pair >> bit % 8 & 0x7f);
    });
}

size_t countPacked(ByteView packed, uint8_t filler)
{
    const size_t count = packed.size() * 8 / CodeBits;
    const bool filled =
        count && packed.size() % CodeBits == 0 && packed[packed.size() - 1] >> 1 == filler;
    return filled ? count - 1 : count;
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

} // namespace cat
