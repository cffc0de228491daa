#include <gtest/gtest.h>

#include <filesystem>
#include <fnmatch.h>
#include <fstream>

#include "scenario/ScenarioReader.h"

namespace {

// A scenario with the given items.
std::string withItems(const std::string &items)
{
    return R"({"menu":{"title":"M","items":[)" + items + "]}}";
}

std::string errorOf(const std::string &file)
{
    try {
        readScenario(file);
        return "no error";
    } catch (const ScenarioError &error) {
        return error.what();
    }
}

// What is wrong with a file of that content, behind the file's name.
std::string errorIn(const std::string &content)
{
    const std::string name = testing::TempDir() + "scenario-" + std::to_string(getpid()) + ".json";
    std::ofstream(name, std::ios::binary) << content;
    const std::string error = errorOf(name);
    std::filesystem::remove(name);
    EXPECT_EQ(error.substr(0, name.size() + 2), name + ": ");
    return error.substr(name.size() + 2);
}

// In the rows a `*` stands for anything: the names of all keys, or what the JSON library says.
void expectError(const std::string &content, const std::string &pattern)
{
    const std::string error = errorIn(content);
    EXPECT_EQ(fnmatch(pattern.c_str(), error.c_str(), 0), 0) << error << ", not " << pattern;
}

} // namespace

TEST(ScenarioReader, NamesPlaceExpectedAndFound)
{
    const std::string number = ": expected a whole number from ";
    const std::string unknown = ": unknown key; allowed here: ";
    std::string path; // as much of it as an error shows
    while (path.size() < 100)
        path += "/0";
    const std::pair<std::string, std::string> rows[] = {
        {"", "expected a scenario, found an empty file"},
        {"{\n  \"menu\": {\n    oops",
         "line 3, column 5: not JSON: syntax error *'\"menu\": {<U+000A>    o'*"},
        {"{\"name\":\"\xff\"}", "line 1, column 10: not JSON: *UTF-8*'\"\xef\xbf\xbd'"},
        {std::string(401, '['), path + "…: nested deeper than 400 levels"},
        {"[]", "/: expected an object, found an empty list"},
        {"{}", "/: expected the key \"menu\" (an object), found none"},
        {R"({"menu":{},"menus":{}})", "/menus" + unknown + "name, *, fail"},
        {withItems(R"({"text":"a"},{"text":"b","text":"c"})"),
         "/menu/items/1/text: this key stands here twice"},
        {withItems(R"({"text":12})"), "/menu/items/0/text: expected a string, found 12"},
        {R"({"menu":{"title":"M","items":{}}})",
         "/menu/items: expected a list, found an empty object"},
        {withItems(R"({"id":32768,"text":"a"})"),
         "/menu/items/0/id" + number + "-32768 to 32767, found 32768"},
        {withItems(R"({"id":1.5,"text":"a"})"),
         "/menu/items/0/id" + number + "-32768 to 32767, found 1.5"},
        {withItems(R"({"id":2,"text":"a"},{"text":"b"})"),
         "/menu/items/1/text: another item has the identifier 2 too"},
        {R"({"latency":0,"menu":{"title":"M","items":[]}})",
         "/latency" + number + "1 to 86400000, found 0"},
        {R"({"menu":{"title":"M","items":[]},"fail":{"MOVA_Get":-1}})",
         "/fail/MOVA_Get" + unknown + "MOVA_STK_RegisterCallBack, *"},
        {R"({"menu":{"title":"M","items":[],"fail":{"MOVA_STKSrv_GetMainMenu":0}}})",
         "/menu/fail/MOVA_STKSrv_GetMainMenu: expected a status other than 0, found 0"},
        {R"({"menu":{"title":"M","items":[]},"unasked":[{"after":1,"send":{"wait":1}}]})",
         "/unasked/0/send: expected the key \"command\" (a string), found none"},
    };
    for (const auto &[content, error] : rows)
        expectError(content, error);
    const std::pair<std::string, std::string> steps[] = {
        {"7", "0: expected an object, found 7"},
        {"{}", "0: expected a step with one of the keys command, *, modem, found an empty object"},
        {R"({"wait":10,"silence":true})", "0/silence" + unknown + "wait"},
        {R"({"silence":false})", "0/silence: expected true, found false"},
        {R"({"command":"beep"})",
         "0/command: expected one of displayText, *, setUpMenu, found \"beep\""},
        {R"({"command":"displayText","txt":"a"})",
         "0/txt" + unknown + "command, text, clearMode, duration, label, *"},
        {R"({"command":"displayText","text":"a","on":{"yes":[]}})",
         "0/on/yes" + unknown + "ok, terminated, notSupported, otherwise"},
        {R"({"command":"getInput","text":"a","on":{"text":{"a/b~":[{"wait":"1"}]}}})",
         "0/on/text/a~1b~0/0/wait" + number + "0 to 86400000, found \"1\""},
        {R"({"command":"refresh","files":"3F0"})",
         "0/files: expected at most 256 bytes in hexadecimal digits, found \"3F0\""},
        {R"({"goto":"x"})", "0/goto: expected a label, of which there are none, found \"x\""},
        {R"({"command":"raw","type":1,"label":"l"},{"command":"raw","type":1,"label":"l"})",
         "1/label: this label is used twice: \"l\""},
        {R"({"modem":"gone"})", "0/modem: expected \"removed\" or \"ready\", found \"gone\""},
        {R"({"modem":"ready"})", "0: expected the modem removed before it is ready again"},
        {R"({"modem":"removed"},{"silence":true})",
         "1: expected a wait or the modem ready, after it was removed"},
    };
    for (const auto &[content, error] : steps)
        expectError(withItems(R"({"text":"a","do":[)" + content + "]}"),
                    "/menu/items/0/do/" + error);
}

TEST(ScenarioReader, NamesAFileThatCannotBeRead)
{
    const std::pair<std::string, std::string> rows[] = {
        {"/nowhere\n.json", "/nowhere\\n.json: cannot be read: No such file or directory"},
        {"/proc", "/proc: expected a scenario file, found a directory"},
        {"/dev/zero", "/dev/zero: expected a scenario file, found a device or a pipe"},
        {"/proc/self/mem", "/proc/self/mem: cannot be read: Input/output error"},
    };
    for (const auto &[file, error] : rows)
        EXPECT_EQ(errorOf(file), error);
    expectError(std::string(16 * 1024 * 1024, ' ') + "{}", "expected at most 16 MiB, found more");
}

TEST(ScenarioReader, TakesEveryNumberThatTheRecordsHold)
{
    const auto script = readCommand(R"({"command":"getInput","text":"?","inputType":-2147483648,
        "echo":2147483647,"minLength":-32768,"maxLength":32767,"option":2,"responseTime":5})");
    const auto &step = std::get<CommandStep>(script->lists[0].steps[0]);
    const auto &command = std::get<GetInput>(step.command.body);
    EXPECT_EQ(std::tuple(command.inputType, command.echo, command.option),
              std::tuple(INT32_MIN, INT32_MAX, 2));
    EXPECT_EQ(std::tuple(command.minLength, command.maxLength), std::tuple(INT16_MIN, INT16_MAX));
    EXPECT_EQ(step.command.responseTime, std::chrono::milliseconds(5));
    const auto refresh = readCommand(R"({"command":"refresh","qualifier":4,"files":"013f002fE2"})");
    const auto &body = std::get<CommandStep>(refresh->lists[0].steps[0]).command.body;
    EXPECT_EQ(std::get<Refresh>(body).files, (std::vector<uint8_t>{1, 0x3f, 0, 0x2f, 0xe2}));
}

TEST(ScenarioReader, TakesTheCardsThatComeWithTheProgram)
{
    size_t cards = 0;
    for (const auto &entry : std::filesystem::directory_iterator(STK_CARDS_DIR)) {
        const std::string name = entry.path().string();
        if (entry.path().extension() != ".json" || name.find(".walkthrough.") != std::string::npos)
            continue;
        ++cards;
        EXPECT_EQ(errorOf(name), "no error");
    }
    EXPECT_GT(cards, 0u);
}
