// Cards that come, go and do not answer, in the readers of a real daemon: run by
// tests/reader/with-pcscd.
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "ReaderTools.h"
#include "CardHost.h"
#include "Text.h"
#include "platform/ModemService.h"

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

const std::string Cards = STK_SOURCE_DIR "/cards/conformance/";
// The first commands to steps.json, and the answer of its user to GET INKEY.
enum { AtUsim = 6, AtProfile = 8, AtFetch = 10, AtResponse, AtSelection = 14, AtAnswer = 18 };
constexpr int32_t Removed = MOVA_DEV_EVENT_DEVICE_REMOVED, Ready = MOVA_DEV_EVENT_DEVICE_READY,
                  MainMenu = MOVA_STKTYPE_SETUP_MENU, End = MOVA_STKTYPE_END_SESSION;

std::mutex theMutex;
std::condition_variable theChange;
std::vector<std::string> theNotices;

void note(const Notice &notice)
{
    const std::lock_guard<std::mutex> lock(theMutex);
    theNotices.push_back(notice.text);
    theChange.notify_all();
}

void forgetNotices()
{
    const std::lock_guard<std::mutex> lock(theMutex);
    theNotices.clear();
}

bool noticed(const std::string &part, milliseconds most = 10s)
{
    std::unique_lock<std::mutex> lock(theMutex);
    return theChange.wait_for(lock, most, [&] {
        return std::any_of(theNotices.begin(), theNotices.end(), [&](const std::string &text) {
            return text.find(part) != std::string::npos;
        });
    });
}

// Whether the daemon comes to see that in the first reader; a moment after the card has started.
bool becomes(CardHost::Reader::State state)
{
    std::optional<CardHost::Reader::State> seen;
    const int id = CardHost::addReaderListener([&](const ReaderList &list) {
        const std::lock_guard<std::mutex> lock(theMutex);
        seen = list.readers.empty() ? std::nullopt : std::optional(list.readers[0].state);
        theChange.notify_all();
    });
    std::unique_lock<std::mutex> lock(theMutex);
    const bool reached = theChange.wait_for(lock, 5s, [&] { return seen == state; });
    lock.unlock();
    CardHost::removeReaderListener(id);
    return reached;
}

} // namespace

class ReaderTest : public testing::Test {
protected:
    ReaderTest()
    {
        // The daemon looks every 400 ms, and later on a busy machine: it must not miss the change.
        EXPECT_TRUE(becomes(CardHost::Reader::State::Empty));
        forgetNotices();
        CardHost::setNoticeListener(note);
    }
    ~ReaderTest() override
    {
        CardHost::closeCard();
        CardHost::setNoticeListener(nullptr);
    }

    void reopen()
    {
        const auto start = std::chrono::steady_clock::now();
        CardHost::closeCard();
        CardHost::openReader("Virtual reader");
        EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms) << "waited for the card";
        EXPECT_TRUE(calls.next(Ready, 10s));
    }

    // Waits for the next main menu, which must have that title.
    void expectMenu(const std::string &title)
    {
        ASSERT_TRUE(calls.next(MainMenu, 10s));
        MOVA_STKMenuInfo menu{};
        ASSERT_EQ(MOVA_STKSrv_GetMainMenu(&menu), 0);
        EXPECT_EQ(toUtf8(menu.szTitle), title);
        MOVA_STKSrv_ReleaseMenus(&menu);
    }

    // Plays the card to the end of its menu's first item, and tells what ended it: the session's
    // end, the removal, or nothing within the patience.
    std::optional<ServiceCall> live(milliseconds patience)
    {
        std::optional<ServiceCall> call;
        for (bool chosen = false; (call = calls.next(patience)) && call->type != Removed;) {
            const auto start = std::chrono::steady_clock::now();
            if (chosen && call->type == End)
                return call;
            if (call->type == MainMenu || call->type == End)
                chosen = MOVA_STKSrv_SelectMenuItem(1, 1) == 0 || chosen;
            else
                answer(*call);
            EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms) << "waited for the card";
        }
        return call;
    }

    ServiceCalls calls;
};

// The card is pulled out at its first command, next time at its second, and so on, until all of its
// sequences were played to their end between two removals.
TEST_F(ReaderTest, isPulledOutAtEachStep)
{
    CardProcess card({"--latency", "1", "--misbehave", "remove@each", Cards + "steps.json"});
    ASSERT_TRUE(card.waitFor("starts", 10s));
    CardHost::openReader("Virtual reader");
    int lives = 0;
    for (;; ++lives) {
        ASSERT_TRUE(calls.next(Ready, 10s)) << "life " << lives;
        const auto end = live(20s);
        ASSERT_TRUE(end) << "life " << lives;
        // The removal ends the session, too.
        const bool ended = end->type == End;
        const auto taken = card.waitFor("taken out", 2s);
        if (ended && !taken)
            break;
        ASSERT_TRUE(taken) << "life " << lives;
        const auto removed = ended ? calls.next(Removed, 5s) : end;
        ASSERT_TRUE(removed);
        EXPECT_LT(removed->when - *taken, 1s) << "life " << lives;
    }
    EXPECT_GT(lives, 20);
    EXPECT_EQ(card.end(), 0);
}

// A fault, and the command at which the card has it.
class MisbehavingCard : public ReaderTest,
                        public testing::WithParamInterface<std::tuple<std::string, int>> { };

TEST_P(MisbehavingCard, canBeUsedAfterwards)
{
    const auto [fault, at] = GetParam();
    const bool isHarmless = fault == "slow" || (fault == "9300" && at >= AtProfile);
    const std::string plan = fault + '@' + std::to_string(at);
    CardProcess card({"--latency", "1", "--misbehave", plan, Cards + "steps.json"});
    ASSERT_TRUE(card.waitFor("starts", 10s) && becomes(CardHost::Reader::State::Card));
    reopen();
    const auto end = live(isHarmless ? 10s : 500ms);
    ASSERT_TRUE(card.waitFor(fault, 1s));
    EXPECT_TRUE(!isHarmless || (end && end->type == End));
    reopen();
    expectMenu("Steps");
    // What is not harmed is played with the exact bytes.
    const int status = card.end();
    EXPECT_TRUE(status == 0 || (status == 1 && !isHarmless)) << status;
}

INSTANTIATE_TEST_SUITE_P(Faults, MisbehavingCard,
                         testing::Combine(testing::Values("slow", "cut", "wrongLength", "6F00",
                                                          "9300", "garbage", "endless"),
                                          testing::Values(AtUsim, AtProfile, AtFetch, AtResponse,
                                                          AtSelection, AtAnswer)));

TEST_F(ReaderTest, isPulledOutWhileTheUserReads)
{
    CardProcess card({Cards + "steps.json"});
    CardHost::openReader("Virtual reader");
    ASSERT_TRUE(calls.next(MainMenu, 10s));
    ASSERT_EQ(MOVA_STKSrv_SelectMenuItem(1, 1), 0);
    const auto text = calls.next(MOVA_STKTYPE_DISPLAY_TEXT, 5s);
    ASSERT_TRUE(text);
    const auto taken = std::chrono::steady_clock::now();
    card.takeOut();
    const auto removed = calls.next(Removed, 5s);
    ASSERT_TRUE(removed);
    EXPECT_LT(removed->when - taken, 1s);
    answer(*text); // too late
    expectMenu("Steps");
}

TEST_F(ReaderTest, startsAgainWithTheDaemon)
{
    CardProcess card({Cards + "steps.json"});
    CardHost::openReader("Virtual");
    ASSERT_TRUE(calls.next(MainMenu, 10s));
    int daemon = 0;
    ASSERT_TRUE(std::ifstream("/run/pcscd/pcscd.pid") >> daemon);
    ASSERT_EQ(kill(daemon, SIGKILL), 0);
    ASSERT_TRUE(calls.next(Removed, 2s));
    EXPECT_TRUE(noticed("no smart-card daemon is running"));
    ASSERT_TRUE(calls.next(MainMenu, 15s));
}

TEST_F(ReaderTest, choosesAmongReaders)
{
    CardProcess first({Cards + "steps.json"}), second({Cards + "menus.json"}, 1);
    CardHost::openReader("Virtual reader 00 01");
    expectMenu("Меню");
    CardHost::openReader("Virtual reader 00 00");
    expectMenu("Steps");
    CardHost::openReader("Elsewhere");
    EXPECT_TRUE(noticed("Elsewhere"));
    ASSERT_EQ(CardHost::listReaders().readers.size(), 2u);
    EXPECT_EQ(CardHost::listReaders().readers[1].name, "Virtual reader 00 01");
}

// Whatever is before it: a bank card, a card that does not answer, or one that another has.
TEST_F(ReaderTest, goesOnToTheReaderWithASim)
{
    for (const char *const file : {"bank.json", "mute.json"}) {
        CardProcess first({Cards + file}), second({Cards + "steps.json"}, 1);
        ASSERT_TRUE(second.waitFor("starts", 10s));
        CardHost::openReader("");
        ASSERT_TRUE(calls.next(MainMenu, 10s)) << file;
        EXPECT_TRUE(noticed("Virtual reader 00 01: chosen among 2 readers"));
        CardHost::closeCard();
    }
}

TEST_F(ReaderTest, isLeftBehindWhereItHangs)
{
    CardProcess card({"--misbehave", "hang@" + std::to_string(AtFetch), Cards + "steps.json"});
    CardProcess other({Cards + "menus.json"}, 1);
    ASSERT_TRUE(other.waitFor("starts", 10s));
    ASSERT_TRUE(card.waitFor("starts", 10s));
    CardHost::openReader("Virtual reader 00 00");
    ASSERT_TRUE(card.waitFor("hang", 10s));
    EXPECT_TRUE(noticed("the reader does not answer"));
    const auto start = std::chrono::steady_clock::now();
    CardHost::openReader("Virtual reader 00 01");
    expectMenu("Меню");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

TEST_F(ReaderTest, showsItsMenuSoonAfterTheInsertion)
{
    CardHost::openReader("Virtual reader");
    ASSERT_TRUE(noticed("no card"));
    std::vector<milliseconds> times;
    for (int i = 0; i < 5; ++i) {
        CardProcess card({Cards + "steps.json"});
        const auto inserted = card.waitFor("in the reader", 10s);
        const auto seen = card.waitFor("starts", 10s); // by the daemon, which looks every 400 ms
        const auto menu = calls.next(MainMenu, 10s);
        ASSERT_TRUE(inserted && seen && menu);
        times.push_back(std::chrono::duration_cast<milliseconds>(menu->when - *seen));
        card.end();
        ASSERT_TRUE(calls.next(Removed, 5s));
    }
    std::sort(times.begin(), times.end());
    EXPECT_LT(times[2], 500ms);
}

TEST_F(ReaderTest, tellsAUselessCardInOneLine)
{
    using State = CardHost::Reader::State;
    const std::tuple<std::string, std::string, State, int> rows[] = {
        {"bank.json", "no SIM application", State::Card, 4},
        {"mute.json", "does not answer", State::Mute, 0},
        {"no-toolkit.json", "this card has no toolkit menu", State::Card, 99}};
    const std::string report = testing::TempDir() + "/report" + std::to_string(getpid()) + ".json";
    for (const auto &[file, notice, state, mostCommands] : rows) {
        CardProcess card({"--report", report, Cards + file});
        ASSERT_TRUE(card.waitFor("starts", 10s)) << file;
        forgetNotices(); // of the card before, which was pulled out
        CardHost::openReader("Virtual reader");
        EXPECT_TRUE(noticed(notice)) << file;
        EXPECT_TRUE(becomes(state)) << file;
        ASSERT_EQ(card.end(), 0);
        EXPECT_LE(nlohmann::json::parse(std::ifstream(report))["commands"], mostCommands) << file;
        std::remove(report.c_str());
        EXPECT_TRUE(becomes(State::Empty)) << file;
        CardProcess usable({Cards + "steps.json"});
        ASSERT_TRUE(calls.next(MainMenu, 10s)) << file;
        CardHost::closeCard();
        usable.end();
        EXPECT_TRUE(becomes(State::Empty)) << file;
    }
}
