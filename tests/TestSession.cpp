#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "CardHost.h"
#include "ServiceStatus.h"
#include "Text.h"
#include "platform/ModemService.h"

using nlohmann::json;
using namespace std::chrono_literals;

namespace {

// What a callback was called with.
struct Call {
    int type = -1; // of the command, or the device event
    int16_t id = 0;
    bool timeOut = false;
};

bool operator==(const Call &a, const Call &b)
{
    return a.type == b.type && a.id == b.id && a.timeOut == b.timeOut;
}

std::ostream &operator<<(std::ostream &stream, const Call &call)
{
    return stream << "type " << call.type << " id " << call.id
                  << (call.timeOut ? " timed out" : "");
}

std::mutex theMutex;
std::condition_variable theChange;
std::deque<Call> theCalls;
std::function<void(const Call &)> theHook; // called inside the callback

int recordCall(const Call &call)
{
    std::unique_lock<std::mutex> lock(theMutex);
    theCalls.push_back(call);
    theChange.notify_all();
    const auto hook = theHook;
    lock.unlock();
    if (hook)
        hook(call);
    return 0;
}

int onCommand(int, void *data)
{
    const auto *notify = static_cast<MOVA_STKNotifyData *>(data);
    return recordCall({notify->enStkType, notify->sCmdId, notify->bTimeOut == 1});
}

int onDevice(int code, void *)
{
    return recordCall({code});
}

int onOtherCommand(int, void *)
{
    return 0;
}

const char *const Menu = R"("menu":{"title":"Main","items":[
    {"id":3,"text":"Sub","do":[
        {"command":"selectItem","title":"One","defaultItem":7,"items":[
            {"id":7,"text":"Deeper","do":[{"command":"selectItem","title":"Two","items":[
                {"id":-1,"text":"End"}]}]},
            {"id":8,"text":"Silence","do":[{"silence":true}]}]}]},
    {"id":-5,"text":"Restart","do":[{"modem":"removed"},{"wait":1},{"modem":"ready","after":1}]},
    {"id":9,"text":"Time-out","do":[{"timeout":true}]}]})";

} // namespace

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        theCalls.clear();
        hook(nullptr);
        ASSERT_EQ(MOVA_STK_RegisterCallBack(onCommand), 0);
        ASSERT_EQ(MOVA_DevSrv_RegisterDevMgrCallback(onDevice), 0);
        m_listener =
            CardHost::addTranscriptListener([this](const CardHost::TranscriptEntry &entry) {
                std::lock_guard<std::mutex> lock(theMutex);
                m_transcript.push_back(json::parse(entry.json));
                m_lines.push_back(entry.text);
            });
    }

    void TearDown() override
    {
        hook(nullptr);
        const bool present = CardHost::state() == CardHost::ModemState::Ready ||
            CardHost::state() == CardHost::ModemState::Busy;
        CardHost::closeCard();
        for (Call call; present && call.type != MOVA_DEV_EVENT_DEVICE_NOT_READY;) {
            call = next();
            ASSERT_NE(call.type, -1);
        }
        MOVA_STK_UnRegisterCallBack(onCommand);
        MOVA_DevSrv_UnRegisterDevMgrCallback(onDevice);
        CardHost::removeTranscriptListener(m_listener);
    }

    // What the callbacks do from now on.
    void hook(std::function<void(const Call &)> function)
    {
        std::lock_guard<std::mutex> lock(theMutex);
        theHook = std::move(function);
    }

    // Opens a card that answers at once and waits for its main menu.
    void open(const std::string &members = Menu,
              const std::string &times = R"("latency":1,"modemTime":1)")
    {
        const std::string file = testing::TempDir() + "card-" + std::to_string(getpid()) + ".json";
        std::ofstream(file) << '{' << times << ',' << members << '}';
        ASSERT_EQ(CardHost::openScenario(file), "");
        std::filesystem::remove(file);
        ASSERT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_READY);
        ASSERT_EQ(next().type, MOVA_STKTYPE_SETUP_MENU);
    }

    Call next()
    {
        std::unique_lock<std::mutex> lock(theMutex);
        if (!theChange.wait_for(lock, 10s, [] { return !theCalls.empty(); }))
            return {};
        const Call call = theCalls.front();
        theCalls.pop_front();
        return call;
    }

    Call send(const std::string &command)
    {
        EXPECT_EQ(CardHost::sendCommand(command), "");
        return next();
    }

    Call select(int16_t item)
    {
        EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(1, item), 0);
        return next();
    }

    std::vector<json> transcript()
    {
        std::lock_guard<std::mutex> lock(theMutex);
        return m_transcript;
    }

    // The last transcript entry of that event, without the time.
    json last(const std::string &event)
    {
        const auto entries = transcript();
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if ((*entry)["event"] != event)
                continue;
            json found = *entry;
            found.erase("time");
            return found;
        }
        return {};
    }

    int m_listener = 0;
    std::vector<json> m_transcript;
    std::vector<std::string> m_lines;
};

TEST_F(SessionTest, WalksMenusToTheEndOfTheSession)
{
    open();
    MOVA_STKMenuInfo main{};
    ASSERT_EQ(MOVA_STKSrv_GetMainMenu(&main), 0);
    EXPECT_EQ(toUtf8(main.szTitle), "Main");
    ASSERT_EQ(main.sItemCount, 3);
    EXPECT_EQ(main.pItems[1].sItemId, -5);
    EXPECT_EQ(toUtf8(main.pItems[1].szItemText), "Restart");
    EXPECT_EQ(MOVA_STKSrv_ReleaseMenus(&main), 0);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);

    const Call one = select(3);
    ASSERT_EQ(one.type, MOVA_STKTYPE_SELECT_ITEM);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Busy);
    MOVA_STKSubMenuInfo sub{};
    ASSERT_EQ(MOVA_STKSrv_GetSubMenu(one.id, &sub), 0);
    EXPECT_EQ(toUtf8(sub.szTitle), "One");
    EXPECT_EQ(sub.sDefaultItem, 7);
    ASSERT_EQ(sub.sItemCount, 2);
    EXPECT_EQ(sub.pItems[1].sItemId, 8);
    EXPECT_EQ(MOVA_STKSrv_ReleaseSubMenus(&sub), 0);

    ASSERT_EQ(MOVA_STKSrv_SelectSubMenuItem(one.id, MOVA_SUBMENU_ACTION_SELECT, 7), 0);
    const Call two = next();
    ASSERT_EQ(MOVA_STKSrv_SelectSubMenuItem(two.id, MOVA_SUBMENU_ACTION_BACK, 0), 0);
    const Call again = next();
    EXPECT_EQ(again.type, MOVA_STKTYPE_SELECT_ITEM);
    EXPECT_NE(again.id, one.id);
    EXPECT_EQ(last("command")["title"], "One");

    ASSERT_EQ(MOVA_STKSrv_SelectSubMenuItem(again.id, MOVA_SUBMENU_ACTION_SELECT, 7), 0);
    const Call twoAgain = next();
    ASSERT_EQ(MOVA_STKSrv_SelectSubMenuItem(twoAgain.id, MOVA_SUBMENU_ACTION_SELECT, -1), 0);
    EXPECT_EQ(next().type, MOVA_STKTYPE_END_SESSION);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);

    const Call top = select(3);
    ASSERT_EQ(MOVA_STKSrv_SelectSubMenuItem(top.id, MOVA_SUBMENU_ACTION_BACK, 0), 0);
    EXPECT_EQ(next().type, MOVA_STKTYPE_END_SESSION); // nothing above the first sub menu
}

TEST_F(SessionTest, TranscriptTellsWhatPassed)
{
    open();
    const Call one = select(3);
    MOVA_STKSrv_SelectSubMenuItem(one.id, MOVA_SUBMENU_ACTION_SELECT, 7);
    next();
    CardHost::endSession();
    const Call end = next();
    MOVA_STKSrv_SelectSubMenuItem(one.id, MOVA_SUBMENU_ACTION_BACK, 0);

    EXPECT_EQ(last("card"), json::parse(R"({"event":"card","state":"opened","name":"Main"})"));
    EXPECT_EQ(last("selection"), json::parse(R"({"event":"selection","item":3,"itemText":"Sub"})"));
    EXPECT_EQ(last("response"),
              (json{{"event", "response"},
                    {"command", "SELECT ITEM"},
                    {"id", one.id},
                    {"by", "MOVA_STKSrv_SelectSubMenuItem"},
                    {"result", "ok"},
                    {"item", 7},
                    {"itemText", "Deeper"}}));
    EXPECT_EQ(last("endSession"), (json{{"event", "endSession"}, {"id", end.id}}));
    EXPECT_EQ(last("refused"),
              (json{{"event", "refused"},
                    {"call", "MOVA_STKSrv_SelectSubMenuItem"},
                    {"id", one.id},
                    {"status", StatusNotInProgress},
                    {"reason", "no such command in progress"}}));
    std::vector<std::string> lines;
    {
        std::lock_guard<std::mutex> lock(theMutex);
        lines = m_lines;
    }
    const std::string id = std::to_string(one.id);
    const std::string expected[] = {
        "modem            card opened \"Main\"",
        "card → terminal  SET UP MENU #" + std::to_string(one.id - 1) + " \"Main\" (3 items)",
        "modem            SET UP MENU #" + std::to_string(one.id - 1) + ": ok",
        "terminal → card  MENU SELECTION, item 3 \"Sub\"",
        "card → terminal  SELECT ITEM #" + id + " \"One\" (2 items, defaultItem 7)",
        "terminal → card  SELECT ITEM #" + id + ": ok, item 7 \"Deeper\"",
    };
    ASSERT_GE(lines.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        ASSERT_GT(lines[i].size(), 14u);
        EXPECT_EQ(lines[i].substr(14), expected[i]); // behind "hh:mm:ss.zzz  "
    }
}

TEST_F(SessionTest, SelectionEndsTheCommandInProgress)
{
    open();
    const Call one = select(3);
    const Call again = select(3);
    EXPECT_EQ(again.type, MOVA_STKTYPE_SELECT_ITEM);
    EXPECT_EQ(last("response")["id"], one.id);
    EXPECT_EQ(last("response")["result"], "terminated");
    MOVA_STKSrv_SelectSubMenuItem(again.id, MOVA_SUBMENU_ACTION_SELECT, 8); // the card falls silent
    EXPECT_EQ(select(3).type, MOVA_STKTYPE_SELECT_ITEM);
    EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(1, 4), StatusUnknownItem);
    EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(2, 3), StatusBadArgument);
}

TEST_F(SessionTest, RefusesCallsThatDoNotFitTheCommand)
{
    open();
    const Call call = send(R"({"command":"displayText","text":"t"})");
    ASSERT_EQ(call.type, MOVA_STKTYPE_DISPLAY_TEXT);
    const uint16_t text[] = {0};
    const int16_t wrong = int16_t(call.id + 1);
    MOVA_STKPlayToneInfo tone{};
    MOVA_STKSubMenuInfo sub{};
    MOVA_STKPromptTextInfo prompt{};
    const auto noData = [](int16_t id, _MOVA_EN_STKTYPE type) {
        return MOVA_STKSrv_SendNoDataResponse(id, type, STK_UI_TR_SUCCESS);
    };
    EXPECT_EQ(MOVA_STKSrv_AnswerInput(call.id, 1, text), StatusWrongCommand);
    EXPECT_EQ(MOVA_STKSrv_AnswerInKey(call.id, 1, text), StatusWrongCommand);
    EXPECT_EQ(MOVA_STKSrv_GetPlayTone(call.id, &tone), StatusWrongCommand);
    EXPECT_EQ(MOVA_STKSrv_GetSubMenu(call.id, &sub), StatusWrongCommand);
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(call.id, 1, 1), StatusWrongCommand);
    EXPECT_EQ(noData(call.id, MOVA_STKTYPE_PLAY_TONE), StatusWrongCommand);
    EXPECT_EQ(noData(wrong, MOVA_STKTYPE_DISPLAY_TEXT), StatusNotInProgress);
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(wrong, &prompt), StatusNotInProgress);
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(call.id, nullptr), StatusBadArgument);
    EXPECT_EQ(prompt.szText[0], 0); // nothing of it changed anything
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(call.id, &prompt), 0);
    EXPECT_EQ(noData(call.id, MOVA_STKTYPE_DISPLAY_TEXT), 0);
    EXPECT_EQ(noData(call.id, MOVA_STKTYPE_DISPLAY_TEXT), StatusNotInProgress);
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(call.id, &prompt), StatusNotInProgress);
    EXPECT_EQ(next().type, MOVA_STKTYPE_END_SESSION);

    const Call raw = send(R"({"command":"raw","type":1})"); // the type without the details
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(raw.id, &prompt), StatusWrongCommand);
    EXPECT_EQ(noData(raw.id, MOVA_STKTYPE_DISPLAY_TEXT), 0);
}

TEST_F(SessionTest, CommandsReachTheirRecords)
{
    open();
    const Call tone = send(R"({"command":"playTone","tone":-2,"duration":65535,"text":"♪"})");
    MOVA_STKPlayToneInfo toneInfo;
    ASSERT_EQ(MOVA_STKSrv_GetPlayTone(tone.id, &toneInfo), 0);
    EXPECT_EQ(toneInfo.nTone, -2);
    EXPECT_EQ(toneInfo.usDuration, 65535);
    EXPECT_EQ(toUtf8(toneInfo.szText), "♪");

    const Call browser = send(R"({"command":"launchBrowser","launchMode":1,"url":"http://a"})");
    MOVA_STKLaunchBrowserInfo browserInfo;
    ASSERT_EQ(MOVA_STKSrv_GetLaunchBrowser(browser.id, &browserInfo), 0);
    EXPECT_EQ(browserInfo.nLaunchMode, 1);
    EXPECT_EQ(toUtf8(browserInfo.szUrl), "http://a");
    EXPECT_EQ(last("overtaken")["id"], tone.id);

    const Call inkey =
        send(R"({"command":"getInkey","text":"k","inputType":9,"option":2,"duration":7})");
    MOVA_STKInKeyInfo inkeyInfo;
    ASSERT_EQ(MOVA_STKSrv_GetInKeyRequest(inkey.id, &inkeyInfo), 0);
    EXPECT_EQ(toUtf8(inkeyInfo.szText), "k");
    EXPECT_EQ(inkeyInfo.nInputType, 9);
    EXPECT_EQ(inkeyInfo.bOption, 2);
    EXPECT_EQ(inkeyInfo.usDuration, 7);

    const Call input = send(R"({"command":"getInput","text":"i","inputType":2,"echo":0,
        "minLength":-1,"maxLength":4,"option":1,"defaultText":"d"})");
    MOVA_STKInputInfo inputInfo;
    ASSERT_EQ(MOVA_STKSrv_GetInputRequest(input.id, &inputInfo), 0);
    EXPECT_EQ(toUtf8(inputInfo.szText) + toUtf8(inputInfo.szDefaultText), "id");
    EXPECT_EQ(inputInfo.nInputType, 2);
    EXPECT_EQ(inputInfo.bEcho, 0);
    EXPECT_EQ(inputInfo.sMinLen, -1);
    EXPECT_EQ(inputInfo.sMaxLen, 4);
    EXPECT_EQ(inputInfo.bOption, 1);

    const Call text = send(R"({"command":"displayText","text":"p","clearMode":0,"duration":3})");
    MOVA_STKPromptTextInfo promptInfo;
    ASSERT_EQ(MOVA_STKSrv_GetPromptText(text.id, &promptInfo), 0);
    EXPECT_EQ(promptInfo.nClearMode, 0);
    EXPECT_EQ(promptInfo.usDuration, 3);

    const Call idle = send(R"({"command":"setUpIdleModeText","text":"idle"})");
    MOVA_STKIdleModeTextInfo idleInfo;
    ASSERT_EQ(MOVA_STKSrv_GetIdleModePrompt(idle.id, &idleInfo), 0);
    EXPECT_EQ(toUtf8(idleInfo.szText), "idle");

    const Call refresh = send(R"({"command":"refresh","qualifier":3,"files":"01FF"})");
    MOVA_STKRefreshInfo refreshInfo;
    ASSERT_EQ(MOVA_STKSrv_GetRefreshInfo(refresh.id, &refreshInfo), 0);
    EXPECT_EQ(refreshInfo.nQualifier, 3);
    EXPECT_EQ(refreshInfo.abFiles[1], 0xff);
    EXPECT_EQ(refreshInfo.abFiles[2], 0);
}

TEST_F(SessionTest, AnswersTakeTheirBranch)
{
    open();
    const std::string branches = R"(,"on":{"ok":[{"command":"raw","type":50}],)";
    const std::string noData = branches +
        R"("terminated":[{"command":"raw","type":51}],"notSupported":[{"command":"raw","type":52}],
            "otherwise":[{"command":"raw","type":53}]}})";
    const std::string input = branches + R"("cancelled":[{"command":"raw","type":51}],
            "text":{"1":[{"command":"raw","type":54}],"*":[{"command":"raw","type":55}]}}})";
    const std::string yesNo =
        R"(,"inputType":1,"on":{"yes":[{"command":"raw","type":56}],"no":[{"command":"raw","type":57}]}})";
    const auto responds = [](int value) {
        return [value](const Call &call) {
            return MOVA_STKSrv_SendNoDataResponse(call.id, _MOVA_EN_STKTYPE(call.type),
                                                  _STK_UI_EN_TERMINALRESPONSE(value));
        };
    };
    const auto answers = [](int accepted, uint16_t character) {
        return [=](const Call &call) {
            const uint16_t text[] = {character, 0};
            return call.type == MOVA_STKTYPE_GET_INKEY
                ? MOVA_STKSrv_AnswerInKey(call.id, accepted, text)
                : MOVA_STKSrv_AnswerInput(call.id, accepted, text);
        };
    };
    const std::string display = R"({"command":"displayText","text":"t")";
    const std::string getInput = R"({"command":"getInput","text":"t")";
    const std::string getInkey = R"({"command":"getInkey","text":"t")";
    const struct {
        std::string command;
        std::function<int32_t(const Call &)> answer;
        int next; // type of the next command
    } rows[] = {
        {display + noData, responds(1), 50},
        {display + noData, responds(0), 51},
        {display + noData, responds(4), 52},
        {display + noData, responds(7), 53},
        {display + "}", responds(0), MOVA_STKTYPE_END_SESSION},
        {getInput + input, answers(1, '1'), 54},
        {getInput + input, answers(1, '2'), 55},
        {getInput + input, answers(0, '1'), 51},
        {getInkey + yesNo, answers(1, '1'), 56},
        {getInkey + yesNo, answers(1, '0'), 57},
        {getInkey + yesNo, answers(0, 0), MOVA_STKTYPE_END_SESSION},
    };
    for (const auto &row : rows) {
        const Call call = send(row.command);
        EXPECT_EQ(row.answer(call), 0) << row.command;
        EXPECT_EQ(next().type, row.next) << row.command;
    }
    const json response = last("response");
    EXPECT_EQ(response["accepted"], false);
    EXPECT_EQ(response["text"], "");
    EXPECT_EQ(response["result"], "cancelled");
}

TEST_F(SessionTest, ScriptsJumpAndGoOnBehindABranch)
{
    open(R"("menu":{"title":"M","items":[{"text":"a","do":[
        {"command":"selectItem","label":"top","title":"Top","items":[
            {"text":"in","do":[
                {"wait":1},
                {"command":"selectItem","title":"In","items":[{"text":"up","do":[{"goto":"top"}]}],
                 "on":{"back":[{"command":"raw","type":50}]}}]},
            {"text":"on"}]},
        {"command":"raw","type":51}]}]})");
    const auto choose = [this](const Call &menu, int32_t action, int16_t item) {
        EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(menu.id, action, item), 0);
        return next();
    };
    const Call in = choose(select(1), MOVA_SUBMENU_ACTION_SELECT, 1);
    const Call top = choose(in, MOVA_SUBMENU_ACTION_SELECT, 1);
    EXPECT_EQ(last("command")["title"], "Top");
    const Call back =
        choose(choose(top, MOVA_SUBMENU_ACTION_SELECT, 1), MOVA_SUBMENU_ACTION_BACK, 0);
    EXPECT_EQ(back.type, 50);
    EXPECT_EQ(choose(select(1), MOVA_SUBMENU_ACTION_SELECT, 2).type, 51);
    EXPECT_EQ(choose(select(1), MOVA_SUBMENU_ACTION_NONE, 0).type, MOVA_STKTYPE_END_SESSION);
}

TEST_F(SessionTest, ResponseTimeRunsOut)
{
    open();
    const Call call = send(R"({"command":"displayText","text":"t","responseTime":1})");
    EXPECT_EQ(next(), (Call{MOVA_STKTYPE_DISPLAY_TEXT, call.id, true}));
    EXPECT_EQ(MOVA_STKSrv_SendNoDataResponse(call.id, MOVA_STKTYPE_DISPLAY_TEXT, STK_UI_TR_SUCCESS),
              StatusNotInProgress);
    EXPECT_EQ(last("timeout")["id"], call.id);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);
    EXPECT_TRUE(select(9).timeOut); // the script's own
    CardHost::timeOutSession(); // reported without a session too
    EXPECT_TRUE(next().timeOut);
}

TEST_F(SessionTest, ModemAnswersWhatItCarriesOut)
{
    open();
    MOVA_STKRefreshInfo info{};
    const auto terminate = [](int16_t id) {
        return MOVA_STKSrv_SendNoDataResponse(id, MOVA_STKTYPE_REFRESH, STK_UI_TR_TERMINATED);
    };
    const Call first = send(R"({"command":"refresh","on":{"ok":[{"command":"raw","type":50}]}})");
    EXPECT_EQ(next().type, 50);
    EXPECT_EQ(last("response"),
              (json{{"event", "response"},
                    {"command", "REFRESH"},
                    {"id", first.id},
                    {"by", "modem"},
                    {"result", "ok"}}));
    EXPECT_EQ(MOVA_STKSrv_GetRefreshInfo(first.id, &info), StatusNotInProgress);

    // Answered, and no next command yet: the details can still be read.
    std::promise<void> answered;
    const int listener = CardHost::addTranscriptListener([&](const auto &entry) {
        if (json::parse(entry.json)["event"] == "response")
            answered.set_value();
    });
    const Call second = send(R"({"command":"refresh","on":{"ok":[{"silence":true}]}})");
    ASSERT_EQ(answered.get_future().wait_for(10s), std::future_status::ready);
    CardHost::removeTranscriptListener(listener);
    EXPECT_EQ(MOVA_STKSrv_GetRefreshInfo(second.id, &info), 0);
    EXPECT_EQ(terminate(second.id), StatusNotInProgress);

    CardHost::closeCard();
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_NOT_READY);
    open(Menu, R"("latency":1,"modemTime":80000)");
    const Call third = send(R"({"command":"refresh"})");
    EXPECT_EQ(terminate(third.id), 0); // before the modem: counts as the answer
    EXPECT_EQ(next().type, MOVA_STKTYPE_END_SESSION);
    EXPECT_EQ(last("response")["result"], "terminated");
}

TEST_F(SessionTest, ModemGoesAndComesBack)
{
    open();
    const Call one = select(3);
    CardHost::removeModem();
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_REMOVED);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Removed);
    MOVA_STKMenuInfo main{};
    EXPECT_EQ(MOVA_STKSrv_GetMainMenu(&main), StatusModemRemoved);
    EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(1, 3), StatusModemRemoved);
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(one.id, 1, 7), StatusModemRemoved);
    EXPECT_EQ(CardHost::sendCommand("{}"), "the modem was removed");
    CardHost::insertModem();
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_READY);
    EXPECT_EQ(next().type, MOVA_STKTYPE_SETUP_MENU);
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(one.id, 1, 7), StatusNotInProgress);

    EXPECT_EQ(select(-5).type, MOVA_DEV_EVENT_DEVICE_REMOVED); // by the card's own script
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_READY);
    EXPECT_EQ(next().type, MOVA_STKTYPE_SETUP_MENU);

    EXPECT_EQ(CardHost::openScenario("/nowhere"),
              "/nowhere: cannot be read: No such file or directory");
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_NOT_READY);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::NoCard);
    EXPECT_EQ(MOVA_STKSrv_GetMainMenu(&main), StatusNoCard);
}

TEST_F(SessionTest, CardActsUnasked)
{
    open(std::string(Menu) + R"(,"unasked":[
        {"after":40,"send":{"command":"setUpMenu","title":"New","items":[{"text":"x"}]}},
        {"after":20,"send":{"command":"displayText","text":"first"}}])");
    const Call text = next();
    EXPECT_EQ(text.type, MOVA_STKTYPE_DISPLAY_TEXT);
    EXPECT_EQ(next().type, MOVA_STKTYPE_SETUP_MENU);
    EXPECT_EQ(last("overtaken")["id"], text.id);
    MOVA_STKMenuInfo main{};
    ASSERT_EQ(MOVA_STKSrv_GetMainMenu(&main), 0);
    EXPECT_EQ(toUtf8(main.szTitle), "New");
    EXPECT_EQ(MOVA_STKSrv_ReleaseMenus(&main), 0);
    EXPECT_EQ(next().type, MOVA_STKTYPE_END_SESSION);
    EXPECT_EQ(select(1).type, MOVA_STKTYPE_END_SESSION); // an item without steps
}

TEST_F(SessionTest, InjectsFaults)
{
    open(R"("fail":{"MOVA_STKSrv_GetPlayTone":-70},
        "menu":{"title":"M","unterminated":true,"withoutItems":true,"itemCount":4,
                "items":[{"text":"a"}],"fail":{"MOVA_STKSrv_ReleaseMenus":-71}})");
    MOVA_STKMenuInfo main{};
    ASSERT_EQ(MOVA_STKSrv_GetMainMenu(&main), 0);
    EXPECT_EQ(main.szTitle[MOVA_TEXT_UNITS - 1], 'M');
    EXPECT_EQ(main.sItemCount, 4);
    EXPECT_FALSE(main.pItems);
    EXPECT_EQ(MOVA_STKSrv_ReleaseMenus(&main), -71);

    const Call sub = send(R"({"command":"selectItem","title":"S","itemCount":3,
        "items":[{"id":5,"text":"a"}],"fail":{"MOVA_STKSrv_SelectSubMenuItem":-72}})");
    MOVA_STKSubMenuInfo info{};
    ASSERT_EQ(MOVA_STKSrv_GetSubMenu(sub.id, &info), 0);
    ASSERT_EQ(info.sItemCount, 3);
    EXPECT_EQ(info.pItems[0].sItemId, 5);
    EXPECT_EQ(info.pItems[2].szItemText[0], 0); // reported, not there: empty
    EXPECT_EQ(MOVA_STKSrv_ReleaseSubMenus(&info), 0);
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(sub.id, 1, 5), -72);
    EXPECT_EQ(last("refused")["reason"], "the card's fault");

    const Call negative =
        send(R"({"command":"selectItem","title":"S","itemCount":-3,"items":[{"text":"a"}]})");
    ASSERT_EQ(MOVA_STKSrv_GetSubMenu(negative.id, &info), 0);
    EXPECT_EQ(info.sItemCount, -3);
    EXPECT_EQ(MOVA_STKSrv_ReleaseSubMenus(&info), 0);

    const Call tone = send(R"({"command":"playTone"})");
    MOVA_STKPlayToneInfo toneInfo;
    EXPECT_EQ(MOVA_STKSrv_GetPlayTone(tone.id, &toneInfo), -70);
    EXPECT_EQ(CardHost::sendCommand(R"({"command":"beep"})").substr(0, 27),
              "command: /command: expected");
}

TEST_F(SessionTest, OneCallbackOfEachKind)
{
    EXPECT_EQ(MOVA_STK_RegisterCallBack(onCommand), 0);
    EXPECT_EQ(MOVA_STK_RegisterCallBack(onOtherCommand), StatusRegistered);
    EXPECT_EQ(MOVA_STK_RegisterCallBack(nullptr), StatusBadArgument);
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(onOtherCommand), StatusNotRegistered);
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(onCommand), 0);
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(onCommand), StatusNotRegistered);
    EXPECT_EQ(MOVA_STK_RegisterCallBack(onOtherCommand), 0);
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(onOtherCommand), 0);
}

TEST_F(SessionTest, UnregisteringWaitsForTheCallbackOnAnotherThread)
{
    open();
    std::promise<void> entered, release;
    std::atomic<bool> returned{false};
    hook([&](const Call &) {
        entered.set_value();
        release.get_future().wait();
        std::this_thread::yield();
        returned = true;
    });
    CardHost::endSession();
    entered.get_future().wait();
    auto unregistering = std::async(std::launch::async, [&] {
        const int32_t status = MOVA_STK_UnRegisterCallBack(onCommand);
        return status == 0 && returned;
    });
    EXPECT_EQ(unregistering.wait_for(30ms), std::future_status::timeout);
    release.set_value();
    EXPECT_TRUE(unregistering.get());
    hook(nullptr);
    next();
    CardHost::endSession();
    CardHost::removeModem();
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_REMOVED); // the end of the session was not told
}

TEST_F(SessionTest, CallbacksMayCallTheService)
{
    open();
    std::promise<int32_t> answered, unregistered;
    hook([&](const Call &call) {
        if (call.type != MOVA_STKTYPE_DISPLAY_TEXT)
            return;
        answered.set_value(MOVA_STKSrv_SendNoDataResponse(call.id, MOVA_STKTYPE_DISPLAY_TEXT,
                                                          STK_UI_TR_TERMINATED));
        unregistered.set_value(MOVA_STK_UnRegisterCallBack(onCommand));
    });
    send(R"({"command":"displayText","text":"t"})");
    EXPECT_EQ(answered.get_future().get(), 0);
    EXPECT_EQ(unregistered.get_future().get(), 0);
    CardHost::removeModem();
    EXPECT_EQ(next().type, MOVA_DEV_EVENT_DEVICE_REMOVED); // the end of the session was not told
    EXPECT_EQ(last("response")["result"], "terminated");
}

TEST_F(SessionTest, TranscriptListenersMayLeaveWhileCalled)
{
    int calls = 0;
    int id = 0;
    std::promise<void> registered;
    std::shared_future<void> ready = registered.get_future();
    id = CardHost::addTranscriptListener([&](const auto &) {
        ready.wait();
        ++calls;
        CardHost::removeTranscriptListener(id);
    });
    registered.set_value();
    open();
    select(3);
    EXPECT_EQ(calls, 1);
}

// Everything at once; the sanitizers look on.
TEST_F(SessionTest, TakesCallsFromManyThreads)
{
    open();
    std::atomic<bool> stop{false};
    std::atomic<int16_t> id{0};
    hook([&](const Call &call) { id = call.id; });
    std::vector<std::thread> threads;
    const auto repeat = [&](auto action) {
        threads.emplace_back([&stop, action] {
            while (!stop)
                action();
        });
    };
    repeat([] { MOVA_STKSrv_SelectMenuItem(1, 3); });
    repeat([&id] {
        MOVA_STKSubMenuInfo sub;
        if (MOVA_STKSrv_GetSubMenu(id, &sub) == 0)
            MOVA_STKSrv_ReleaseSubMenus(&sub);
        MOVA_STKSrv_SelectSubMenuItem(id, 1, 7);
    });
    repeat([] {
        CardHost::removeModem();
        CardHost::insertModem();
        CardHost::sendCommand(R"({"command":"displayText","text":"t"})");
    });
    repeat([] {
        MOVA_STK_UnRegisterCallBack(onCommand);
        MOVA_STK_RegisterCallBack(onCommand);
        const int listener = CardHost::addTranscriptListener([](const auto &) {});
        CardHost::removeTranscriptListener(listener);
    });
    for (int calls = 0; calls < 500; ++calls)
        ASSERT_NE(next().type, -1);
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
    hook(nullptr);
}
