#include <gtest/gtest.h>

#include <algorithm>

#include "Text.h"

namespace {

// What stands in an array of the given capacity after the copy; everything behind it must be zero.
std::u16string copied(const CommandText &text, size_t capacity)
{
    std::vector<uint16_t> units(capacity + 1, 0xaaaa);
    copyText(text, units.data(), capacity);
    EXPECT_EQ(units[capacity], 0xaaaa) << "written past the end";
    const auto end = std::find(units.begin(), units.begin() + capacity, 0);
    EXPECT_TRUE(std::all_of(end, units.begin() + capacity, [](uint16_t unit) { return !unit; }));
    return {units.begin(), end};
}

} // namespace

TEST(Text, FitsItsRecordAtAWholeCharacter)
{
    const std::tuple<CommandText, size_t, std::u16string> rows[] = {
        {{"abcd", false}, 4, u"abc"},
        {{"ab😀", false}, 4, u"ab"},
        {{"a😀", false}, 4, u"a😀"},
        {{"😀", false}, 1, u""},
        {{"Größe €", false}, 16, u"Größe €"},
        {{std::string("a\0b", 3), false}, 4, u"a"},
        {{"abc", true}, 4, u"abca"},
        {{"", true}, 3, u"   "},
        {{"\xff\xc3", false}, 4, u"\ufffd\ufffd"}, // no character, and half a one
        {{"\xed\xa0\x80\xc0\x80", false}, 9, u"\ufffd\ufffd\ufffd"}, // a surrogate, a long zero
    };
    for (const auto &[text, capacity, expected] : rows)
        EXPECT_EQ(copied(text, capacity), expected) << text.utf8;
}

TEST(Text, ComesBackFromUtf16)
{
    const uint16_t units[] = {'a', 0xd83d, 0xde00, 0xd83d, 0x20ac, 0xde00, 0, 'x'};
    EXPECT_EQ(toUtf8(units), "a😀\ufffd€\ufffd");
    EXPECT_EQ(toUtf8(nullptr), "");
}

TEST(Text, StaysOnOneLine)
{
    EXPECT_EQ(oneLine("a\nb\tc\x1b[2J\xe2\x80\xa8\xc2\x85 é"),
              "a\\nb\\tc\\u001b[2J\\u2028\\u0085 é");
    EXPECT_EQ(shortened("12345", 5), "12345");
    EXPECT_EQ(shortened("123€56", 5), "123…");
}
