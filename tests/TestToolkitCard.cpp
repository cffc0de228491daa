#include <gtest/gtest.h>

#include <deque>
#include <sstream>

#include "card/ToolkitCard.h"

using namespace std::chrono_literals;
using cat::Bytes;
using Result = TerminalResponse::Result;

namespace {

Bytes bytes(const std::string &hex)
{
    Bytes result;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        result.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return result;
}

std::string hex(cat::ByteView data)
{
    std::string text;
    for (uint8_t byte : data) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02X", byte);
        text += pair;
    }
    return text;
}

// The script of a card: lines of "command > answer"; the answer "gone" takes the card out.
struct Wire {
    struct Line {
        std::string command, answer;
    };
    std::deque<Line> script;
    std::string otherwise; // the answer to everything when the script is over; empty: a failure
    CardChannel::Status status{CardChannel::State::Ready, "Reader"};
    CardChannel::Protocol protocol = CardChannel::Protocol::T0;
    bool present = true;
    int connects = 0;
    int transmits = 0;

    void add(const std::string &text)
    {
        std::istringstream lines(text);
        std::string command, arrow, answer;
        while (lines >> command >> arrow >> answer)
            script.push_back({command, answer});
    }
};

class FakeChannel : public CardChannel {
public:
    explicit FakeChannel(Wire &wire)
        : m_wire(wire)
    {
    }
    Status connect() override
    {
        ++m_wire.connects;
        m_wire.present = m_wire.status.state == State::Ready;
        return m_wire.status;
    }
    void disconnect() override { }
    bool isPresent() override { return m_wire.present; }
    Protocol protocol() const override { return m_wire.protocol; }
    std::optional<Bytes> transmit(cat::ByteView command) override
    {
        ++m_wire.transmits;
        if (m_wire.script.empty()) {
            EXPECT_NE(m_wire.otherwise, "") << "after the script: " << hex(command);
            return bytes(m_wire.otherwise.empty() ? "6F00" : m_wire.otherwise);
        }
        const Wire::Line line = m_wire.script.front();
        m_wire.script.pop_front();
        EXPECT_EQ(hex(command), line.command);
        if (line.answer == "gone")
            return std::nullopt;
        return bytes(line.answer);
    }

private:
    Wire &m_wire;
};

// Everything that is told of the card, one line each.
struct Log : CardListener {
    std::vector<std::string> lines, traffic;
    int request = 0;

    void exchanged(const ApduTraffic &told) override
    {
        traffic.push_back(hex(told.command) + ">" + hex(told.response));
    }
    void answeredByModem(const std::string &command, const std::string &result) override
    {
        lines.push_back(command + ": " + result);
    }
    void noticed(const CardHost::Notice &notice) override
    {
        lines.push_back((notice.problem ? "! " : "- ") + notice.text);
    }
    void pinWanted(const CardHost::PinRequest &wanted) override
    {
        request = wanted.id;
        lines.push_back("PIN? " + std::to_string(wanted.triesLeft) + (wanted.wrong ? " wrong" : ""));
    }
    void pinDone() override { lines.push_back("PIN."); }
};

std::string name(const CardEvent &event)
{
    if (const auto *command = std::get_if<ProactiveCommand>(&event))
        return commandName(command->body);
    const char *const names[] = {"", "end", "timeout", "removed", "ready"};
    return names[event.index()];
}

std::string packed(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

// With its length before it.
std::string counted(const std::string &text)
{
    const std::string data = packed(text);
    return hex(Bytes{uint8_t(data.size() / 2)}) + data;
}

// The card's proactive command, from the objects behind the command details on.
std::string fetch(const std::string &details, const std::string &objects, const char *cla = "80")
{
    const std::string pdu = "D0" + counted("8103" + details + "82028182" + objects);
    return cla + ("120000" + hex(Bytes{uint8_t(pdu.size() / 2)})) + " > " + pdu + "9000 ";
}

// The terminal's response, from the value of the result on.
std::string respond(const std::string &details, const std::string &result,
                    const std::string &status = "9000", const char *cla = "80")
{
    return cla + ("140000" + counted("8103" + details + "82028281 83" + result)) + " > " + status + ' ';
}

std::string waiting(const std::string &objects) // the status that announces such a command
{
    return hex(Bytes{0x91, uint8_t(packed(objects).size() / 2 + 11)});
}

const std::string Profile = "100000" + counted(hex(cat::terminalProfile()));
const std::string FindUsim = "00A40004023F00 > 9000 00A40004022F00 > 6A82 ";
const std::string SelectUsim = "00A4040407A0000000871002 > ";
// File control parameters: the PIN in use, or not.
const std::string WithPin = "620BC609900180830101830181" "9000 ";
const std::string WithoutPin = "620BC609900140830101830181" "9000 ";
const std::string Ready = "80" + Profile + " > 9000 80F2010C00 > 9000 ";
const std::string Menu = "85034142438F03014441";
const std::string Select1 = "80C2000009D30782020181900101 > ";
const std::string Text = "8D020441";
const std::string ShowText = fetch("012180", Text);

class TestToolkitCard : public testing::Test {
protected:
    // Lets the card work until it has nothing to do at the end of the time.
    void run(Card::Clock::duration time)
    {
        for (const Card::Time end = now + time;; now = std::max(now, card.wakeUp())) {
            for (int steps = 0; card.wakeUp() <= now; ++steps) {
                ASSERT_LT(steps, 500) << "no rest";
                step();
            }
            if (card.wakeUp() > end) {
                now = end;
                return;
            }
        }
    }
    void step()
    {
        const auto event = card.nextEvent(now);
        if (!event)
            return;
        log.lines.push_back(name(*event));
        if (std::holds_alternative<ModemReady>(*event))
            card.powerOn(now);
    }

    // The script is played to its end within the time, and all this is told.
    void play(const std::string &script, const std::vector<std::string> &told,
              Card::Clock::duration time = 0ms)
    {
        wire.add(script);
        run(time);
        EXPECT_EQ(wire.script.size(), 0u) << "next: " << wire.script.front().command;
        wire.script.clear();
        EXPECT_EQ(std::exchange(log.lines, {}), told) << script;
    }

    // A card with a menu, no PIN, and a session for every selection.
    void start()
    {
        card.powerOn(now);
        play(FindUsim + SelectUsim + WithoutPin + "80" + Profile + " > " + waiting(Menu) +
                 " 80F2010C00 > 9000 " + fetch("012500", Menu),
             {"- Reader: a USIM", "SET UP MENU"});
        card.respond({}, now);
        play(respond("012500", "0100"), {"end"});
    }
    void select(const std::string &script, const std::vector<std::string> &told)
    {
        card.selectMenuItem(1, now);
        play(Select1 + script, told);
    }

    Wire wire;
    Log log;
    ToolkitCard card{std::make_unique<FakeChannel>(wire), "name", "en", log};
    Card::Time now = Card::Time() + 24h;
};

TEST(TestApdu, followsTheStatusWords)
{
    struct {
        CardChannel::Protocol protocol;
        Apdu command;
        const char *script;
        const char *result;
    } const cases[] = {
        {CardChannel::Protocol::T0, {0x80, 0xf2, 0, 0x0c}, "80F2000C00 > 9000", "9000"},
        {CardChannel::Protocol::T1, {0x80, 0xf2, 0, 0x0c}, "80F2000C > 9000", "9000"},
        {CardChannel::Protocol::T0, {0xa0, 0xf2, 0, 0, {}, 256}, "A0F2000000 > 6C02 A0F2000002 > 01029000", "01029000"},
        {CardChannel::Protocol::T0, {0, 0xa4, 0, 4, {0x3f, 0}, 256}, "00A40004023F00 > 6102 00C0000002 > 01026101 00C0000001 > 039000", "0102039000"},
        {CardChannel::Protocol::T1, {0, 0xa4, 0, 4, {0x3f, 0}, 256}, "00A40004023F0000 > 01029000", "01029000"},
        {CardChannel::Protocol::T0, {0x80, 0xc2, 0, 0, {1}, 256}, "80C200000101 > 6100 00C0000000 > 6C02 00C0000002 > 01029105", "01029105"},
        {CardChannel::Protocol::T0, {0xa0, 0xa4, 0, 0, {0x7f, 0x20}, 256}, "A0A40000027F20 > 9F02 A0C0000002 > 01029000", "01029000"},
        {CardChannel::Protocol::T0, {0, 0xb2, 1, 4, {}, 5}, "00B2010405 > 6C03 00B2010403 > 6C04", "6C04"},
        {CardChannel::Protocol::T0, {0, 0xb2, 1, 4, {}, 5}, "00B2010405 > 90", ""}, // no status words
    };
    for (const auto &test : cases) {
        Wire wire;
        wire.protocol = test.protocol;
        wire.add(test.script);
        FakeChannel channel(wire);
        Apdu command = test.command;
        const auto answer = exchange(channel, command, [](const ApduTraffic &) {});
        const std::string result = answer ? hex(answer->data) + hex(Bytes{uint8_t(answer->status >> 8), uint8_t(answer->status)}) : "";
        EXPECT_EQ(result, test.result) << test.script;
        EXPECT_TRUE(wire.script.empty()) << test.script;
    }
    Wire endless;
    endless.otherwise = "6110";
    FakeChannel channel(endless);
    Apdu command{0, 0xa4, 0, 4, {0x3f, 0}, 256};
    EXPECT_FALSE(isDone(exchange(channel, command, [](const ApduTraffic &) {})->status));
    EXPECT_LT(endless.transmits, 100);
}

TEST_F(TestToolkitCard, findsTheApplication)
{
    const std::string directory = "00A40004023F00 > 9000 00A40004022F00 > 611A 00C000001A > 62" + counted("8205 4221000C02 83022F00") + "9000 ";
    const std::string toGsm = "A0A40000023F00 > 9F16 A0C0000016 > 009000 A0A40000027F20 > ";
    const std::string chv = "00000000000000000000000000"; // up to the file's characteristics
    struct {
        std::string script;
        std::vector<std::string> told;
    } const cases[] = {
        {directory + "00B201040C > 61" + counted("4F05A000000003") + "00000000009000 00B202040C > 61" + counted("4F08A000000087100201") + "9000 "
             "00A4040408A000000087100201 > " + WithoutPin + Ready, {"- Reader: a USIM"}},
        {directory + "00B201040C > 6A83 " + SelectUsim + WithoutPin + Ready, {"- Reader: a USIM"}},
        {"00A40004023F00 > 6E00 " + toGsm + chv + "8000000000009000 A0" + Profile + " > 9000 ", {"- Reader: a 2G SIM"}},
        {FindUsim + SelectUsim + "6A82 " + toGsm + chv + "8000000000009000 A0" + Profile + " > 9000 ", {"- Reader: a 2G SIM"}},
        {"00A40004023F00 > 6D00 " + toGsm + chv + "0000000000839000 ", {"- Reader: a 2G SIM", "PIN? 3"}},
        {"00A40004023F00 > 6A82 A0A40000023F00 > 6E00 ", {"! Reader: no SIM application on this card (a bank card?)", "removed"}},
        {FindUsim + SelectUsim + "6A82 A0A40000023F00 > 9000 A0A40000027F20 > 9404 ", {"! Reader: no SIM application on this card (a bank card?)", "removed"}},
        {FindUsim + SelectUsim + WithPin + "0020000100 > 9000 " + Ready, {"- Reader: a USIM"}},
        {FindUsim + SelectUsim + "620EC60C90014083010183011183018190009000 0020001100 > 63C3 ", {"- Reader: a USIM", "PIN? 3"}},
        {FindUsim + SelectUsim + WithPin + "0020000100 > 6983 " + Ready, {"- Reader: a USIM", "! Reader: the PIN of this card is blocked; only its PUK, in a telephone, helps"}},
    };
    for (const auto &test : cases) {
        card.powerOn(now);
        play(test.script, test.told, 1s);
        card.powerOff();
        run(10s);
        log.lines.clear();
    }
}

} // namespace
