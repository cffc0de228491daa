#include "Text.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr char32_t Replacement = 0xfffd;

bool isSurrogate(char32_t character)
{
    return character >= 0xd800 && character <= 0xdfff;
}

bool isLeadSurrogate(char16_t unit)
{
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool isTrailSurrogate(char16_t unit)
{
    return unit >= 0xdc00 && unit <= 0xdfff;
}

// The number of bytes that follow the first byte of a character, -1 where none begins with it.
int continuationBytes(unsigned char first)
{
    if (first < 0x80)
        return 0;
    if (first >= 0xc2 && first <= 0xdf)
        return 1;
    if (first >= 0xe0 && first <= 0xef)
        return 2;
    return first >= 0xf0 && first <= 0xf4 ? 3 : -1;
}

// Reads the character at the position and moves behind it.
char32_t nextCharacter(const std::string &utf8, size_t &position)
{
    static constexpr char32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
    static constexpr unsigned char FirstByteBits[] = {0x7f, 0x1f, 0x0f, 0x07};

    const unsigned char first = static_cast<unsigned char>(utf8[position++]);
    const int following = continuationBytes(first);
    if (following < 0)
        return Replacement;
    char32_t character = first & FirstByteBits[following];
    for (int i = 0; i < following; ++i) {
        if (position == utf8.size() || (static_cast<unsigned char>(utf8[position]) & 0xc0) != 0x80)
            return Replacement;
        character = (character << 6) | (static_cast<unsigned char>(utf8[position++]) & 0x3f);
    }
    const bool valid =
        character >= Smallest[following] && character <= 0x10ffff && !isSurrogate(character);
    return valid ? character : Replacement;
}

// At most `limit` units from the start of the text that end with a whole character.
size_t wholeCharacters(const std::u16string &text, size_t limit)
{
    if (text.size() <= limit)
        return text.size();
    return limit > 0 && isLeadSurrogate(text[limit - 1]) ? limit - 1 : limit;
}

} // namespace

void appendUtf8(std::string &utf8, char32_t character)
{
    if (character < 0x80) {
        utf8 += static_cast<char>(character);
        return;
    }
    const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    static constexpr unsigned char Marks[] = {0, 0xc0, 0xe0, 0xf0};
    utf8 += static_cast<char>(Marks[following] | (character >> (6 * following)));
    for (int i = following - 1; i >= 0; --i)
        utf8 += static_cast<char>(0x80 | ((character >> (6 * i)) & 0x3f));
}

std::u16string toUtf16(const std::string &utf8)
{
    std::u16string utf16;
    for (size_t position = 0; position < utf8.size();) {
        const char32_t character = nextCharacter(utf8, position);
        if (character < 0x10000) {
            utf16 += static_cast<char16_t>(character);
            continue;
        }
        utf16 += static_cast<char16_t>(0xd800 + ((character - 0x10000) >> 10));
        utf16 += static_cast<char16_t>(0xdc00 + ((character - 0x10000) & 0x3ff));
    }
    return utf16;
}

std::string toUtf8(const std::u16string &utf16)
{
    std::string utf8;
    for (size_t i = 0; i < utf16.size(); ++i) {
        const char16_t unit = utf16[i];
        if (isLeadSurrogate(unit) && i + 1 < utf16.size() && isTrailSurrogate(utf16[i + 1])) {
            ++i;
            appendUtf8(utf8, 0x10000 + ((unit - 0xd800) << 10) + (utf16[i] - 0xdc00));
        } else {
            appendUtf8(utf8, isSurrogate(unit) ? Replacement : unit);
        }
    }
    return utf8;
}

std::string toUtf8(const uint16_t *zeroTerminated)
{
    std::u16string utf16;
    for (; zeroTerminated && *zeroTerminated != 0; ++zeroTerminated)
        utf16 += static_cast<char16_t>(*zeroTerminated);
    return toUtf8(utf16);
}

void copyText(const CommandText &text, uint16_t *units, size_t capacity)
{
    std::u16string utf16 = toUtf16(text.utf8.c_str()); // a zero in the text ends it
    std::fill(units, units + capacity, uint16_t(0));
    if (!text.unterminated) {
        std::copy_n(utf16.begin(), wholeCharacters(utf16, capacity - 1), units);
        return;
    }
    if (utf16.empty())
        utf16 += u' ';
    for (size_t i = 0; i < capacity; ++i)
        units[i] = utf16[i % utf16.size()];
}

std::string oneLine(const std::string &utf8)
{
    std::string line;
    for (size_t position = 0; position < utf8.size();) {
        const size_t start = position;
        const char32_t character = nextCharacter(utf8, position);
        const bool control = character < 0x20 || (character >= 0x7f && character < 0xa0) ||
            character == 0x2028 || character == 0x2029;
        if (character == '\n') {
            line += "\\n";
        } else if (character == '\t') {
            line += "\\t";
        } else if (control) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character));
            line += escape;
        } else if (character == Replacement) {
            appendUtf8(line, Replacement);
        } else {
            line.append(utf8, start, position - start);
        }
    }
    return line;
}

std::string shortened(const std::string &utf8, size_t bytes)
{
    if (utf8.size() <= bytes)
        return utf8;
    size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xc0) == 0x80)
        --end;
    return utf8.substr(0, end) + "…";
}
