// A modem that says anything, on an AT port or with nothing but the toolkit's traffic, and a person
// who does anything, in simulated time:
//   ModemFuzz [SECONDS [SEED]]
// Aborts where a rule is broken: no rest, a PIN that is sent unasked, a command that is none, two
// answers to a command, or none.
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>

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

// Until card and terminal have nothing more to do at that time.
void rest(ToolkitTerminal &card, Card::Time now)
{
    for (int events = 0; events < 100; ++events) {
        const auto event = card.nextEvent(now);
        if (event && std::holds_alternative<ModemReady>(*event))
            card.powerOn(now);
        else if (!event && card.wakeUp() > now)
            return;
    }
    check(false, "no rest");
}

void doAnything(ToolkitTerminal &card, Watcher &watcher, Card::Time now)
{
    if (below(3) == 0)
        card.respond({static_cast<TerminalResponse::Result>(below(5))}, now);
    if (below(20) == 0)
        card.selectMenuItem(static_cast<int16_t>(below(256)), now);
    if (below(200) == 0)
        card.endSession();
    if (below(200) == 0)
        card.restart(now);
    if (watcher.request && below(4) == 0) {
        watcher.allowed = 1;
        card.answerPin(watcher.request, Pin("1234", 4), now);
    }
}

Card::Time later(const ToolkitTerminal &card, Card::Time now)
{
    return std::max(now + 1ms * below(200), below(10) ? now : std::min(card.wakeUp(), now + 1min));
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
        rest(card, now);
        char heard[8192];
        const ssize_t count = ::read(master, heard, sizeof heard);
        const std::string said(heard, count > 0 ? static_cast<size_t>(count) : 0);
        check(said.empty() || said.compare(0, 2, "AT") == 0, "a command that is none");
        if (said.find("AT+CPIN=") != std::string::npos)
            check(watcher.allowed-- > 0, "a PIN was sent unasked");
        const std::string answer = line();
        [[maybe_unused]] const ssize_t sent = ::write(master, answer.data(), answer.size());
        now = later(card, now);
        doAnything(card, watcher, now);
    }
    ::close(master); // gone
    card.nextEvent(now + 1h);
}

// A modem with nothing between it and the toolkit's traffic, as it is by MBIM: what it brings is to
// be answered or not, and once.
class AnyPort : public ModemPort {
public:
    explicit AnyPort(Watcher &watcher)
        : ModemPort("modem", watcher)
    {
    }
    void work(Time now) override
    {
        if (std::exchange(acts, false))
            act(now);
        if (m_sending == Nothing)
            goOn(now);
    }
    Time wakeUp() const override { return m_sending == Nothing ? nextTime() : Never; }
    void answer(bool taken, bool busy, Time now)
    {
        const Sending what = std::exchange(m_sending, Nothing);
        const bool inOtherForm = !taken && !busy && below(2);
        if (what == Step && wantsAnswer())
            stepDone(now);
        else if (what != Nothing && what != Step && inOtherForm)
            m_toolkit.sendAgain();
        else if (what != Nothing && what != Step)
            answered({taken, std::nullopt, {}}, busy ? Reaction::Busy : Reaction::Definite, now);
        if (what == Response && (busy || inOtherForm) && !m_asked)
            m_asked = m_sent;
    }

    bool acts = false;

private:
    enum Sending { Nothing, Step, Response, Envelope };

    void act(Time now)
    {
        const unsigned what = below(100);
        if (what == 0 && isInUse() && m_sending != Step)
            cardIsGone(now);
        else if (what == 1)
            lose(now);
        else if (what < 10 && isInUse())
            m_toolkit.sessionEnded();
        else if (what < 50)
            answer(below(4), below(4) == 0, now);
        else if (isInUse() && !isStartingAnew())
            bring(below(4), now);
    }
    void bring(bool wantsAnswer, Time now)
    {
        cat::Bytes command = m_command;
        const bool isNew = below(4);
        if (isNew) {
            command = catCommands()[below(unsigned(catCommands().size()))];
            command[4] = static_cast<uint8_t>(++m_number);
        }
        // The answer that is on its way is the second's, too.
        const bool isTwice = !isNew && m_sending == Response && !m_asked &&
            (now - m_sentAt < 50ms || command[5] == 0x25);
        if (wantsAnswer)
            m_command = command;
        if (wantsAnswer && !isTwice)
            m_asked = command[4];
        command.resize(command.size() + below(4)); // padding
        m_toolkit.commandArrived(commandIn(command), wantsAnswer, now);
    }
    void enter(Stage) override { m_switchedOff = false; }
    void takeStep(Time) override { m_sending = Step; }
    void stepDone(Time now) { isInUse() ? m_toolkit.run(now) : cardIsThere(now); }
    void send(const ModemToolkit::Message &message, Time now) override
    {
        m_sending = Envelope;
        if (message.kind == ModemToolkit::Message::Kind::Envelope)
            return;
        m_sending = Response;
        m_sent = message.data[2];
        m_sentAt = now;
        check(std::exchange(m_asked, std::nullopt) == m_sent, "an answer that nobody waits for");
    }
    void disconnect(bool) override { m_sending = Nothing; }

    Sending m_sending = Nothing;
    int m_number = 0;
    cat::Bytes m_command = catCommands()[0]; // the last
    std::optional<uint8_t> m_asked; // the number of the command that waits for its answer
    uint8_t m_sent = 0;
    Time m_sentAt;
};

void liveBesideAnything()
{
    Watcher watcher;
    auto owned = std::make_unique<AnyPort>(watcher);
    AnyPort &port = *owned;
    ToolkitTerminal card(std::move(owned), "modem", "en", watcher);
    Card::Time now = Card::Time() + 1h;
    card.powerOn(now);
    for (int step = 0; step < 2000; ++step) {
        port.acts = true;
        rest(card, now);
        now = later(card, now);
        doAnything(card, watcher, now);
    }
    for (int second = 0; second < 100; ++second, now += 1s, rest(card, now)) { // all is well again
        port.answer(true, false, now);
        card.respond({TerminalResponse::Result::Performed}, now);
    }
    check(port.takesEnvelope(), "a modem that is of no use any more");
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
        below(2) ? live() : liveBesideAnything();
}
