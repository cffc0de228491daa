#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <mutex>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "CardHost.h"
#include "Service.h"
#include "session/ServiceStatus.h"
#include "Text.h"
#include "platform/ModemService.h"

using nlohmann::json;
using namespace std::chrono_literals;

namespace {

constexpr int MainMenu = MOVA_STKTYPE_SETUP_MENU, Item = MOVA_STKTYPE_SELECT_ITEM,
              Text = MOVA_STKTYPE_DISPLAY_TEXT, Key = MOVA_STKTYPE_GET_INKEY,
              End = MOVA_STKTYPE_END_SESSION, Ready = MOVA_DEV_EVENT_DEVICE_READY,
              Removed = MOVA_DEV_EVENT_DEVICE_REMOVED, NotReady = MOVA_DEV_EVENT_DEVICE_NOT_READY;

// What a callback was called with.
struct Call {
    int type = -1; // of the command, or the device event
    int16_t id = 0;
    bool timeOut = false;
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
};

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

const char *const Menu = R"("menu":{"title":"Main","items":[
    {"id":3,"text":"Sub","do":[{"command":"selectItem","title":"One","defaultItem":7,"items":[
        {"id":7,"text":"Deeper","do":[{"command":"selectItem","title":"Two","items":[{"id":-1,"text":"End"}]}]},
        {"id":8,"text":"Silence","do":[{"silence":true}]}]}]},
    {"id":-5,"text":"Restart","do":[{"modem":"removed"},{"wait":1},{"modem":"ready","after":1}]},
    {"id":9,"text":"Time-out","do":[{"timeout":true}]}]})";

// The details of a command, read into a record that is not empty before.
template <class Record> Record details(int32_t (*get)(int16_t, Record *), const Call &call)
{
    Record record;
    std::memset(&record, 0xaa, sizeof record);
    if (const int32_t status = get(call.id, &record))
        throw std::runtime_error("no details: status " + std::to_string(status));
    return record;
}

std::string field(const uint16_t *text)
{
    return toUtf8(text);
}

template <class Number> std::string field(Number number)
{
    return std::to_string(number);
}

// Fields of a record, one behind the other.
template <class... Fields> std::string joined(const Fields &...fields)
{
    std::string text;
    ((text += (text.empty() ? "" : " ") + field(fields)), ...);
    return text;
}

// What a menu shows: its title, the number of items and each of them.
template <class Menu> std::string shown(Menu menu, int32_t (*release)(Menu *))
{
    std::string text = toUtf8(menu.szTitle) + ", " + std::to_string(menu.sItemCount);
    for (int i = 0; i < menu.sItemCount; ++i)
        text += "; " + joined(menu.pItems[i].sItemId, menu.pItems[i].szItemText);
    EXPECT_EQ(release(&menu), 0);
    return text;
}

std::string shownMenu(const Call &call)
{
    if (call.type == Item)
        return shown(details(MOVA_STKSrv_GetSubMenu, call), MOVA_STKSrv_ReleaseSubMenus);
    MOVA_STKMenuInfo menu{};
    EXPECT_EQ(MOVA_STKSrv_GetMainMenu(&menu), 0);
    return shown(menu, MOVA_STKSrv_ReleaseMenus);
}

// Makes the callbacks do this from now on.
void hook(std::function<void(const Call &)> function = [](const Call &) {})
{
    std::lock_guard<std::mutex> lock(theMutex);
    theHook = std::move(function);
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

using Types = std::vector<int>;

// What the callbacks are called with next.
Types told(size_t count)
{
    Types types;
    while (types.size() < count)
        types.push_back(next().type);
    return types;
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

constexpr int32_t Back = MOVA_SUBMENU_ACTION_BACK;

Call choose(const Call &menu, int16_t item, int32_t action = MOVA_SUBMENU_ACTION_SELECT)
{
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(menu.id, action, item), 0);
    return next();
}

int32_t respond(const Call &call, int32_t type, int32_t result)
{
    return MOVA_STKSrv_SendNoDataResponse(call.id, _MOVA_EN_STKTYPE(type),
                                          _STK_UI_EN_TERMINALRESPONSE(result));
}

// Sends one command.
struct OneCommandCard : Card {
    CardTraits traits() const override { return {}; }
    void powerOn(Time) override { }
    void powerOff() override { }
    void selectMenuItem(int16_t, Time) override { }
    void respond(const TerminalResponse &response, Time) override { answer.set_value(response); }
    void endSession() override { }
    std::optional<CardEvent> nextEvent(Time) override { return std::exchange(command, {}); }
    Time wakeUp() const override { return Time::max(); }

    std::optional<ProactiveCommand> command;
    std::promise<TerminalResponse> answer;
};

} // namespace

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        theCalls.clear();
        hook();
        ASSERT_EQ(MOVA_STK_RegisterCallBack(onCommand), 0);
        ASSERT_EQ(MOVA_DevSrv_RegisterDevMgrCallback(onDevice), 0);
        m_listener =
            CardHost::addTranscriptListener([this](const CardHost::TranscriptEntry &entry) {
                std::lock_guard<std::mutex> lock(theMutex);
                m_lines.push_back(entry.text);
                json fields = json::parse(entry.json);
                EXPECT_EQ(fields.erase("time"), 1u);
                m_last[fields["event"]] = fields;
                theChange.notify_all();
            });
    }

    void TearDown() override
    {
        hook();
        const bool present = CardHost::state() >= CardHost::ModemState::Ready;
        CardHost::closeCard();
        for (Call call; present && call.type != NotReady;) {
            call = next();
            ASSERT_NE(call.type, -1);
        }
        MOVA_STK_UnRegisterCallBack(onCommand);
        MOVA_DevSrv_UnRegisterDevMgrCallback(onDevice);
        CardHost::removeTranscriptListener(m_listener);
    }

    // Opens a card that answers at once and waits for its main menu.
    void open(const std::string &members = Menu,
              const std::string &times = R"("latency":1,"modemTime":1)")
    {
        const std::string file = testing::TempDir() + "card-" + std::to_string(getpid()) + ".json";
        std::ofstream(file) << '{' << times << ',' << members << '}';
        ASSERT_EQ(CardHost::openScenario(file), "");
        std::filesystem::remove(file);
        ASSERT_EQ(told(2), (Types{Ready, MainMenu}));
    }

    // The last transcript entry of that event, without the time.
    json last(const std::string &event)
    {
        std::lock_guard<std::mutex> lock(theMutex);
        return m_last[event];
    }

    bool hearsResponse(int16_t id)
    {
        std::unique_lock<std::mutex> lock(theMutex);
        return theChange.wait_for(lock, 10s, [&] { return m_last["response"]["id"] == id; });
    }

    // The call is refused with that status, which the transcript tells in one line.
    void refuse(int32_t status, const char *function, int32_t returned)
    {
        EXPECT_EQ(returned, status) << function;
        std::lock_guard<std::mutex> lock(theMutex);
        const json line = std::exchange(m_last["refused"], {});
        ASSERT_TRUE(line.is_object()) << function << ' ' << status;
        EXPECT_EQ(line["status"], status) << function;
        EXPECT_EQ(line["call"], std::string("MOVA_STK") + function);
    }

    int m_listener = 0;
    std::vector<std::string> m_lines;
    std::map<std::string, json> m_last;
};

TEST_F(SessionTest, WalksMenus)
{
    open();
    EXPECT_EQ(shownMenu({}), "Main, 3; 3 Sub; -5 Restart; 9 Time-out");
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);
    const Call one = select(3);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Busy);
    EXPECT_EQ(shownMenu(one), "One, 2; 7 Deeper; 8 Silence");

    const Call again = choose(choose(one, 7), 0, Back);
    EXPECT_NE(again.id, one.id);
    EXPECT_EQ(shownMenu(again), "One, 2; 7 Deeper; 8 Silence");
    EXPECT_EQ(choose(choose(again, 7), -1).type, End);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);
    EXPECT_EQ(choose(select(3), 0, Back).type, End); // nothing above the first sub menu

    const Call left = select(3);
    const Call top = select(3);
    EXPECT_EQ(last("response")["id"], left.id);
    EXPECT_EQ(last("response")["result"], "terminated");
    MOVA_STKSrv_SelectSubMenuItem(top.id, MOVA_SUBMENU_ACTION_SELECT, 8); // the card falls silent
    EXPECT_EQ(select(3).type, Item);
}

TEST_F(SessionTest, TranscriptTellsWhatPassed)
{
    open();
    const Call one = select(3);
    choose(one, 7);
    CardHost::endSession();
    const Call end = next();
    MOVA_STKSrv_SelectSubMenuItem(one.id, MOVA_SUBMENU_ACTION_BACK, 0);

    for (json entry : {
             R"({"event":"card","state":"opened","name":"Main"})"_json,
             R"({"event":"selection","item":3,"itemText":"Sub"})"_json,
             R"({"event":"response","command":"SELECT ITEM","result":"ok","item":7,"id":0,
                 "itemText":"Deeper","by":"MOVA_STKSrv_SelectSubMenuItem"})"_json,
             R"({"event":"refused","status":-4,"reason":"no such command in progress","id":0,
                 "call":"MOVA_STKSrv_SelectSubMenuItem"})"_json,
         }) {
        if (entry.contains("id"))
            entry["id"] = one.id;
        EXPECT_EQ(last(entry["event"]), entry);
    }
    EXPECT_EQ(last("endSession"), (json{{"event", "endSession"}, {"id", end.id}}));
    const std::string menu = "SET UP MENU #" + std::to_string(one.id - 1);
    const std::string item = "SELECT ITEM #" + std::to_string(one.id);
    const std::string lines[] = {
        "modem            card opened \"Main\"",
        "card → terminal  " + menu + " \"Main\" (3 items)",
        "modem            " + menu + ": ok",
        "terminal → card  MENU SELECTION, item 3 \"Sub\"",
        "card → terminal  " + item + " \"One\" (2 items, defaultItem 7)",
        "terminal → card  " + item + ": ok, item 7 \"Deeper\"",
    };
    std::lock_guard<std::mutex> lock(theMutex);
    for (size_t i = 0; i < std::size(lines); ++i)
        EXPECT_EQ(m_lines.at(i).substr(14), lines[i]); // behind "hh:mm:ss.zzz  "
}

TEST_F(SessionTest, RefusesCallsThatDoNotFit)
{
    open();
    const Call call = send(R"({"command":"displayText","text":"t"})");
    const Call wrong{call.type, int16_t(call.id + 1)};
    MOVA_STKSubMenuInfo sub{};
    MOVA_STKPromptTextInfo prompt{};
    refuse(StatusUnknownItem, "Srv_SelectMenuItem", MOVA_STKSrv_SelectMenuItem(1, 4));
    refuse(StatusBadArgument, "Srv_SelectMenuItem", MOVA_STKSrv_SelectMenuItem(2, 3));
    refuse(StatusBadArgument, "Srv_GetMainMenu", MOVA_STKSrv_GetMainMenu(nullptr));
    refuse(StatusBadArgument, "Srv_ReleaseMenus", MOVA_STKSrv_ReleaseMenus(nullptr));
    refuse(StatusBadArgument, "Srv_GetPromptText", MOVA_STKSrv_GetPromptText(call.id, nullptr));
    refuse(StatusBadArgument, "_RegisterCallBack", MOVA_STK_RegisterCallBack(nullptr));
    refuse(StatusNotRegistered, "_UnRegisterCallBack", MOVA_STK_UnRegisterCallBack(nullptr));
    refuse(StatusWrongCommand, "Srv_AnswerInput", MOVA_STKSrv_AnswerInput(call.id, 1, nullptr));
    refuse(StatusWrongCommand, "Srv_GetSubMenu", MOVA_STKSrv_GetSubMenu(call.id, &sub));
    refuse(StatusWrongCommand, "Srv_SelectSubMenuItem",
           MOVA_STKSrv_SelectSubMenuItem(call.id, 1, 1));
    refuse(StatusWrongCommand, "Srv_SendNoDataResponse", respond(call, 5, STK_UI_TR_SUCCESS));
    refuse(StatusNotInProgress, "Srv_SendNoDataResponse", respond(wrong, Text, STK_UI_TR_SUCCESS));
    refuse(StatusNotInProgress, "Srv_GetPromptText", MOVA_STKSrv_GetPromptText(wrong.id, &prompt));
    EXPECT_EQ(prompt.szText[0], 0); // nothing of it changed anything
    EXPECT_EQ(MOVA_STKSrv_GetPromptText(call.id, &prompt), 0);
    EXPECT_EQ(respond(call, Text, STK_UI_TR_SUCCESS), 0);
    refuse(StatusNotInProgress, "Srv_SendNoDataResponse", respond(call, Text, STK_UI_TR_SUCCESS));
    refuse(StatusNotInProgress, "Srv_GetPromptText", MOVA_STKSrv_GetPromptText(call.id, &prompt));
    EXPECT_EQ(next().type, End);

    const Call raw = send(R"({"command":"raw","type":1})"); // the type without the details
    refuse(StatusWrongCommand, "Srv_GetPromptText", MOVA_STKSrv_GetPromptText(raw.id, &prompt));
    EXPECT_EQ(respond(raw, raw.type, STK_UI_TR_SUCCESS), 0);
}

TEST_F(SessionTest, CommandsReachTheirRecords)
{
    open();
    auto menu = details(MOVA_STKSrv_GetSubMenu, select(3));
    EXPECT_EQ(menu.sDefaultItem, 7);
    EXPECT_EQ(MOVA_STKSrv_ReleaseSubMenus(&menu), 0);

    const Call toneCall = send(R"({"command":"playTone","tone":-2,"duration":65535,"text":"♪"})");
    const auto tone = details(MOVA_STKSrv_GetPlayTone, toneCall);
    EXPECT_EQ(joined(tone.nTone, tone.usDuration, tone.szText), "-2 65535 ♪");

    const Call browserCall = send(R"({"command":"launchBrowser","launchMode":1,"url":"http://a"})");
    const auto browser = details(MOVA_STKSrv_GetLaunchBrowser, browserCall);
    EXPECT_EQ(joined(browser.nLaunchMode, browser.szUrl), "1 http://a");
    EXPECT_EQ(last("overtaken")["id"], toneCall.id);

    const auto key =
        details(MOVA_STKSrv_GetInKeyRequest,
                send(R"({"command":"getInkey","text":"k","inputType":9,"option":2,"duration":7})"));
    EXPECT_EQ(joined(key.szText, key.nInputType, key.bOption, key.usDuration), "k 9 2 7");

    const auto input =
        details(MOVA_STKSrv_GetInputRequest, send(R"({"command":"getInput","text":"i","inputType":2,
        "echo":0,"minLength":-1,"maxLength":4,"option":1,"defaultText":"d"})"));
    EXPECT_EQ(joined(input.szText, input.nInputType, input.bEcho, input.sMinLen, input.sMaxLen,
                     input.bOption, input.szDefaultText),
              "i 2 0 -1 4 1 d");

    const Call text = send(R"({"command":"displayText","text":"p","clearMode":0,"duration":3})");
    const auto prompt = details(MOVA_STKSrv_GetPromptText, text);
    EXPECT_EQ(joined(prompt.szText, prompt.nClearMode, prompt.usDuration), "p 0 3");

    const Call idle = send(R"({"command":"setUpIdleModeText","text":"idle"})");
    EXPECT_EQ(joined(details(MOVA_STKSrv_GetIdleModePrompt, idle).szText), "idle");

    const Call files = send(R"({"command":"refresh","qualifier":3,"files":"01FF"})");
    const auto refresh = details(MOVA_STKSrv_GetRefreshInfo, files);
    EXPECT_EQ(joined(refresh.nQualifier, refresh.abFiles[1], refresh.abFiles[2]), "3 255 0");
}

TEST_F(SessionTest, AnswersTakeTheirBranch)
{
    open();
    const char *const branches =
        R"({"command":"displayText","text":"t","on":{"ok":[@50],"terminated":[@51],
        "notSupported":[@52],"otherwise":[@53]}})";
    const char *const input =
        R"({"command":"getInput","text":"t","on":{"ok":[@50],"cancelled":[@51],
        "text":{"1":[@54],"*":[@55]}}})";
    const char *const yesNo =
        R"({"command":"getInkey","text":"t","inputType":1,"on":{"yes":[@56],"no":[@57]}})";
    // The answer, of one with text: whether the user accepted; its text; the type of what comes
    // next.
    const std::tuple<const char *, int, uint16_t, int> rows[] = {
        {branches, 1, 0, 50}, {branches, 0, 0, 51}, {branches, 4, 0, 52}, {branches, 7, 0, 53},
        {input, 1, '1', 54},  {input, 1, '2', 55},  {input, 0, '1', 51},  {yesNo, 1, '1', 56},
        {yesNo, 1, '0', 57},  {yesNo, 0, 0, End},
    };
    for (const auto &[command, answer, character, type] : rows) {
        const uint16_t text[] = {character, 0};
        const std::regex raw("@([0-9]+)");
        const Call call = send(std::regex_replace(command, raw, R"({"command":"raw","type":$1})"));
        if (call.type == Text)
            EXPECT_EQ(respond(call, call.type, answer), 0);
        else if (call.type == Key)
            EXPECT_EQ(MOVA_STKSrv_AnswerInKey(call.id, answer, text), 0);
        else
            EXPECT_EQ(MOVA_STKSrv_AnswerInput(call.id, answer, text), 0);
        EXPECT_EQ(next().type, type) << command << " answered " << answer << ' ' << character;
    }
    const json response = last("response");
    EXPECT_EQ(response["accepted"], false);
    EXPECT_EQ(response["text"], "");
    EXPECT_EQ(response["result"], "cancelled");
}

// What the answer's coding cannot carry, or its response has no room for, the user may enter anew.
TEST_F(SessionTest, RefusesTextsThatTheCardCannotTake)
{
    auto card = std::make_unique<OneCommandCard>();
    card->command = ProactiveCommand{GetInput()};
    card->command->answerCoding = cat::TextCoding::Unpacked;
    card->command->answerRoom = 5; // a byte of it names the coding
    auto answered = card->answer.get_future();
    theSession().insertCard(std::move(card));
    EXPECT_EQ(next().type, Ready);
    const Call call = next();
    const std::pair<const char16_t *, int32_t> rows[] = {
        {u"ル", StatusNotEncodable}, {u"12345", StatusTooLong}, {u"123€", StatusTooLong}};
    const auto answer = [&](const char16_t *text) {
        return MOVA_STKSrv_AnswerInput(call.id, 1, reinterpret_cast<const uint16_t *>(text));
    };
    for (const auto &[text, status] : rows)
        refuse(status, "Srv_AnswerInput", answer(text));
    EXPECT_EQ(answer(u"1234"), 0);
    EXPECT_EQ(answered.get().coded, (cat::Bytes{0x04, '1', '2', '3', '4'}));
}

TEST_F(SessionTest, ScriptsJumpAndGoOnBehindABranch)
{
    open(R"("menu":{"title":"M","items":[{"text":"a","do":[
        {"command":"selectItem","label":"top","title":"Top","items":[
            {"text":"in","do":[{"wait":1},{"command":"selectItem","title":"In",
                "items":[{"text":"up","do":[{"goto":"top"}]}],"on":{"back":[{"command":"raw","type":50}]}}]},
            {"text":"on"}]},
        {"command":"raw","type":51}]}]})");
    const Call top = choose(choose(select(1), 1), 1);
    EXPECT_EQ(last("command")["title"], "Top");
    EXPECT_EQ(choose(choose(top, 1), 0, Back).type, 50);
    EXPECT_EQ(choose(select(1), 2).type, 51);
    EXPECT_EQ(choose(select(1), 0, MOVA_SUBMENU_ACTION_NONE).type, End);
}

TEST_F(SessionTest, ResponseTimeRunsOut)
{
    open();
    const Call call = send(R"({"command":"displayText","text":"t","responseTime":1})");
    const Call late = next();
    EXPECT_EQ(std::tuple(late.type, late.id, late.timeOut), std::tuple(Text, call.id, true));
    EXPECT_EQ(respond(call, Text, STK_UI_TR_SUCCESS), StatusNotInProgress);
    EXPECT_EQ(last("timeout")["id"], call.id);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::Ready);
    EXPECT_TRUE(select(9).timeOut); // the script's own
    CardHost::timeOutSession(); // reported without a session too
    EXPECT_TRUE(next().timeOut);

    // A yes-no box answers late, but it does answer.
    const Call key = send(R"({"command":"getInkey","text":"t","inputType":1,"responseTime":1})");
    EXPECT_TRUE(next().timeOut);
    const uint16_t no[] = {'0', 0};
    EXPECT_EQ(MOVA_STKSrv_AnswerInKey(key.id, 1, no), 0);
    EXPECT_EQ(next().type, End);
    EXPECT_EQ(MOVA_STKSrv_AnswerInKey(key.id, 1, no), StatusNotInProgress);
    const Call other = send(R"({"command":"getInkey","text":"t","inputType":1})");
    CardHost::removeModem();
    EXPECT_EQ(told(2), (Types{End, Removed}));
    EXPECT_EQ(MOVA_STKSrv_AnswerInKey(other.id, 1, no), 0);
    EXPECT_EQ(next().type, End);
}

TEST_F(SessionTest, ModemAnswersWhatItCarriesOut)
{
    open();
    MOVA_STKRefreshInfo info{};
    const Call first = send(R"({"command":"refresh","on":{"ok":[{"command":"raw","type":50}]}})");
    EXPECT_EQ(next().type, 50);
    json response = R"({"event":"response","command":"REFRESH","by":"modem","result":"ok"})"_json;
    response["id"] = first.id;
    EXPECT_EQ(last("response"), response);
    EXPECT_EQ(MOVA_STKSrv_GetRefreshInfo(first.id, &info), StatusNotInProgress);

    // Answered, and no next command yet: the details can still be read.
    const Call second = send(R"({"command":"refresh","on":{"ok":[{"silence":true}]}})");
    ASSERT_TRUE(hearsResponse(second.id));
    EXPECT_EQ(MOVA_STKSrv_GetRefreshInfo(second.id, &info), 0);
    EXPECT_EQ(respond(second, second.type, STK_UI_TR_TERMINATED), StatusNotInProgress);

    CardHost::closeCard();
    EXPECT_EQ(told(2), (Types{End, NotReady}));
    open(Menu, R"("latency":1,"modemTime":80000)");
    const Call third = send(R"({"command":"refresh"})");
    // Before the modem: counts as the answer.
    EXPECT_EQ(respond(third, third.type, STK_UI_TR_TERMINATED), 0);
    EXPECT_EQ(next().type, End);
    EXPECT_EQ(last("response")["result"], "terminated");
    const Call menu = send(R"({"command":"setUpMenu","title":"M","items":[{"text":"a"}]})");
    EXPECT_TRUE(hearsResponse(menu.id)); // at once
}

// Whoever waits for the card hears first that the session is over, and has the time to take note.
TEST_F(SessionTest, TellsTheEndOfTheSessionBeforeTheCardOrModemIsGone)
{
    const auto byCard = [] {
        theSession().withCard([](Card &card) { card.selectMenuItem(2, {}); });
    };
    const std::pair<std::function<void()>, int> ways[] = {
        {CardHost::removeModem, Removed}, {CardHost::closeCard, NotReady}, {byCard, Removed}};
    for (const auto &[go, device] : ways) {
        for (const bool ended : {false, true}) { // by the card, just before
            open(R"("menu":{"title":"M","items":[{"id":1,"text":"a","do":[{"silence":true}]},
                {"id":2,"text":"b","do":[{"modem":"removed"},{"modem":"ready","after":90000}]}]})");
            EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(1, 1), 0);
            ended ? CardHost::endSession() : go();
            const Call end = next();
            if (ended)
                go();
            const Call gone = next();
            EXPECT_EQ(std::tuple(end.type, gone.type), std::tuple(End, device));
            EXPECT_GE(gone.time - end.time, 150ms);
            EXPECT_EQ(last("endSession")["id"], end.id);
            CardHost::closeCard();
        }
    }
    open();
    CardHost::removeModem(); // without a session
    EXPECT_EQ(next().type, Removed);
}

TEST_F(SessionTest, ModemGoesAndComesBack)
{
    open();
    const Call one = select(3);
    CardHost::removeModem();
    MOVA_STKMenuInfo main{};
    EXPECT_EQ(MOVA_STKSrv_GetMainMenu(&main), StatusModemRemoved);
    EXPECT_EQ(MOVA_STKSrv_SelectMenuItem(1, 3), StatusModemRemoved);
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(one.id, 1, 7), StatusModemRemoved);
    EXPECT_EQ(CardHost::sendCommand("{}"), "the modem was removed");
    CardHost::insertModem();
    EXPECT_EQ(told(4), (Types{End, Removed, Ready, MainMenu}));
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(one.id, 1, 7), StatusNotInProgress);

    EXPECT_EQ(select(-5).type, End); // by the card's own script
    EXPECT_EQ(told(3), (Types{Removed, Ready, MainMenu}));

    EXPECT_EQ(CardHost::openScenario("/nowhere"),
              "/nowhere: cannot be read: No such file or directory");
    EXPECT_EQ(next().type, NotReady);
    EXPECT_EQ(CardHost::state(), CardHost::ModemState::NoCard);
    EXPECT_EQ(MOVA_STKSrv_GetMainMenu(&main), StatusNoCard);
}

TEST_F(SessionTest, CardActsUnasked)
{
    open(std::string(Menu) + R"(,"unasked":[
        {"after":40,"send":{"command":"setUpMenu","title":"New","items":[{"text":"x"}]}},
        {"after":20,"send":{"command":"displayText","text":"first"}}])");
    const Call text = next();
    EXPECT_EQ(text.type, Text);
    EXPECT_EQ(next().type, MainMenu);
    EXPECT_EQ(last("overtaken")["id"], text.id);
    EXPECT_EQ(shownMenu({}), "New, 1; 1 x");
    EXPECT_EQ(next().type, End);
    EXPECT_EQ(select(1).type, End); // an item without steps
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
    EXPECT_EQ(shownMenu(sub), "S, 3; 5 a; 0 ; 0 "); // reported, not there: empty
    EXPECT_EQ(MOVA_STKSrv_SelectSubMenuItem(sub.id, 1, 5), -72);
    EXPECT_EQ(last("refused")["reason"], "the card's fault");
    const Call negative =
        send(R"({"command":"selectItem","title":"S","itemCount":-3,"items":[{"text":"a"}]})");
    EXPECT_EQ(shownMenu(negative), "S, -3");

    MOVA_STKPlayToneInfo tone;
    EXPECT_EQ(MOVA_STKSrv_GetPlayTone(send(R"({"command":"playTone"})").id, &tone), -70);
    EXPECT_EQ(CardHost::sendCommand(R"({"command":"beep"})").substr(0, 27),
              "command: /command: expected");
}

TEST_F(SessionTest, UnregisteringWaitsForTheCallbackOnAnotherThread)
{
    open();
    const MOVA_STKCallback other = [](int, void *) { return 0; };
    EXPECT_EQ(MOVA_STK_RegisterCallBack(onCommand), 0);
    EXPECT_EQ(MOVA_STK_RegisterCallBack(other), StatusRegistered);
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(other), StatusNotRegistered);

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
        return MOVA_STK_UnRegisterCallBack(onCommand) == 0 && returned;
    });
    EXPECT_EQ(unregistering.wait_for(30ms), std::future_status::timeout);
    release.set_value();
    EXPECT_TRUE(unregistering.get());
    EXPECT_EQ(MOVA_STK_UnRegisterCallBack(onCommand), StatusNotRegistered);
    hook();
    next();
    CardHost::endSession();
    CardHost::removeModem();
    EXPECT_EQ(next().type, Removed); // the end of the session was not told
}

// Whoever answered has had the time to begin to wait.
TEST_F(SessionTest, TellsTheCardsWordSomeTimeAfterTheAnswerHasReturned)
{
    open();
    Call call;
    for (auto answer : {+[](int16_t) { return MOVA_STKSrv_SelectMenuItem(1, 3); },
                        +[](int16_t id) { return MOVA_STKSrv_SelectSubMenuItem(id, 1, 7); },
                        +[](int16_t id) {
                            return respond({0, id}, Item, STK_UI_TR_SUCCESS);
                        }}) {
        EXPECT_EQ(answer(call.id), 0);
        const auto returned = std::chrono::steady_clock::now();
        call = next();
        EXPECT_GE(call.time - returned, 15ms);
    }
}

TEST_F(SessionTest, CallbacksMayCallTheService)
{
    int lines = 0;
    int id = CardHost::addTranscriptListener([&](const auto &) {
        ++lines;
        CardHost::removeTranscriptListener(id);
    });
    open();
    EXPECT_EQ(lines, 1);
    std::promise<int32_t> answered, unregistered;
    hook([&](const Call &call) {
        answered.set_value(respond(call, call.type, STK_UI_TR_TERMINATED));
        unregistered.set_value(MOVA_STK_UnRegisterCallBack(onCommand));
    });
    send(R"({"command":"displayText","text":"t"})");
    EXPECT_EQ(answered.get_future().get(), 0);
    EXPECT_EQ(unregistered.get_future().get(), 0);
    hook();
    CardHost::removeModem();
    EXPECT_EQ(next().type, Removed); // the end of the session was not told
    EXPECT_EQ(last("response")["result"], "terminated");
}

// Everything at once; the sanitizers look on.
TEST_F(SessionTest, TakesCallsFromManyThreads)
{
    open();
    std::atomic<bool> stop{false};
    std::atomic<int16_t> id{0};
    hook([&](const Call &call) { id = call.id; });
    const std::function<void()> actions[] = {
        [] { MOVA_STKSrv_SelectMenuItem(1, 3); },
        [&id] {
            MOVA_STKSubMenuInfo sub;
            if (MOVA_STKSrv_GetSubMenu(id, &sub) == 0)
                MOVA_STKSrv_ReleaseSubMenus(&sub);
            MOVA_STKSrv_SelectSubMenuItem(id, 1, 7);
        },
        [] {
            CardHost::removeModem();
            CardHost::insertModem();
            CardHost::sendCommand(R"({"command":"displayText","text":"t"})");
        },
        [] {
            MOVA_STK_UnRegisterCallBack(onCommand);
            MOVA_STK_RegisterCallBack(onCommand);
            CardHost::removeTranscriptListener(
                CardHost::addTranscriptListener([](const auto &) {}));
        },
    };
    std::vector<std::future<void>> running; // each ends with its thread
    for (const auto &action : actions)
        running.push_back(std::async(std::launch::async, [&] {
            while (!stop)
                action();
        }));
    for (int calls = 0; calls < 500 && !HasFailure(); ++calls)
        EXPECT_NE(next().type, -1);
    stop = true;
    running.clear();
    hook();
}
