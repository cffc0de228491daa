/* A card in the virtual reader of the smart-card daemon. */
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <getopt.h>

#include "CardReport.h"
#include "FaultPlan.h"
#include "ReaderLink.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds BetweenTries(100);
// The daemon looks for a card every 400 ms, and is confused by another card in between.
constexpr milliseconds BetweenCards(500);
constexpr int LongestEndless = 100; // commands, when faults come at random

const char Usage[] =
    "Usage: VirtualCard [OPTION]... FILE\n"
    "Puts the card that FILE describes into a virtual smart-card reader.\n\n"
    "  --host NAME       where the virtual reader listens (localhost)\n"
    "  --port NUMBER     its port (35963)\n"
    "  --latency MS      what the card takes for a command (20)\n"
    "  --misbehave PLAN  FAULT@N: at the Nth command; FAULT@each: at the first command after a "
    "start\n"
    "                    of the card, then the second, and so on; a number: at random, from this "
    "seed.\n"
    "                    FAULT is slow, cut, wrongLength, endless, 6F00, 9300, garbage, remove or\n"
    "                    hang\n"
    "  --report FILE     write what was played, as JSON, at the end\n"
    "  --require-all     a step that was not played is an error, too\n"
    "  --help            show this help\n\n"
    "It plays until SIGINT or SIGTERM; SIGUSR1 takes the card out for a moment. Exit status: 0, 1 "
    "after\n"
    "a terminal response that was not expected, 2 when it cannot start.\n";

struct Options {
    std::string host = "localhost", port = "35963", report, file;
    FaultPlan faults;
    milliseconds latency{20}; // of a real card: a command of 20 bytes at 9600 bit/s
    bool requireAll = false;
};

[[noreturn]] void giveUp(const std::string &reason)
{
    std::cerr << "VirtualCard: " << reason << '\n';
    std::exit(2);
}

int readNumber(const std::string &option, const std::string &text, int lowest, int highest)
{
    int number = -1;
    const char *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < lowest || number > highest) {
        giveUp(option + ": expected a number from " + std::to_string(lowest) + " to " +
               std::to_string(highest) + ", found \"" + text + '"');
    }
    return number;
}

Options readOptions(int argc, char **argv)
{
    const option known[] = {{"host", required_argument, nullptr, 'h'},
                            {"port", required_argument, nullptr, 'p'},
                            {"latency", required_argument, nullptr, 'l'},
                            {"misbehave", required_argument, nullptr, 'm'},
                            {"report", required_argument, nullptr, 'r'},
                            {"require-all", no_argument, nullptr, 'a'},
                            {"help", no_argument, nullptr, '?' + 1},
                            {nullptr, 0, nullptr, 0}};
    Options options;
    int found;
    while ((found = getopt_long(argc, argv, "", known, nullptr)) != -1) {
        const std::string value = optarg ? optarg : "";
        switch (found) {
        case 'h':
            options.host = value;
            break;
        case 'p':
            options.port = std::to_string(readNumber("--port", value, 1, 65535));
            break;
        case 'r':
            options.report = value;
            break;
        case 'a':
            options.requireAll = true;
            break;
        case 'l':
            options.latency = milliseconds(readNumber("--latency", value, 0, 99999));
            break;
        case 'm':
            if (const auto plan = FaultPlan::read(value))
                options.faults = *plan;
            else
                giveUp("--misbehave: expected FAULT@N, FAULT@each or a number, found \"" + value +
                       '"');
            break;
        case '?':
            std::exit(2); // getopt has said why
        default:
            std::cout << Usage;
            std::exit(0);
        }
    }
    if (optind + 1 != argc)
        giveUp("expected one file that describes a card; see --help");
    options.file = argv[optind];
    return options;
}

/* The card in its reader. */
class Player {
public:
    Player(const Options &options, const CardFile &file)
        : m_link(options.host, options.port)
        , m_card(file)
        , m_report(m_card, options.report)
        , m_faults(options.faults)
        , m_latency(options.latency)
    {
    }

    void play()
    {
        say("waiting for the virtual reader");
        m_link.wait(BetweenCards);
        for (auto signal = m_link.takeSignal(); signal != ReaderLink::Signal::End;
             signal = m_link.takeSignal()) {
            if (signal == ReaderLink::Signal::TakeOut)
                takeOut();
            else if (m_link.isConnected())
                serve();
            else if (m_link.connect())
                say("in the reader");
            else
                m_link.wait(BetweenTries);
        }
    }

    const CardReport &report() const { return m_report; }
    long commands() const { return m_commands; }

private:
    void serve()
    {
        const auto message = m_link.receive();
        if (!message) {
            if (!m_link.isConnected())
                say("the reader is gone");
            return;
        }
        if (message->size() == 1)
            control(message->front());
        else
            command(*message);
        // Where faults come at random, nobody knows what to expect.
        if (!m_faults.isRandom())
            m_report.tellMismatches();
    }

    /* Power off, power on, reset, and the wish for an answer to reset. */
    void control(uint8_t code)
    {
        // The reader asks all the time, to see whether the card is there.
        if (code == 4) {
            m_link.send(m_card.file().atr);
            return;
        }
        m_card.reset();
        m_faults.cardStarted();
        if (code != 0)
            say("starts");
    }

    void command(const cat::Bytes &command)
    {
        ++m_commands;
        m_link.wait(m_latency);
        const auto fault = m_faults.next();
        if (!fault) {
            m_link.send(m_card.answer(command));
            return;
        }
        say(faultName(*fault));
        misbehave(*fault, command);
    }

    void misbehave(Fault fault, const cat::Bytes &command)
    {
        switch (fault) {
        case Fault::Slow:
            m_link.wait(m_faults.slowness());
            m_link.send(m_card.answer(command));
            break;
        case Fault::Cut:
            m_link.send(m_card.answer(command), 1);
            takeOut();
            break;
        case Fault::WrongLength:
            m_link.send(m_faults.wrongLength(m_card.answer(command)));
            break;
        case Fault::Endless:
            m_card.playEndless(m_faults.isRandom() ? std::optional(LongestEndless) : std::nullopt);
            m_link.send(m_card.answer(command));
            break;
        case Fault::Error:
            m_link.send(cat::Bytes{0x6f, 0x00});
            break;
        case Fault::Busy:
            m_link.send(cat::Bytes{0x93, 0x00});
            break;
        case Fault::Garbage:
            m_link.send(m_faults.garbage());
            break;
        case Fault::Remove:
            takeOut();
            break;
        case Fault::Hang:
            break;
        }
    }

    void takeOut()
    {
        say("taken out");
        m_link.disconnect();
        m_card.reset();
        m_link.wait(m_faults.absence());
    }

    void say(const char *what) { std::cout << "VirtualCard: " << what << std::endl; }

    ReaderLink m_link;
    PlayedCard m_card;
    CardReport m_report;
    FaultPlan m_faults;
    const milliseconds m_latency;
    long m_commands = 0;
};

} // namespace

int main(int argc, char **argv)
{
    const Options options = readOptions(argc, argv);
    try {
        Player player(options, CardFile::read(options.file));
        player.play();
        player.report().write(player.commands());
        return player.report().exitStatus(options.requireAll);
    } catch (const std::exception &error) {
        giveUp(error.what());
    }
}
