#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ScenarioReader.h"

namespace {

// A scenario with the given steps for its only item.
std::string withSteps(const std::string &steps)
{
    return R"({"menu":{"title":"M","items":[{"text":"a","do":[)" + steps + "]}]}}";
}

class ScenarioFile {
public:
    explicit ScenarioFile(const std::string &content)
        : m_name(testing::TempDir() + "scenario-" + std::to_string(getpid()) + ".json")
    {
        std::ofstream(m_name, std::ios::binary) << content;
    }
    ~ScenarioFile() { std::filesystem::remove(m_name); }
    const std::string &name() const { return m_name; }

private:
    std::string m_name;
};

std::string errorOf(const std::string &file)
{
    try {
        readScenario(file);
        return "no error";
    } catch (const ScenarioError &error) {
        return error.what();
    }
}

} // namespace

TEST(ScenarioReader, NamesPlaceExpectedAndFound)
{
    const std::string deep(401, '[');
    const std::string a = "/menu/items/0/do/0";
    const struct {
        std::string content;
        std::string error;
    } rows[] = {
        {"", "expected a scenario, found an empty file"},
        {"{\n  \"menu\": {\n    oops",
         "line 3, column 5: not JSON: syntax error while parsing object key - invalid literal; "
         "last "
         "read: '\"menu\": {<U+000A>    o'; expected string literal"},
        {"{\"name\":\"\xff\"}",
         "line 1, column 10: not JSON: syntax error while parsing value - invalid string: "
         "ill-formed "
         "UTF-8 byte; last read: '\"\xef\xbf\xbd'"},
        {deep,
         "/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/"
         "0/0"
         "/0/0/0/0…: nested deeper than 400 levels"},
        {"[]", "/: expected an object, found an empty list"},
        {"{}", "/: expected the key \"menu\" (an object), found none"},
        {R"({"menu":{},"menus":{}})",
         "/menus: unknown key; allowed here: name, latency, responseTime, modemTime, menu, "
         "unasked, "
         "fail"},
        {R"({"menu":{"title":"M","items":[{"text":"a"},{"text":"b","text":"c"}]}})",
         "/menu/items/1/text: this key stands here twice"},
        {R"({"menu":{"title":"M","items":[{"text":12}]}})",
         "/menu/items/0/text: expected a string, found 12"},
        {R"({"menu":{"title":"M","items":{}}})",
         "/menu/items: expected a list, found an empty object"},
        {R"({"menu":{"title":"M","items":[{"id":32768,"text":"a"}]}})",
         "/menu/items/0/id: expected a whole number from -32768 to 32767, found 32768"},
        {R"({"menu":{"title":"M","items":[{"id":1.5,"text":"a"}]}})",
         "/menu/items/0/id: expected a whole number from -32768 to 32767, found 1.5"},
        {R"({"menu":{"title":"M","items":[{"id":2,"text":"a"},{"text":"b"}]}})",
         "/menu/items/1/text: another item has the identifier 2 too"},
        {R"({"latency":0,"menu":{"title":"M","items":[]}})",
         "/latency: expected a whole number from 1 to 86400000, found 0"},
        {R"({"menu":{"title":"M","items":[]},"fail":{"MOVA_Get":-1}})",
         "/fail/MOVA_Get: unknown key; allowed here: MOVA_STK_RegisterCallBack, "
         "MOVA_STK_UnRegisterCallBack, MOVA_DevSrv_RegisterDevMgrCallback, "
         "MOVA_DevSrv_UnRegisterDevMgrCallback, MOVA_STKSrv_GetMainMenu, MOVA_STKSrv_ReleaseMenus, "
         "MOVA_STKSrv_GetSubMenu, MOVA_STKSrv_ReleaseSubMenus, MOVA_STKSrv_SelectMenuItem, "
         "MOVA_STKSrv_SelectSubMenuItem, MOVA_STKSrv_GetIdleModePrompt, MOVA_STKSrv_GetPlayTone, "
         "MOVA_STKSrv_GetLaunchBrowser, MOVA_STKSrv_GetInKeyRequest, MOVA_STKSrv_GetInputRequest, "
         "MOVA_STKSrv_GetPromptText, MOVA_STKSrv_GetRefreshInfo, MOVA_STKSrv_AnswerInKey, "
         "MOVA_STKSrv_AnswerInput, MOVA_STKSrv_SendNoDataResponse"},
        {R"({"menu":{"title":"M","items":[],"fail":{"MOVA_STKSrv_GetMainMenu":0}}})",
         "/menu/fail/MOVA_STKSrv_GetMainMenu: expected a status other than 0, found 0"},
        {withSteps("7"), a + ": expected an object, found 7"},
        {withSteps("{}"),
         a +
             ": expected a step with one of the keys command, wait, silence, endSession, timeout, "
             "goto, modem, found an empty object"},
        {withSteps(R"({"wait":10,"silence":true})"),
         a + "/silence: unknown key; allowed here: wait"},
        {withSteps(R"({"silence":false})"), a + "/silence: expected true, found false"},
        {withSteps(R"({"command":"beep"})"),
         a +
             "/command: expected one of displayText, getInkey, getInput, launchBrowser, playTone, "
             "raw, refresh, selectItem, sendShortMessage, sendSs, sendUssd, setUpCall, "
             "setUpIdleModeText, setUpMenu, found \"beep\""},
        {withSteps(R"({"command":"displayText","txt":"a"})"),
         a +
             "/txt: unknown key; allowed here: command, text, clearMode, duration, label, on, "
             "fail, "
             "responseTime, unterminated"},
        {withSteps(R"({"command":"displayText","text":"a","on":{"yes":[]}})"),
         a + "/on/yes: unknown key; allowed here: ok, terminated, notSupported, otherwise"},
        {withSteps(R"({"command":"getInput","text":"a","on":{"text":{"a/b~":[{"wait":"1"}]}}})"),
         a + "/on/text/a~1b~0/0/wait: expected a whole number from 0 to 86400000, found \"1\""},
        {withSteps(R"({"command":"refresh","files":"3F0"})"),
         a + "/files: expected at most 256 bytes in hexadecimal digits, found \"3F0\""},
        {withSteps(R"({"goto":"x"})"),
         a + "/goto: expected a label, of which there are none, found \"x\""},
        {withSteps(
             R"({"command":"raw","type":1,"label":"l"},{"command":"raw","type":1,"label":"l"})"),
         "/menu/items/0/do/1/label: this label is used twice: \"l\""},
        {withSteps(R"({"modem":"gone"})"),
         a + "/modem: expected \"removed\" or \"ready\", found \"gone\""},
        {withSteps(R"({"modem":"ready"})"),
         a + ": expected the modem removed before it is ready again"},
        {withSteps(R"({"modem":"removed"},{"silence":true})"),
         "/menu/items/0/do/1: expected a wait or the modem ready, after it was removed"},
        {R"({"menu":{"title":"M","items":[]},"unasked":[{"after":1,"send":{"wait":1}}]})",
         "/unasked/0/send: expected the key \"command\" (a string), found none"},
    };
    for (const auto &row : rows) {
        const ScenarioFile file(row.content);
        EXPECT_EQ(errorOf(file.name()), file.name() + ": " + row.error);
    }
}

TEST(ScenarioReader, NamesAFileThatCannotBeRead)
{
    EXPECT_EQ(errorOf("/nowhere\n.json"),
              "/nowhere\\n.json: cannot be read: No such file or directory");
    EXPECT_EQ(errorOf("/proc"), "/proc: expected a scenario file, found a directory");
    EXPECT_EQ(errorOf("/dev/zero"),
              "/dev/zero: expected a scenario file, found a device or a pipe");
    EXPECT_EQ(errorOf("/proc/self/mem"), "/proc/self/mem: cannot be read: Input/output error");
    const ScenarioFile huge(std::string(16 * 1024 * 1024, ' ') + "{}");
    EXPECT_EQ(errorOf(huge.name()), huge.name() + ": expected at most 16 MiB, found more");
}

TEST(ScenarioReader, TakesEveryNumberThatTheRecordsHold)
{
    const auto script = readCommand(R"({"command":"getInput","text":"?","inputType":-2147483648,
        "echo":2147483647,"minLength":-32768,"maxLength":32767,"option":2,"responseTime":5})");
    const auto &step = std::get<CommandStep>(script->lists[0].steps[0]);
    const auto &command = std::get<GetInput>(step.command.body);
    EXPECT_EQ(command.inputType, INT32_MIN);
    EXPECT_EQ(command.echo, INT32_MAX);
    EXPECT_EQ(command.minLength, INT16_MIN);
    EXPECT_EQ(command.maxLength, INT16_MAX);
    EXPECT_EQ(command.option, 2);
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
