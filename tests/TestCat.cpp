#include <gtest/gtest.h>

#include <sstream>

#include "TestCatJson.h"
#include "toolkit/CommandBridge.h"
#include "cat/Response.h"

using cat::Problem;
using cat::TextCoding;

namespace {

const std::string Bad = "\xef\xbf\xbd"; // U+FFFD

// What FETCH returns: a command of that type and qualifier, and its data objects behind the head.
cat::Bytes proactive(const std::string &typeAndQualifier, const std::string &objects)
{
    const cat::Bytes body = bytes("81 03 01" + typeAndQualifier + "82 02 81 82" + objects);
    cat::Bytes fetched{0xd0};
    fetched.push_back(uint8_t(body.size()));
    fetched.insert(fetched.end(), body.begin(), body.end());
    return fetched;
}

struct CommandCase {
    std::string typeAndQualifier, objects;
    std::string json; // what is decoded, or what the reason must name
    Problem problem = Problem::None;
    bool isPartial = false;
};

const CommandCase Good[] = {
    {"01 01", "92 05 01 3F 00 2F E2", R"({"files":"013F002FE2"})"},
    {"01 03", "", R"({"files":""})"},
    {"02 00", "", "{}"},
    {"03 00", "84 02 00 02", R"({"duration":{"unit":"minutes","interval":2}})"},
    {"05 00", "99 02 04 07", R"({"events":"0407"})"},
    {"10 00", "86 04 91 21 A3 F4", R"({"confirm":"","setup":"","number_dialled":"+123*4"})"},
    {"10 02", "05 01 41 86 06 81 BA C1 D2 0E FF 05 01 42 0A 00",
     R"({"confirm":"A","setup":"B","number_dialled":"*#1p2?&0"})", Problem::None, true},
    {"10 00", "86 01 91", R"({"confirm":"","setup":"","number_dialled":""})"},
    {"11 00", "85 02 48 69 89 05 91 AA 12 0A FB", R"({"alpha":"Hi","code":"**21*0#"})"},
    {"12 00", "8A 03 F4 2A 23", R"({"alpha":"","code":"*#"})"},
    {"12 00", "8A 03 48 04 17", R"({"alpha":"","code":"З"})"},
    {"12 00", "8A 06 0F C8 32 9B FD 06", R"({"alpha":"","code":"Hello"})"},
    {"12 00", "8A 08 0F C1 60 30 18 0C 06 01", R"({"alpha":"","code":"AAAAAAA@"})"},
    {"12 00", "8A 08 0F AA 51 4C 36 A3 8D 1A", R"({"alpha":"","code":"*#1234#"})"},
    // SMS-SUBMIT: no validity period and 8 bit; relative and packed; absolute and a header before
    // packed text; alphanumeric address and UCS-2; a command; one that is cut off.
    {"13 00", "8B 0B 01 00 03 91 21 F3 00 F4 02 48 69",
     R"({"alpha":"","address":"+123","message":"Hi"})"},
    {"13 00", "8B 0F 11 00 03 81 21 F3 00 00 A7 05 C8 32 9B FD 06",
     R"({"alpha":"","address":"123","message":"Hello"})"},
    {"13 00", "8B 16 59 00 01 81 F1 00 00 01 02 03 04 05 06 07 07 03 05 01 07 40 CA 00",
     R"({"alpha":"","address":"1","message":"H2"})"},
    {"13 00", "8B 0C 01 00 04 D0 C8 34 00 08 02 00 41 FF",
     R"({"alpha":"","address":"Hi","message":"A"})"},
    {"13 00", "8B 05 02 00 00 00 00", R"({"alpha":"","address":"","message":""})"},
    {"13 00", "8B 05 01 00 13 91 21", R"({"alpha":"","address":"","message":""})"},
    {"15 03", "31 05 61 5F 40 00 80 05 01 42", R"({"alpha":"B","url":"a_@\ufffd\ufffd"})"},
    {"20 00", "85 00 8E 01 11 84 02 02 05",
     R"({"alpha":"","tone":17,"duration":{"unit":"tenths","interval":5}})"},
    {"20 00", "", R"({"alpha":""})"},
    {"21 80", "8D 03 04 48 69 AB 00 84 02 01 0A",
     R"({"text":"Hi","immediate":true,"duration":{"unit":"seconds","interval":10}})"},
    {"21 80", "9E 02 01 05 8D 03 04 48 69", R"({"text":"Hi","immediate":false})"},
    {"22 00", "8D 00", R"({"text":""})"},
    {"23 00", "8D 01 04 91 02 01 FF 17 02 04 37", R"({"text":"","min":1,"max":255,"default":"7"})"},
    {"24 00", "8F 02 02 41 8F 01 FF 90 01 02",
     R"({"title":"","items":[{"id":2,"text":"A"},{"id":255,"text":""}],"default_item":2})"},
    {"25 00", "85 00 8F 00", R"({"title":"","items":[]})"},
    {"25 00", "85 01 41 8F 05 01 80 04 17 FF", R"({"title":"A","items":[{"id":1,"text":"З"}]})"},
    {"26 03", "", "{}"},
    {"27 00", "A4 01 08 A5 03 10 20 95", R"({"timer":8,"seconds":3779})"},
    {"27 02", "A4 01 01", R"({"timer":1})"},
    {"28 00", "8D 00", R"({"text":""})"},
    {"35 01", "AD 02 73 65", R"({"language":"se"})"},
    {"35 00", "", R"({"language":""})"},
    // Known, and no matter: text attributes, frame, next actions, icon lists, a second one.
    {"21 80", "8D 02 04 41 D0 04 00 10 00 B4 E8 01 00 8D 02 04 42",
     R"({"text":"A","immediate":false})"},
    {"25 00", "85 00 8F 01 01 98 01 00 9F 02 01 05 D0 04 00 00 00 B4 D1 00",
     R"({"title":"","items":[{"id":1,"text":""}]})"},
    {"15 00", "B0 01 00 31 00 B2 01 03 B3 02 3F 00 8D 01 04 C7 01 41", R"({"alpha":"","url":""})"},
    // The long form of a tag; bytes behind a value; padding behind the last object.
    {"21 80", "7F 80 0D 02 04 41 7F 00 2B 00", R"({"text":"A","immediate":true})"},
    {"20 00", "85 01 41 8E 02 11 FF 84 03 01 0A FF 9E 03 00 05 FF",
     R"({"alpha":"A","tone":17,"duration":{"unit":"seconds","interval":10}})"},
    {"23 00", "8D 00 91 03 01 05 FF", R"({"text":"","min":1,"max":5,"default":""})"},
    {"24 00", "8F 01 02 90 02 02 FF",
     R"({"title":"","items":[{"id":2,"text":""}],"default_item":2})"},
    {"27 00", "A4 02 01 FF A5 04 00 50 00 FF", R"({"timer":1,"seconds":300})"},
    {"35 01", "AD 03 73 65 FF", R"({"language":"se"})"},
    {"28 00", "8D 02 04 41 00 00 00 00", R"({"text":"A"})"},
    {"28 00", "8D 02 04 41 FF FF", R"({"text":"A"})"},
    // Of two icons the first counts; one that explains itself may stand alone where a text may go.
    {"21 80", "8D 02 04 41 9E 02 00 05 9E 02 01 06", R"({"text":"A","immediate":false})"},
    {"28 00", "8D 00 9E 02 00 01", R"({"text":""})"},
    // Passed over: unknown, of another command, optional and malformed.
    {"21 80", "58 01 00 8D 02 04 41", R"({"text":"A","immediate":false})", Problem::None, true},
    {"28 00", "7F 12 34 01 FF 8D 02 04 41", R"({"text":"A"})", Problem::None, true},
    {"02 00", "05 01 41", "{}", Problem::None, true},
    {"21 80", "8D 02 04 41 04 01 01", R"({"text":"A","immediate":false})", Problem::None, true},
    {"20 00", "0E 00 04 02 03 01", R"({"alpha":""})", Problem::None, true},
};

constexpr Problem NotUnderstood = Problem::DataNotUnderstood, Missing = Problem::ValuesMissing;

const CommandCase Refused[] = {
    {"21 80", "", "text string (clause 8.15): missing", Missing},
    {"21 80", "8D 01 04", "text string", NotUnderstood},
    {"21 80", "8D 03 20 48 69", "text string (clause 8.15) at byte 11", NotUnderstood},
    {"21 80", "8D 02 04 41 D8 01 00", "tag 58 at byte 15", NotUnderstood},
    {"21 80", "8D 02 04 41 7F 92 34 00", "tag 1234 at byte 15", NotUnderstood},
    {"21 80", "8D 02 04 41 84 01 01", "duration", NotUnderstood},
    {"21 80", "8D 02 04 41 84 02 03 01", "duration", NotUnderstood},
    {"21 80", "8D 02 04 41 8D", "at byte 15: runs past", NotUnderstood},
    {"21 80", "8D 02 04 41 7F 92", "at byte 15: runs past", NotUnderstood},
    {"21 80", "8D 83 00 00 01 04", "at byte 11: runs past", NotUnderstood},
    {"28 00", "8D 00 9E 02 01 01", "icon identifier (clause 8.31) at byte 13", NotUnderstood},
    {"11 00", "89 02 91 21 9E 02 01 01", "icon", NotUnderstood},
    {"10 00", "85 01 41 86 02 91 21 85 00 9E 02 01 01 9E 02 01 02",
     "icon identifier (clause 8.31) at byte 24", NotUnderstood},
    // Of another command, or unknown, and must be understood; what is missing comes first.
    {"21 80", "8D 02 04 41 98 01 00", "tag 18 at byte 15", NotUnderstood},
    {"02 00", "D0 04 00 00 00 B4", "tag 50 at byte 11", NotUnderstood},
    {"02 00", "80 00", "tag 00 at byte 11", NotUnderstood},
    {"21 80", "D8 01 00", "text string (clause 8.15): missing", Missing},
    {"01 01", "D8 01 00", "file list", Missing},
    {"22 00", "8D 00 9E 02 00 01", "icon identifier", NotUnderstood},
    {"20 00", "9E 02 00 01", "icon identifier", NotUnderstood},
    {"22 00", "", "text string", Missing},
    {"23 00", "8D 00", "response length", Missing},
    {"23 00", "8D 00 91 01 05", "response length", NotUnderstood},
    {"24 00", "85 00", "item", Missing},
    {"24 00", "8F 00", "null", NotUnderstood},
    {"24 00", "8F 02 00 41", "item (clause 8.9) at byte 11", NotUnderstood},
    {"25 00", "8F 02 01 41", "alpha", Missing},
    {"25 00", "85 00 8F 02 01 41 8F 00", "null", NotUnderstood},
    {"01 01", "", "file list", Missing},
    {"03 00", "", "duration", Missing},
    {"10 00", "86 00", "address", NotUnderstood},
    {"12 00", "8A 00", "USSD string", NotUnderstood},
    {"12 00", "8A 02 60 00", "USSD string", NotUnderstood},
    {"13 00", "8B 00", "SMS TPDU", NotUnderstood},
    {"27 00", "A4 01 01", "timer value", Missing},
    {"27 02", "A4 01 09", "timer identifier", NotUnderstood},
    {"27 00", "A4 01 01 A5 03 0A 00 00", "timer value", NotUnderstood},
    {"27 00", "A4 01 01 A5 03 00 06 00", "timer value", NotUnderstood},
    {"35 01", "AD 01 73", "language", NotUnderstood},
    {"35 01", "", "language", Missing},
    {"14 00", "AC 02 C1 F2", "SEND DTMF", Problem::BeyondCapabilities},
    {"14 00", "AC 02 C1 F2 9E 02 01 01", "icon", NotUnderstood},
    {"40 01",
     "86 01 91 88 01 80 84 02 01 05 8D 01 04 B5 01 03 B9 02 05 78 BC 03 01 00 50 BE 01 21 C7 01 41",
     "OPEN CHANNEL", Problem::BeyondCapabilities},
    {"7F 00", "", "type of command 7F", Problem::TypeNotUnderstood},
};

} // namespace

TEST(Cat, DecodesCommandsOrSaysWhatIsWrong)
{
    std::vector<CommandCase> rows(std::begin(Good), std::end(Good));
    rows.insert(rows.end(), std::begin(Refused), std::end(Refused));
    for (const auto &row : rows) {
        SCOPED_TRACE(row.typeAndQualifier + " | " + row.objects);
        const cat::Command command = cat::decode(proactive(row.typeAndQualifier, row.objects));
        EXPECT_EQ(command.problem, row.problem) << command.reason;
        EXPECT_EQ(cat::toHex(command.details.object).substr(6),
                  cat::toHex(bytes(row.typeAndQualifier)));
        if (row.problem == Problem::None) {
            EXPECT_EQ(command.isPartial, row.isPartial);
            EXPECT_EQ(cat::fields(command), cat::Json::parse(row.json));
        } else {
            EXPECT_NE(command.reason.find(row.json), std::string::npos) << command.reason;
            EXPECT_FALSE(toProactiveCommand(command));
        }
    }
}

// A command that is cut off anywhere is refused, with details that a response can repeat.
TEST(Cat, RefusesWhatIsCutOff)
{
    for (const auto &row : Good) {
        const cat::Bytes whole = proactive(row.typeAndQualifier, row.objects);
        for (size_t size = 0; size < whole.size(); ++size) {
            const cat::Bytes cut(whole.begin(), whole.begin() + long(size));
            const cat::Command command = cat::decode(cut);
            EXPECT_EQ(command.problem, Problem::DataNotUnderstood) << cat::toHex(cut);
            EXPECT_EQ(cat::toHex(command.details.object),
                      size < 7 ? "8103000000" : cat::toHex(whole).substr(4, 10))
                << cat::toHex(cut);
        }
    }
}

TEST(Cat, KeepsTheDetailsByteForByte)
{
    const std::tuple<std::string, std::string, Problem> rows[] = {
        {"D0 09 81 03 01 02 00 82 02 81 82", "8103010200", Problem::None},
        {"D0 09 01 03 01 02 00 02 02 81 82 FF FF FF", "0103010200", Problem::None},
        {"D0 81 0A 81 81 03 01 02 00 82 02 81 82", "818103010200", Problem::None},
        {"D0 0B 81 04 01 02 00 FF 82 03 81 82 FF", "8104010200FF", Problem::None},
        {"D0 82 00 09 82 02 81 82 81 03 01 02 00", "8103010200", Problem::None},
        {"D0 05 81 03 01 02 00", "8103010200", Problem::ValuesMissing},
        {"D0 08 81 03 01 02 00 82 01 81", "8103010200", Problem::DataNotUnderstood},
        {"D0 08 81 02 01 02 82 02 81 82", "8103000000", Problem::DataNotUnderstood},
        {"D0 6C 81 65 01 02 00" + std::string(2 * 98, '0') + "82 02 81 82", "8103000000",
         Problem::DataNotUnderstood},
        {"D1 09 81 03 01 02 00 82 02 81 82", "8103000000", Problem::DataNotUnderstood},
        {"D0 80 81 03 01 02 00 82 02 81 82", "8103000000", Problem::DataNotUnderstood},
    };
    for (const auto &[fetched, details, problem] : rows) {
        const cat::Command command = cat::decode(bytes(fetched));
        EXPECT_EQ(cat::toHex(command.details.object), details) << fetched;
        EXPECT_EQ(command.problem, problem) << fetched << command.reason;
    }
}

TEST(Cat, ReadsTexts)
{
    const std::pair<std::string, std::string> strings[] = {
        {"", ""},
        {"00", ""},
        {"04 01 03 0E 10 15 1F 40 5F 60 7F 11", "£¥ÅΔΩÉ¡§¿à_"},
        {"04 1B 65 1B 14 1B 41 1B 1B 1B", "€^A  "},
        {"04 80 41 FF", Bad + "A" + Bad},
        {"00 C8 32 9B FD 06", "Hello"},
        {"00 31 D9 8C 56 B3 DD 00", "1234567"},
        {"00 31 D9 8C 56 B3 DD 70", "12345678"},
        {"F0 C8 32 9B FD 06", "Hello"},
        {"F5 48 69", "Hi"},
        {"1A 00 41", "A"},
        {"E0 00 41", "A"},
        {"0C C8 32 9B FD 06", "Hello"},
        {"80 C8 32 9B FD 06", "Hello"},
        {"20 00 41", Bad},
        {"08 20 AC D8 3D DE 00 00", "€\xf0\x9f\x98\x80"},
        {"08 D8 3D 00 00 DE 00", Bad + Bad + Bad},
    };
    for (const auto &[value, text] : strings)
        EXPECT_EQ(cat::decodeTextString(bytes(value)), text) << value;

    const std::pair<std::string, std::string> alphas[] = {
        {"", ""},
        {"FF FF", ""},
        {"48 69 FF FF", "Hi"},
        {"48 FF 85 1B 65", "H" + Bad + Bad + "€"},
        {"80", ""},
        {"80 04 17 4E 2D FF FF FF", "З中"},
        {"81 03 08 97 20 98 FF", "З И"}, // base 0400
        {"81 02 9C AD 80 41", "中一"},
        {"81 01 08 C1", "\xd1\x81"}, // the half page's upper half
        {"81 09 08 97 1B 65 1B", "З€ "}, // more counted than there is
        {"81 00 08 97", ""},
        {"81 01", ""},
        {"82 02 4E 00 AD 80", "中一"},
        {"82 04 04 10 87 41 1B 14", "ЗA^"},
        {"82 02 FF F0 8F 90", "\xef\xbf\xbf" + Bad}, // behind the last half page
        {"82 01 04", ""},
    };
    for (const auto &[value, text] : alphas)
        EXPECT_EQ(cat::decodeAlpha(bytes(value)), text) << value;
}

TEST(Cat, CodesTextsOrRefusesThem)
{
    const std::tuple<std::string, TextCoding, std::string> rows[] = {
        {"", TextCoding::Ucs2, ""},
        {"+@", TextCoding::Unpacked, "042B00"},
        {"€[", TextCoding::Unpacked, "041B651B3C"},
        {"hello", TextCoding::Packed, "00E8329BFD06"},
        {"12345678", TextCoding::Packed, "0031D98C56B3DD70"},
        {"ル€", TextCoding::Ucs2, "0830EB20AC"},
        {"ル", TextCoding::Unpacked, "-"},
        {"ç", TextCoding::Packed, "-"},
        {"\x1b", TextCoding::Unpacked, "-"},
        {"\xf0\x9f\x98\x80", TextCoding::Ucs2, "-"},
        {"a\xff", TextCoding::Ucs2, "-"},
        {std::string("a\0", 2), TextCoding::Ucs2, "-"},
    };
    for (const auto &[text, coding, expected] : rows) {
        const auto value = cat::encodeTextString(text, coding);
        EXPECT_EQ(value ? cat::toHex(*value) : "-", expected) << text;
    }
    for (int code = 0; code < 0x80; ++code) {
        const cat::Bytes value{0x04, uint8_t(code)};
        const std::string text = cat::decodeTextString(value);
        if (code != 0x1b) {
            EXPECT_EQ(cat::encodeTextString(text, TextCoding::Unpacked), value);
        }
    }
}

TEST(Cat, RefusesAResponseThatACardCannotTake)
{
    const std::tuple<std::string, std::string, size_t> rows[] = {
        {"23 00", "8D 00 91 02 00 FF", 240},
        {"22 00", "8D 00", 240},
        {"22 00", "8D 00 84 02 01 0A", 236},
    };
    for (const auto &[typeAndQualifier, objects, room] : rows) {
        const cat::Command command = cat::decode(proactive(typeAndQualifier, objects));
        EXPECT_EQ(toProactiveCommand(command)->answerRoom, room);
        cat::Response response{command.details, 0x00, {}, cat::Bytes(room, 'a')};
        if (const auto *inkey = std::get_if<cat::GetInkey>(&command.body))
            response.duration = inkey->duration;
        EXPECT_EQ(cat::encode(response)->size(), 255u);
        response.text->push_back('a');
        EXPECT_FALSE(cat::encode(response));
    }
}

TEST(Cat, EncodesWhatTheCardIsTold)
{
    using namespace std::chrono_literals;
    const cat::CommandDetails details{1, 0x22, 0, bytes("01 81 03 01 22 00")};
    cat::Response many{details}, other{details};
    many.duration = cat::Duration{cat::Duration::Unit::TenthsOfSeconds, 5};
    many.item = 7;
    many.language = "de";
    many.timer = 8;
    many.timerValue = 99h + 59min + 58s;
    other.timerValue = 1000h;
    other.dateTime = bytes("62 11");
    const cat::Bytes longest(0x80, 4);
    const std::pair<cat::Response, std::string> rows[] = {
        {{details, 0x00}, "830100"},
        {{details, 0x20, {0x04}}, "83022004"},
        {{details, 0x00, {}, cat::Bytes()}, "8301008D00"},
        {{details, 0x00, {}, longest}, "8301008D8180" + cat::toHex(longest)},
        {many, "83010084020205900107AD026465A40108A503999585"},
        {other, "830100A6026211A503999595"},
    };
    for (const auto &[response, tail] : rows)
        EXPECT_EQ(cat::toHex(*cat::encode(response)), "01810301220082028281" + tail);

    std::tm time{};
    time.tm_year = 126, time.tm_mon = 10, time.tm_mday = 21;
    time.tm_hour = 15, time.tm_min = 4, time.tm_sec = 59;
    time.tm_gmtoff = 3600;
    EXPECT_EQ(cat::toHex(cat::encodeDateTime(time)), "62111251409540");
    time.tm_gmtoff = -(9 * 3600 + 1800);
    EXPECT_EQ(cat::toHex(cat::encodeDateTime(time)), "6211125140958B");

    EXPECT_EQ(cat::toHex(cat::encodeMenuSelection(0x80)), "D30782020181900180");
    EXPECT_EQ(cat::toHex(cat::encodeTimerExpiration(1, 3661s)), "D70C82028281A40101A503101010");
    EXPECT_EQ(cat::toHex(cat::encodeUserActivity()), "D60799010482028281");
    EXPECT_EQ(cat::toHex(cat::encodeLanguageSelection("en")), "D60B99010782028281AD02656E");
    EXPECT_EQ(cat::toHex(cat::terminalProfile()), "29E1FF2F2101001F69000000000000000009");
}

namespace {

template <class... Fields> std::string said(const Fields &...fields)
{
    std::ostringstream out;
    ((out << ' ' << fields), ...);
    return out.str();
}

std::string said(const CommandMenu &menu)
{
    std::string text = said(menu.title.utf8);
    for (const CommandMenuItem &item : menu.items)
        text += said(item.id, item.text.utf8);
    return text;
}

template <class... Functions> struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

// What the bridge made of a command, as far as it decides anything.
const Overloaded saidBody{
    [](const DisplayText &c) { return said(c.text.utf8, "clear", c.clearMode, c.duration); },
    [](const GetInkey &c) { return said("type", c.inputType, "option", c.option, c.duration); },
    [](const GetInput &c) {
        return said("type", c.inputType, "echo", c.echo, "option", c.option, c.minLength, '-',
                    c.maxLength, c.defaultText.utf8);
    },
    [](const PlayTone &c) { return said(c.text.utf8, "tone", c.tone, c.duration); },
    [](const SetUpCall &c) { return said(c.text.utf8, c.address); },
    [](const LaunchBrowser &c) { return said(c.url.utf8, "mode", c.launchMode); },
    [](const Refresh &c) { return said(c.qualifier, cat::toHex(c.files)); },
    [](const SendShortMessage &c) { return said(c.text.utf8, c.address, c.message); },
    [](const SendSs &c) { return said(c.text.utf8, c.code); },
    [](const SendUssd &c) { return said(c.text.utf8, c.code); },
    [](const SetUpIdleModeText &c) { return said(c.text.utf8); },
    [](const SetUpMenu &c) { return said(c.menu); },
    [](const SelectItem &c) { return said(c.menu) + said("default", c.defaultItem); },
    [](const UnknownCommand &) { return said("unknown"); },
};

std::string bridged(const CommandCase &row)
{
    const auto command =
        toProactiveCommand(cat::decode(proactive(row.typeAndQualifier, row.objects)));
    if (!command)
        return "-";
    std::string text = commandName(command->body) + (':' + std::visit(saidBody, command->body));
    if (command->answerCoding)
        text += said("coding", int(*command->answerCoding));
    if (isAnsweredByModem(command->body))
        return text + said(resultName(command->modemAnswer.result));
    return text + said("within", command->responseTime.count());
}

} // namespace

TEST(Cat, BridgesCommandsToTheSession)
{
    const CommandCase rows[] = {
        {"21 80", "8D 02 04 41", "DISPLAY TEXT: A clear 1 0 within 120000"},
        {"21 00", "8D 02 04 41", "DISPLAY TEXT: A clear 0 3 within 63000"},
        {"21 80", "8D 02 04 41 84 02 02 0F", "DISPLAY TEXT: A clear 0 2 within 62000"},
        {"22 80", "8D 00", "GET INKEY: type 2 option 1 0 coding 4 within 120000"},
        {"22 01", "8D 00 84 02 01 0A", "GET INKEY: type 0 option 0 10250 coding 4 within 10000"},
        {"22 03", "8D 00 84 02 00 02", "GET INKEY: type 3 option 0 0 coding 8 within 120000"},
        {"22 04", "8D 00 84 02 01 41", "GET INKEY: type 1 option 0 65250 coding 4 within 65000"},
        {"22 07", "8D 00 84 02 01 00", "GET INKEY: type 1 option 0 0 coding 4 within 120000"},
        {"23 00", "8D 00 91 02 01 05",
         "GET INPUT: type 2 echo 1 option 0 1 - 5  coding 4 within 120000"},
        {"23 8D", "8D 00 91 02 00 FF 97 02 04 41",
         "GET INPUT: type 0 echo 0 option 1 0 - 255 A coding 0 within 120000"},
        {"23 03", "8D 00 91 02 00 0A",
         "GET INPUT: type 3 echo 1 option 0 0 - 10  coding 8 within 120000"},
        {"20 00", "85 01 41", "PLAY TONE: A tone 16 1 within 61000"},
        {"20 00", "8E 01 05 84 02 00 01", "PLAY TONE:  tone 5 60 within 120000"},
        {"10 00", "85 00 86 02 91 21 85 01 42", "SET UP CALL: B +12 within 120000"},
        {"10 00", "85 01 41 86 02 81 21 85 01 42", "SET UP CALL: A 12 within 120000"},
        {"15 03", "31 01 61", "LAUNCH BROWSER: a mode 3 within 120000"},
        {"01 01", "92 03 01 3F 00", "REFRESH: 1 013F00 ok"},
        {"13 00", "85 01 41 8B 0B 01 00 03 91 21 F3 00 F4 02 48 69",
         "SEND SHORT MESSAGE: A +123 Hi unable"},
        {"11 00", "85 01 41 89 02 91 2A", "SEND SS: A *2 unable"},
        {"12 00", "85 01 41 8A 02 04 42", "SEND USSD: A B unable"},
        {"28 00", "8D 02 04 41", "SET UP IDLE MODE TEXT: A within 120000"},
        {"25 00", "85 01 41 8F 02 FF 42", "SET UP MENU: A 255 B ok"},
        {"24 00", "85 01 41 8F 02 01 42 90 01 01", "SELECT ITEM: A 1 B default 1 within 120000"},
        {"02 00", "", "-"},
        {"27 02", "A4 01 01", "-"},
    };
    for (const CommandCase &row : rows)
        EXPECT_EQ(bridged(row), row.json) << row.typeAndQualifier << " | " << row.objects;
}
