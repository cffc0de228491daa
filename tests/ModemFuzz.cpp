// A modem on an AT port that says anything, and a person who does anything, in simulated time:
//   ModemFuzz [SECONDS [SEED]]
// Aborts where a rule is broken: no rest, a PIN that is sent unasked, a command that is none.
#include <cstdio>
#include <cstdlib>
#include <random>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "CatCommands.h"
#include "cat/Hex.h"
#include "modem/AtPort.h"
#include "modem/MbimPort.h"
#include "toolkit/ToolkitTerminal.h"

using namespace std::chrono_literals;

namespace {

std::mt19937_64 theRandom;

unsigned below(unsigned limit)
{
    return static_cast<unsigned>(theRandom() % limit);
}

void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "ModemFuzz: %s\n", what);
    std::abort();
}

struct Watcher : PortReports {
    void exchanged(const PortTraffic &) override { }
    void answeredByTerminal(const std::string &, const std::string &) override { }
    void noticed(const Notice &) override { }
    void pinWanted(const PinRequest &wanted) override { request = wanted.id; }
    void pinDone() override { request = 0; }
    int request = 0, allowed = 0;
};

std::string line()
{
    static const char *const Lines[] = {"OK",
                                        "OK",
                                        "OK",
                                        "ERROR",
                                        "+CME ERROR: 14",
                                        "+CME ERROR: 16",
                                        "+CPIN: READY",
                                        "+CPIN: READY",
                                        "+CPIN: SIM PIN",
                                        "+CUSATEND",
                                        "+CUSATE: \"\",1",
                                        "+CUSATE2: 144,0",
                                        "+CUSATT: 0"};
    std::string text = Lines[below(std::size(Lines))];
    if (below(3) == 0)
        text = "+CUSATP: " + cat::toHex(catCommands()[below(unsigned(catCommands().size()))]);
    for (unsigned faults = below(6) == 0 ? below(4) : 0; faults > 0; --faults)
        text[below(unsigned(text.size()))] = static_cast<char>(below(256));
    return below(50) == 0 ? std::string(below(20000), 'A') : "\r\n" + text + "\r\n";
}

void live()
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    check(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0, "no pseudo-terminal");
    termios raw{};
    tcgetattr(master, &raw);
    cfmakeraw(&raw);
    tcsetattr(master, TCSANOW, &raw);
    Watcher watcher;
    ToolkitTerminal card(
        std::make_unique<AtPort>(ptsname(master), cat::terminalProfile(true), watcher), "modem",
        "en", watcher);
    Card::Time now = Card::Time() + 1h;
    card.powerOn(now);
    for (int step = 0; step < 2000; ++step) {
        for (int events = 0; card.nextEvent(now) || card.wakeUp() <= now; ++events)
            check(events < 100, "no rest");
        char heard[8192];
        const ssize_t count = ::read(master, heard, sizeof heard);
        const std::string said(heard, count > 0 ? static_cast<size_t>(count) : 0);
        check(said.empty() || said.compare(0, 2, "AT") == 0, "a command that is none");
        if (said.find("AT+CPIN=") != std::string::npos)
            check(watcher.allowed-- > 0, "a PIN was sent unasked");
        const std::string answer = line();
        [[maybe_unused]] const ssize_t sent = ::write(master, answer.data(), answer.size());
        now =
            std::max(now + 1ms * below(200), below(10) ? now : std::min(card.wakeUp(), now + 1min));
        if (below(3) == 0)
            card.respond({static_cast<TerminalResponse::Result>(below(5))}, now);
        if (below(20) == 0)
            card.selectMenuItem(static_cast<int16_t>(below(256)), now);
        if (below(200) == 0)
            card.restart(now);
        if (watcher.request && below(4) == 0) {
            watcher.allowed = 1;
            card.answerPin(watcher.request, Pin("1234", 4), now);
        }
        cat::Bytes notified(below(300));
        for (uint8_t &byte : notified)
            byte = static_cast<uint8_t>(theRandom());
        check(commandIn(notified).size() <= notified.size(), "a command beyond its notification");
    }
    ::close(master); // gone
    card.nextEvent(now + 1h);
}

} // namespace

int main(int argc, char **argv)
{
    const auto seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : std::random_device{}();
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    theRandom.seed(seed);
    const auto end = Card::Clock::now() + std::chrono::seconds(argc > 1 ? std::atoi(argv[1]) : 10);
    while (Card::Clock::now() < end)
        live();
}
