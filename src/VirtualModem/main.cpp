/* A modem on a pseudo-terminal. */
#include <csignal>
#include <cstdlib>
#include <memory>

#include <getopt.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "AtModem.h"
#include "CardReport.h"
#include "MbimModem.h"
#include "Say.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds Absence(600); // of a modem that was unplugged

const char Usage[] =
    "Usage: VirtualModem --at|--mbim FILE [OPTION]...\n"
    "Puts the card that FILE describes into a modem on a pseudo-terminal, whose name it prints.\n\n"
    "  --at FILE      the modem speaks AT commands (3GPP TS 27.007 clause 12)\n"
    "  --mbim FILE    the modem speaks MBIM\n"
    "  --link PATH    the name is this symbolic link\n"
    "  --fault PLAN   FAULT: always; FAULT@N: at the Nth message of the terminal; FAULT@each: at "
    "the\n"
    "                 first message after the port was opened, then the second, and so on; a "
    "number:\n"
    "                 at random, from this seed.  May stand repeatedly; docs/virtual-modem.md has "
    "the\n"
    "                 list\n"
    "  --report FILE  write what was played, as JSON, at the end\n"
    "  --require-all  a step that was not played is an error, too\n"
    "  --help         show this help\n\n"
    "It plays until SIGINT or SIGTERM; SIGUSR1 unplugs it for a moment,\n"
    "SIGUSR2 takes the SIM out, or puts it in again. Exit status: 0, 1 after a\n"
    "terminal response that was not expected, 2 when it cannot start.\n";

struct Options {
    ModemFaults::Protocol protocol = ModemFaults::At;
    std::string file, link, report;
    ModemFaults faults;
    bool requireAll = false;
};

[[noreturn]] void giveUp(const std::string &reason)
{
    std::cerr << "VirtualModem: " << reason << '\n';
    std::exit(2);
}

Options readOptions(int argc, char **argv)
{
    const option known[] = {
        {"at", required_argument, nullptr, 'a'},     {"mbim", required_argument, nullptr, 'm'},
        {"link", required_argument, nullptr, 'l'},   {"fault", required_argument, nullptr, 'f'},
        {"report", required_argument, nullptr, 'r'}, {"require-all", no_argument, nullptr, 'q'},
        {"help", no_argument, nullptr, '?' + 1},     {nullptr, 0, nullptr, 0}};
    Options options;
    std::vector<std::string> faults;
    int found;
    while ((found = getopt_long(argc, argv, "", known, nullptr)) != -1) {
        const std::string value = optarg ? optarg : "";
        switch (found) {
        case 'a':
        case 'm':
            options.protocol = found == 'a' ? ModemFaults::At : ModemFaults::Mbim;
            options.file = value;
            break;
        case 'l':
            options.link = value;
            break;
        case 'f':
            faults.push_back(value);
            break;
        case 'r':
            options.report = value;
            break;
        case 'q':
            options.requireAll = true;
            break;
        case '?':
            std::exit(2); // getopt has said why
        default:
            std::cout << Usage;
            std::exit(0);
        }
    }
    if (optind != argc || options.file.empty())
        giveUp("expected --at or --mbim, and a file that describes a card; see --help");
    for (const std::string &fault : faults) {
        if (!options.faults.add(fault, options.protocol))
            giveUp(
                "--fault: expected a fault of this kind of modem, alone, with @N or with @each, or "
                "a number, found \"" +
                fault + '"');
    }
    return options;
}

/* The modem at its port. */
class Player {
public:
    Player(Options &options, const CardFile &file)
        : m_outbox(options.faults)
        , m_faults(options.faults)
        , m_prefix(options.protocol == ModemFaults::At ? "at:" : "mbim:")
        , m_pty(options.link)
    {
        if (options.protocol == ModemFaults::At)
            m_modem = std::make_unique<AtModem>(file, m_outbox, m_faults);
        else
            m_modem = std::make_unique<MbimModem>(file, m_outbox, m_faults);
        m_report = std::make_unique<CardReport>(m_modem->card().played(), options.report);
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGUSR1, SIGUSR2})
            sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        m_signals = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    }

    void play()
    {
        plugIn();
        while (!m_hasEnded)
            turn();
    }

    const CardReport &report() const { return *m_report; }

private:
    void plugIn()
    {
        m_modem->card().switchOn();
        m_pty.plugIn();
        say(m_prefix + m_pty.name());
    }

    void unplug()
    {
        m_pty.unplug();
        m_outbox.clear();
        m_modem->portClosed();
        m_modem->card().switchOff();
        say("unplugged");
        m_backAt = Clock::now() + Absence;
    }

    /* Waits for something to do, and does it. */
    void turn()
    {
        const short wanted = static_cast<short>(POLLIN | (m_outbox.isBlocked() ? POLLOUT : 0));
        pollfd inputs[] = {
            {m_signals, POLLIN, 0}, {m_pty.watch(), POLLIN, 0}, {m_pty.end(), wanted, 0}};
        poll(inputs, 3, timeout());
        if (inputs[0].revents)
            takeSignal();
        if (!m_pty.isThere() && Clock::now() >= m_backAt)
            plugIn();
        else if (m_pty.isThere())
            serve(inputs[1].revents != 0, inputs[2].revents != 0);
        workOfCard();
        if (!m_faults.isRandom())
            m_report->tellMismatches();
    }

    int timeout() const
    {
        auto next = Clock::time_point::max();
        if (const auto due = m_modem->card().due())
            next = *due;
        if (const auto due = m_outbox.due())
            next = std::min(next, *due);
        if (!m_pty.isThere())
            next = std::min(next, m_backAt);
        if (next == Clock::time_point::max())
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
        return static_cast<int>(std::clamp<long>(left.count(), 0, 86400000));
    }

    void takeSignal()
    {
        signalfd_siginfo info;
        if (read(m_signals, &info, sizeof info) != sizeof info)
            return;
        if (info.ssi_signo == SIGUSR2)
            moveSim();
        else if (info.ssi_signo != SIGUSR1)
            m_hasEnded = true;
        else if (m_pty.isThere())
            unplug();
    }

    void moveSim()
    {
        ModemCard &card = m_modem->card();
        const bool isOut = card.state() == ModemCard::State::NoSim;
        say(isOut ? "SIM put in" : "SIM taken out");
        if (isOut)
            card.switchOn();
        else
            card.takeOut();
        m_modem->tellStateOfCard();
        m_modem->tellUnsolicited();
        sendOut();
    }

    void serve(bool isWatchReady, bool isEndReady)
    {
        if (isWatchReady && m_pty.wasOpened()) {
            say("opened");
            m_faults.portOpened();
            m_modem->portOpened();
        } else if (isEndReady) {
            receive();
        }
        if (m_outbox.hangsUp())
            unplug();
        else
            sendOut();
    }

    /* To nobody nothing is sent. */
    void sendOut()
    {
        if (m_pty.end() < 0)
            m_outbox.clear();
        else
            m_outbox.flush(m_pty);
    }

    void receive()
    {
        const auto bytes = m_pty.read();
        if (bytes) {
            m_modem->received(*bytes);
            return;
        }
        say("closed");
        m_outbox.clear();
        m_modem->portClosed();
    }

    void workOfCard()
    {
        const auto due = m_modem->card().due();
        if (!due || Clock::now() < *due)
            return;
        m_modem->card().work();
        m_modem->tellUnsolicited();
        sendOut();
    }

    Outbox m_outbox;
    ModemFaults &m_faults;
    const std::string m_prefix;
    Pty m_pty;
    std::unique_ptr<Modem> m_modem;
    std::unique_ptr<CardReport> m_report;
    int m_signals = -1;
    Clock::time_point m_backAt;
    bool m_hasEnded = false;
};

} // namespace

int main(int argc, char **argv)
{
    Options options = readOptions(argc, argv);
    try {
        CardFile file = CardFile::read(options.file);
        // The terminal of an MBIM modem has no part in the profile that the card gets.
        if (options.protocol == ModemFaults::Mbim)
            file.profile.reset();
        Player player(options, file);
        player.play();
        player.report().write(options.faults.messages());
        return player.report().exitStatus(options.requireAll);
    } catch (const std::exception &error) {
        giveUp(error.what());
    }
}
