/* Lets cards that misbehave at random, in the virtual reader of a real smart-card daemon, meet a
 * user who acts at random, for as long as it is told, from a seed that it prints.
 *
 *     tests/reader/with-pcscd build/tests/ReaderSoak [SECONDS [SEED]]
 *
 * It ends with exit status 1 when a call waited for the card, when a well-behaved card could not be
 * used afterwards, when memory grew, or when the process could not end within five seconds.  A
 * crash or a sanitizer's report ends it by itself.
 */
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>

#include <unistd.h>

#include "CardHost.h"
#include "ReaderTools.h"
#include "platform/ModemService.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

const std::string Cards = STK_SOURCE_DIR "/cards/conformance/";
constexpr const char *Files[] = {"texts", "menus", "commands", "session",    "refresh", "sim",
                                 "pin",   "steps", "bank",     "no-toolkit", "mute"};
constexpr auto LifeOfACard = 5s;

/* Random numbers of one thread. */
class Dice {
public:
    explicit Dice(unsigned seed)
        : m_engine(seed)
    {
    }
    int upTo(int highest) { return std::uniform_int_distribution<int>(0, highest)(m_engine); }
    bool once(int in) { return upTo(in - 1) == 0; }

private:
    std::mt19937 m_engine;
};

/* The user, and whoever else has something to do with the modem. */
class User {
public:
    explicit User(unsigned seed)
        : m_dice(seed)
    {
        CardHost::setPinListener([this](const std::optional<CardHost::PinRequest> &request) {
            m_pin = request ? request->id : 0;
        });
    }
    ~User() { CardHost::setPinListener(nullptr); }

    void act()
    {
        const auto call = m_calls.next(std::chrono::milliseconds(m_dice.upTo(100)));
        const auto start = Clock::now();
        if (call && call->type != MOVA_DEV_EVENT_DEVICE_READY)
            react(*call);
        else if (const int pin = m_pin.exchange(0))
            enterPin(pin);
        else if (m_dice.once(2))
            choose();
        else if (m_dice.once(30))
            disturb();
        longest = std::max(longest, Clock::now() - start);
    }

    /* Whether a card can be used to the end of its first menu item. */
    bool uses()
    {
        CardHost::closeCard();
        while (m_calls.next(100ms)) { }
        CardHost::openReader("Virtual reader");
        bool chosen = false;
        while (const auto call = m_calls.next(15s)) {
            if (chosen && call->type == MOVA_STKTYPE_END_SESSION)
                return true;
            if (call->type == MOVA_STKTYPE_SETUP_MENU || call->type == MOVA_STKTYPE_END_SESSION)
                chosen = MOVA_STKSrv_SelectMenuItem(1, 1) == 0;
            else
                answer(*call);
        }
        return false;
    }

    long commands = 0;
    Clock::duration longest{}; // of what must not wait

private:
    void react(const ServiceCall &call)
    {
        ++commands;
        if (m_dice.once(50))
            return; // the card waits
        const auto type = _STK_UI_EN_STKTYPE(call.type);
        if (m_dice.once(6))
            MOVA_STKSrv_SendNoDataResponse(call.id, type, STK_UI_TR_TERMINATED);
        else if (call.type == MOVA_STKTYPE_SELECT_ITEM && m_dice.once(3))
            MOVA_STKSrv_SelectSubMenuItem(call.id, MOVA_SUBMENU_ACTION_BACK, 0);
        else if (call.type == MOVA_STKTYPE_GET_INPUT && m_dice.once(3))
            MOVA_STKSrv_AnswerInput(call.id, 0, nullptr);
        else
            answer(call);
    }

    void choose()
    {
        MOVA_STKMenuInfo menu{};
        if (MOVA_STKSrv_GetMainMenu(&menu) != 0)
            return;
        if (menu.sItemCount > 0)
            MOVA_STKSrv_SelectMenuItem(1, menu.pItems[m_dice.upTo(menu.sItemCount - 1)].sItemId);
        MOVA_STKSrv_ReleaseMenus(&menu);
    }

    void enterPin(int request)
    {
        const char *const pins[] = {"1234", "12345678", "0000", ""};
        const std::string pin = pins[m_dice.upTo(3)];
        CardHost::answerPin(request, CardHost::Pin(pin.data(), pin.size()));
    }

    void disturb()
    {
        const std::function<void()> ways[] = {
            CardHost::endSession,
            CardHost::timeOutSession,
            CardHost::removeModem,
            [this] { CardHost::setLanguage(m_dice.once(2) ? "en" : "fr"); },
            CardHost::closeCard,
            [] { CardHost::openReader("Virtual reader 00 01"); }, // an empty one
        };
        ways[m_dice.upTo(std::size(ways) - 1)]();
        if (m_dice.once(2))
            return;
        CardHost::insertModem();
        CardHost::openReader("Virtual reader");
    }

    Dice m_dice;
    std::atomic<int> m_pin{0};
    ServiceCalls m_calls;
};

long residentKiB()
{
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 60;
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10))
                                   : std::random_device()() % 1000000;
    std::printf("reader soak: %d s, seed %u\n", seconds, seed);
    std::fflush(stdout);

    int failures = 0;
    const auto require = [&failures](bool holds, const char *what) {
        if (!holds) {
            std::printf("FAILED: %s\n", what);
            ++failures;
        }
    };
    User user(seed);
    CardHost::openReader("Virtual reader");
    const Clock::time_point start = Clock::now(), end = start + std::chrono::seconds(seconds);
    Dice dice(seed + 1);
    long startKiB = 0;
    int cards = 0;
    for (; Clock::now() < end; ++cards) {
        CardProcess card({"--latency", "1", "--misbehave",
                          std::to_string(seed + 2 + static_cast<unsigned>(cards)),
                          Cards + Files[dice.upTo(std::size(Files) - 1)] + ".json"});
        CardHost::openReader("Virtual reader");
        const auto change = std::min(end, Clock::now() + LifeOfACard);
        while (Clock::now() < change)
            user.act();
        require(card.end() >= 0, "the card itself does not crash");
        if (startKiB == 0 && Clock::now() - start > (end - start) / 4)
            startKiB = residentKiB();
    }
    const long grown = residentKiB() - startKiB;
    {
        CardProcess card({Cards + "steps.json"});
        require(user.uses(), "a well-behaved card can be used afterwards");
    }
    require(user.longest < 2s, "no call waits for the card");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    require(grown <= 8 * 1024, "memory is flat after the first quarter");
#endif
    std::printf(
        "reader soak: %d cards, %ld commands; the longest call took %.1f ms; memory grew by "
        "%ld KiB after the first quarter\n",
        cards, user.commands, std::chrono::duration<double, std::milli>(user.longest).count(),
        grown);
    std::printf("%d passed, %d failed\n", failures ? 0 : 1, failures);
    std::fflush(stdout);
    alarm(5); // a thread that hangs keeps nobody waiting: the signal ends the process
    return failures ? 1 : 0;
}
