// A card in a reader that answers anything, comes and goes, with a person who does anything:
//   CardFuzz [SECONDS [SEED]]
// It plays the card against simulated time.
// Exit status 1, with the seed, where a rule is broken: work or memory without bounds, an event of
// a card that is off or away, a PIN that is told or sent unasked.
//
// With clang's libFuzzer the bytes are what card and person do (cmake -DSTK_FUZZ=ON).

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <random>
#include <vector>

#include "CatCommands.h"
#include "session/Session.h"
#include "reader/ReaderPort.h"
#include "toolkit/ToolkitTerminal.h"

using namespace std::chrono_literals;
using cat::Bytes;
using cat::ByteView;

namespace {

int64_t allocated()
{
    return static_cast<int64_t>(mallinfo2().uordblks);
}

constexpr int64_t MostMemory = 4 * 1024 * 1024;
constexpr int MostStepsAtOnce = 2000;
constexpr int MostExchangesASecond = 4000;
const char PinDigits[] = "90716253";

void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "CardFuzz: %s\n", what);
    std::abort();
}

// What decides: random numbers, or the bytes of a fuzzer.
class Chance {
public:
    explicit Chance(uint64_t seed)
        : m_random(seed)
    {
    }
    explicit Chance(ByteView input)
        : m_input(input)
        , m_endless(false)
    {
    }

    bool isOver() const { return !m_endless && m_input.empty(); }
    unsigned below(unsigned limit)
    {
        if (m_endless)
            return static_cast<unsigned>(m_random() % limit);
        const unsigned byte = m_input.empty() ? 0 : m_input[0];
        m_input = m_input.part(1);
        return byte % limit;
    }
    bool once(unsigned in) { return below(in) == 0; }

private:
    std::mt19937_64 m_random;
    ByteView m_input;
    bool m_endless = true;
};

class FuzzChannel : public CardChannel {
public:
    /// The card goes away once in so many exchanges.
    FuzzChannel(Chance &chance, int &exchanges, unsigned loss)
        : m_chance(chance)
        , m_exchanges(exchanges)
        , m_loss(loss)
    {
    }

    Status connect() override
    {
        m_present = !m_chance.once(m_loss / 50);
        if (m_present)
            return {State::Ready, "Reader", {}};
        return {static_cast<State>(m_chance.below(5)), {}, {{}, {}, "trouble", true}};
    }
    void disconnect() override { }
    bool passOver() override { return m_chance.once(10); }
    bool isPresent() override { return m_present = m_present && !m_chance.once(m_loss); }
    Protocol protocol() const override { return m_isT1 ? Protocol::T1 : Protocol::T0; }
    std::optional<Bytes> transmit(ByteView command) override
    {
        ++m_exchanges;
        check(command.size() >= 4 && command.size() <= 261, "a command that is none");
        if (!m_present || m_chance.once(m_loss)) {
            m_present = false;
            return std::nullopt;
        }
        m_isT1 ^= m_chance.once(50);
        Bytes answer = m_chance.once(m_loss / 25) ? noise() : plausible(command);
        if (m_chance.once(30))
            answer.resize(m_chance.below(static_cast<unsigned>(answer.size()) + 1));
        return answer;
    }

private:
    Bytes noise()
    {
        Bytes bytes(m_chance.below(m_chance.once(10) ? 700 : 40));
        for (uint8_t &byte : bytes)
            byte = static_cast<uint8_t>(m_chance.below(256));
        const uint8_t first[] = {0x90, 0x91, 0x61, 0x6c, 0x9f, 0x93, 0x62, 0x63, 0x98, 0x6f};
        bytes.push_back(first[m_chance.below(sizeof first)]);
        bytes.push_back(static_cast<uint8_t>(m_chance.below(256)));
        return bytes;
    }
    Bytes plausible(ByteView command)
    {
        switch (command[1]) {
        case 0x12: {
            if (m_chance.once(4)) // a menu, for the person to begin something with
                return with({0xd0, 0x14, 0x81, 0x03, 0x01, 0x25, 0x00, 0x82, 0x02, 0x81, 0x82,
                             0x85, 0x01, 'M',  0x8f, 0x02, 0x01, 'a',  0x8f, 0x02, 0x02, 'b'},
                            0x90, 0);
            Bytes fetched = catCommands()[m_chance.below(unsigned(catCommands().size()))];
            for (unsigned faults = m_chance.below(3); faults > 0; --faults)
                fetched[m_chance.below(unsigned(fetched.size()))] ^= 1u << m_chance.below(8);
            if (m_chance.once(3)) // another command with the same objects
                fetched[5] = static_cast<uint8_t>(m_chance.below(0x50));
            return with(std::move(fetched), 0x90, 0);
        }
        case 0xa4: // SELECT, with and without a PIN in use
            return with({0x62, 0x0b, 0xc6, 0x09, 0x90, 0x01,
                         uint8_t(m_chance.once(2) ? 0x80 : 0x00), 0x83, 0x01, 0x01, 0x83, 0x01,
                         0x81},
                        0x90, 0);
        case 0x20:
            return command.size() > 5 && m_chance.once(2)
                ? with({}, 0x90, 0)
                : with({}, 0x63, uint8_t(0xc0 | m_chance.below(4)));
        default:
            return m_chance.once(3) ? with({}, 0x90, 0)
                                    : with({}, 0x91, uint8_t(m_chance.below(256)));
        }
    }
    static Bytes with(Bytes data, uint8_t sw1, uint8_t sw2)
    {
        data.push_back(sw1);
        data.push_back(sw2);
        return data;
    }

    Chance &m_chance;
    int &m_exchanges;
    const unsigned m_loss;
    bool m_present = false;
    bool m_isT1 = false;
};

// Keeps the books of the PIN.
class Watcher : public PortReports {
public:
    void exchanged(const PortTraffic &traffic) override
    {
        const auto begin = traffic.command.begin();
        const auto end = traffic.command.end();
        check(std::search(begin, end, PinDigits, PinDigits + 8) == end, "a PIN was told");
        if (traffic.command.size() > 5 && traffic.command[1] == 0x20)
            check(m_allowed-- > 0, "a PIN was sent unasked");
    }
    void answeredByTerminal(const std::string &, const std::string &) override { }
    void noticed(const Notice &) override { }
    void pinWanted(const PinRequest &request) override
    {
        check(!m_request, "two requests at once");
        m_request = request.id;
    }
    void pinDone() override
    {
        check(m_request.has_value(), "a request that was none is over");
        m_request.reset();
    }

    void answer(ToolkitTerminal &card, Chance &chance, Card::Time now)
    {
        if (!m_request)
            return;
        const bool digits = !chance.once(3);
        m_allowed = digits;
        card.answerPin(*m_request, Pin(PinDigits, digits ? 8 : 0), now);
    }

private:
    std::optional<int> m_request;
    int m_allowed = 0;
};

// To a command, as a session that refuses what cannot be coded.
TerminalResponse randomResponse(Chance &chance, const ProactiveCommand &asked)
{
    using Result = TerminalResponse::Result;
    TerminalResponse response;
    response.result = static_cast<Result>(chance.below(static_cast<unsigned>(Result::Other) + 1));
    if (chance.once(2))
        response.text = std::string(chance.below(250), chance.once(2) ? '1' : 'x');
    else if (chance.once(4))
        response.item = static_cast<int16_t>(chance.below(256));
    if (codeText(asked, response) != StatusSuccess)
        response.coded.reset();
    return response;
}

// One card and one person, in simulated time.
class Life {
public:
    explicit Life(Chance &chance)
        : m_chance(chance)
    {
    }

    void live(std::chrono::seconds time)
    {
        const Card::Time end = m_now + time;
        m_card.powerOn(m_now);
        while (m_now < end && !m_chance.isOver()) {
            step();
            act();
            check(allocated() - m_before < MostMemory, "memory without bounds");
        }
    }

private:
    void step()
    {
        const auto event = m_card.nextEvent(m_now);
        if (event)
            take(*event);
        check(++m_steps < MostStepsAtOnce, "no rest");
        if (event || m_card.wakeUp() <= m_now)
            return;
        m_steps = 0;
        m_now = std::min(m_card.wakeUp(), m_now + 50ms);
        if (m_now - m_second < 1s)
            return;
        check(m_exchanges < MostExchangesASecond, "too many exchanges in a second");
        m_exchanges = 0;
        m_second = m_now;
    }
    void take(const CardEvent &event)
    {
        check(m_isOn, "an event of a card that is off");
        if (const auto *command = std::get_if<ProactiveCommand>(&event)) {
            check(!m_isAway, "a command of a card that is away");
            m_asked = *command;
            m_answerAt =
                m_now + (isAnsweredByModem(command->body) ? 200ms : 1ms * m_chance.below(3000));
        } else if (std::holds_alternative<ModemRemoved>(event)) {
            m_isAway = true;
            m_answerAt.reset();
        } else if (std::holds_alternative<ModemReady>(event)) {
            m_isAway = false;
            m_card.powerOn(m_now);
        }
    }
    void act()
    {
        if (m_answerAt && *m_answerAt <= m_now) {
            m_answerAt.reset();
            m_card.respond(randomResponse(m_chance, m_asked), m_now);
        }
        switch (m_chance.below(400)) {
        case 0:
            m_card.selectMenuItem(static_cast<int16_t>(m_chance.below(256)), m_now);
            break;
        case 1:
            m_card.endSession();
            break;
        case 2:
            m_card.setLanguage(m_chance.once(2) ? "en" : "fr", m_now);
            break;
        case 3:
            m_card.respond(randomResponse(m_chance, m_asked), m_now);
            break;
        case 4:
            m_isOn = !m_isOn;
            m_isAway = false;
            m_answerAt.reset();
            if (m_isOn)
                m_card.powerOn(m_now);
            else
                m_card.powerOff();
            break;
        case 5:
        case 6:
        case 7:
            m_watcher.answer(m_card, m_chance, m_now);
            break;
        default:
            break;
        }
    }

    Chance &m_chance;
    const int64_t m_before = allocated();
    int m_exchanges = 0;
    Watcher m_watcher;
    ToolkitTerminal m_card{
        std::make_unique<ReaderPort>(std::make_unique<FuzzChannel>(m_chance, m_exchanges, 200),
                                     "card", m_watcher),
        "card", "en", m_watcher};
    Card::Time m_now = Card::Time() + 1h;
    Card::Time m_second = m_now;
    std::optional<Card::Time> m_answerAt;
    ProactiveCommand m_asked;
    int m_steps = 0;
    bool m_isOn = true;
    bool m_isAway = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Chance chance(ByteView(data, size));
    Life(chance).live(10min);
    return 0;
}

#ifndef STK_LIBFUZZER

int main(int argc, char **argv)
{
    const int time = argc > 1 ? std::atoi(argv[1]) : 10;
    const uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : std::random_device{}();
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    const Card::Time end = Card::Clock::now() + std::chrono::seconds(time);
    Chance chance(seed);
    int lives = 0;
    for (; Card::Clock::now() < end; ++lives)
        Life(chance).live(2min);
    std::printf("%d lives of two minutes\n", lives);
    return 0;
}

#endif
