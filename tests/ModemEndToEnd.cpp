// Modems of src/VirtualModem that come, go and do what they should not, through the real ports: AT
// commands over a pseudo-terminal, and MBIM with its library.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "CardHost.h"
#include "ReaderTools.h"
#include "platform/ModemService.h"

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

const std::string Cards = STK_SOURCE_DIR "/cards/conformance/";
constexpr int32_t Removed = MOVA_DEV_EVENT_DEVICE_REMOVED;
const std::string At = "at", Mbim = "mbim";

std::mutex theMutex;
std::condition_variable theChange;
std::vector<std::string> theNotices;

void note(const Notice &notice)
{
    const std::lock_guard<std::mutex> lock(theMutex);
    theNotices.push_back(notice.text);
    theChange.notify_all();
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

// What a person does must not wait for the modem: the least that anybody waits for it is a second.
template <class Function> void atOnce(Function function)
{
    const auto start = std::chrono::steady_clock::now();
    function();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 900ms) << "waited for the modem";
}

} // namespace

class ModemTest : public testing::Test {
protected:
    ModemTest() { CardHost::setNoticeListener(note); }
    ~ModemTest() override
    {
        atOnce(CardHost::closeCard);
        CardHost::setNoticeListener(nullptr);
        CardHost::setPinListener(nullptr);
        std::remove(m_report.c_str());
        theNotices.clear();
    }

    // The faults stand one behind the other.
    void plugIn(const std::string &way, const std::string &faults = {},
                const std::string &card = "steps.json")
    {
        m_way = way;
        std::vector<std::string> arguments = {"--" + way, card[0] == '/' ? card : Cards + card,
                                              "--link",   m_link,
                                              "--report", m_report};
        std::istringstream all(faults);
        for (std::string fault; all >> fault;)
            arguments.insert(arguments.end(), {"--fault", fault});
        m_modem = std::make_unique<CardProcess>(VIRTUAL_MODEM, arguments);
        ASSERT_TRUE(m_modem->waitFor(way + ':' + m_link, 10s));
    }
    void open()
    {
        atOnce([this] {
            CardHost::openModem(m_way == At ? Modem::Kind::At : Modem::Kind::Mbim, m_link);
        });
    }

    // Plays all that the menu's first item brings.  False where the modem was gone, or silent for
    // so long.
    bool play(milliseconds patience, bool again = false)
    {
        int32_t last = 0;
        bool chosen = again && MOVA_STKSrv_SelectMenuItem(1, 1) == 0;
        while (const auto call = calls.next(patience)) {
            const bool ends = call->type == MOVA_STKTYPE_END_SESSION;
            if (call->type == Removed)
                return false;
            if (chosen && ends)
                return last == MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT;
            if (call->type == MOVA_STKTYPE_SETUP_MENU)
                atOnce([&] { chosen = MOVA_STKSrv_SelectMenuItem(1, 1) == 0; });
            else
                atOnce([&] { answer(*call); });
            last = call->type;
        }
        return false;
    }
    // With what a person can do about it: waiting, or starting the card anew.
    bool playSomehow(int tries = 6)
    {
        for (; tries > 0; --tries) {
            if (play(6s))
                return true;
            atOnce(CardHost::restartCard);
        }
        return false;
    }
    // No message must reach the card that it has not asked for, and the right ones as they are.
    void expectNothingTwice(bool exactly)
    {
        const int status = m_modem->end();
        m_modem.reset();
        std::ifstream file(m_report);
        const std::string report(std::istreambuf_iterator<char>(file), {});
        EXPECT_EQ(report.find("no command was fetched"), std::string::npos) << report;
        EXPECT_TRUE(status == 0 || !exactly) << report;
    }

    ServiceCalls calls;
    std::unique_ptr<CardProcess> m_modem;
    const std::string m_folder = testing::TempDir() + std::to_string(getpid());
    const std::string m_link = m_folder + "-modem", m_report = m_folder + "-report";

private:
    std::string m_way;
};

struct Misbehaviour {
    std::string way, faults;
    bool harmless = true; // nothing of the card's is lost
};

void PrintTo(const Misbehaviour &row, std::ostream *stream)
{
    *stream << row.way << ' ' << row.faults;
}

std::vector<Misbehaviour> misbehaviours()
{
    std::vector<Misbehaviour> rows = {{At, "quoted"},    {At, "unquoted"},   {At, "tight"},
                                      {At, "forms"},     {At, "earlyEnd"},   {At, "echo"},
                                      {At, "words"},     {At, "bare"},       {Mbim, "fragments"},
                                      {Mbim, "padding"}, {Mbim, "notified"}, {Mbim, "decimal"}};
    // At the start, where the toolkit is taken, the menu's choice, a person's answer.
    const std::pair<std::string, std::vector<int>> moments[] = {{At, {5, 10, 12, 13}},
                                                                {Mbim, {4, 8, 10, 11}}};
    for (const auto &[way, messages] : moments) {
        for (const char *const fault :
             {"", "split", "bytes", "early", "again", "noEnd", "early bytes", "late"})
            rows.push_back({way, fault});
        for (const int message : messages) {
            const std::string at = '@' + std::to_string(message);
            for (const char *const fault : {"slow", "busy"})
                rows.push_back({way, fault + at});
            for (const char *const fault :
                 {"never", "garbage", "hangUp", "error", "noFinal", "wrongFinal"})
                rows.push_back({way, fault + at, false});
        }
    }
    return rows;
}

class MisbehavingModem : public ModemTest, public testing::WithParamInterface<Misbehaviour> { };

TEST_P(MisbehavingModem, canBeUsedAfterwards)
{
    plugIn(GetParam().way, GetParam().faults);
    open();
    EXPECT_TRUE(playSomehow()) << testing::PrintToString(theNotices);
    EXPECT_TRUE(play(8s, true)) << "and once more";
    atOnce(CardHost::closeCard);
    EXPECT_TRUE(m_modem->waitFor("closed", 3s)) << "the port was not given back";
    expectNothingTwice(GetParam().harmless);
}

INSTANTIATE_TEST_SUITE_P(Faults, MisbehavingModem, testing::ValuesIn(misbehaviours()));

class EachWay : public ModemTest, public testing::WithParamInterface<std::string> { };

INSTANTIATE_TEST_SUITE_P(Ways, EachWay, testing::Values(At, Mbim));

// The modem goes at its first message, next time at its second, and so on, until all was played
// between two of its departures.
TEST_P(EachWay, isUnpluggedAtEachStep)
{
    plugIn(GetParam(), "hangUp@each");
    open();
    int lives = 0;
    while (!play(8s) && lives < 40)
        ++lives;
    EXPECT_GT(lives, 10);
    EXPECT_LT(lives, 40);
    expectNothingTwice(false);
}

TEST_P(EachWay, isUnpluggedWhileThePersonReads)
{
    plugIn(GetParam());
    open();
    ASSERT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 10s));
    ASSERT_EQ(MOVA_STKSrv_SelectMenuItem(1, 1), 0);
    const auto text = calls.next(MOVA_STKTYPE_DISPLAY_TEXT, 5s);
    ASSERT_TRUE(text);
    m_modem->takeOut();
    ASSERT_TRUE(calls.next(Removed, 5s));
    answer(*text); // too late
    EXPECT_TRUE(play(8s));
    expectNothingTwice(false);
}

TEST_P(EachWay, losesItsSim)
{
    plugIn(GetParam());
    open();
    ASSERT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 10s));
    ASSERT_EQ(MOVA_STKSrv_SelectMenuItem(1, 1), 0);
    ASSERT_TRUE(calls.next(MOVA_STKTYPE_DISPLAY_TEXT, 5s));
    m_modem->signal(SIGUSR2);
    ASSERT_TRUE(calls.next(Removed, 5s));
    EXPECT_TRUE(noticed("no usable SIM"));
    m_modem->signal(SIGUSR2);
    EXPECT_TRUE(play(8s));
    expectNothingTwice(true);
}

TEST_P(EachWay, asksForThePin)
{
    std::vector<Pin> entries = {Pin(), Pin("0000", 4), Pin("1234", 4)};
    std::vector<PinRequest> requests;
    CardHost::setPinListener([&](const std::optional<PinRequest> &request) {
        if (!request || requests.size() == entries.size())
            return;
        requests.push_back(*request);
        CardHost::answerPin(request->id, entries[requests.size() - 1]);
    });
    std::ofstream(m_folder + "-card.json")
        << R"({"kind": "usim", "pin": {"digits": "1234", "tries": 3}, "start": [[{"send":)"
           R"("D0 10 8103012500 82028182 85014D 8F020141", "expect": "8103012500 82028281 830100"}]]})";
    plugIn(GetParam(), GetParam() == At ? "" : "latePin", m_folder + "-card.json");
    open();
    ASSERT_TRUE(noticed("goes on without its PIN"));
    EXPECT_FALSE(noticed("not ready", 1s)); // in place of the reason
    m_modem->signal(SIGUSR2);
    ASSERT_TRUE(noticed("no usable SIM"));
    m_modem->signal(SIGUSR2);
    ASSERT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 10s));
    CardHost::setPinListener(nullptr);
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_FALSE(requests[1].wrong);
    EXPECT_TRUE(requests[2].wrong);
    EXPECT_EQ(requests[2].triesLeft, GetParam() == At ? 0 : 2); // AT does not tell
    expectNothingTwice(true);
}

TEST_P(EachWay, tellsWhoHasThePort)
{
    plugIn(GetParam());
    const int other = ::open(m_link.c_str(), O_RDWR | O_NOCTTY);
    flock(other, LOCK_EX);
    open();
    EXPECT_TRUE(GetParam() == Mbim || noticed("another program keeps the device for itself"));
    ::close(other);
    EXPECT_TRUE(playSomehow());
}

TEST_P(EachWay, isLeftAloneWhereItIsSilent)
{
    plugIn(GetParam(), "never");
    open();
    EXPECT_TRUE(m_modem->waitFor("opened", 5s));
    EXPECT_TRUE(noticed("does not answer", 20s));
    atOnce(CardHost::closeCard);
    EXPECT_TRUE(m_modem->waitFor("closed", 3s));
}

TEST_P(EachWay, isAskedOnceMoreWhereAMessageIsLost)
{
    plugIn(GetParam(), "never@6");
    open();
    EXPECT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 20s));
    EXPECT_FALSE(noticed("does not answer", 0s));
    expectNothingTwice(true);
}

TEST_P(EachWay, startsTheCardAnewForAPersonOnly)
{
    plugIn(GetParam(), "late");
    open();
    EXPECT_TRUE(noticed("no toolkit menu has come", 15s));
    EXPECT_FALSE(CardHost::hasMenu());
    atOnce(CardHost::restartCard);
    EXPECT_TRUE(playSomehow()); // it may be gone for a moment
    expectNothingTwice(true);
}

TEST_P(EachWay, leavesNoCardSwitchedOff)
{
    plugIn(GetParam(), GetParam() == At ? "slow@12" : "slow@10"); // as it is switched off
    open();
    ASSERT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 10s));
    std::this_thread::sleep_for(500ms); // the menu is answered
    atOnce(CardHost::restartCard);
    EXPECT_TRUE(m_modem->waitFor("slow", 3s));
    atOnce(CardHost::closeCard);
    open();
    EXPECT_TRUE(calls.next(MOVA_STKTYPE_SETUP_MENU, 10s));
}
