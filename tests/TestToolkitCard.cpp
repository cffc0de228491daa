#include <gtest/gtest.h>

#include <cstring>
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
std::string respond(const std::string &details, const std::string &result, const std::string &status = "9000",
                    const char *cla = "80")
{
    return cla + ("140000" + counted("8103" + details + "82028281 83" + result)) + " > " + status + ' ';
}

std::string envelope(const std::string &data, const std::string &status = "9000")
{
    return "80C20000" + counted(data) + " > " + status + ' ';
}

std::string waiting(const std::string &objects) // the status that announces such a command
{
    return hex(Bytes{0x91, uint8_t(packed(objects).size() / 2 + 11)});
}

const std::string Profile = "100000" + counted(hex(cat::terminalProfile()));
const std::string FindUsim = "00A40004023F00 > 9000 00A40004022F00 > 6A82 ";
const std::string SelectUsim = "00A4040407A0000000871002 > ";
// File control parameters: the PIN in use, or not.
const std::string WithPin = "620BC609900180830101830181"
                            "9000 ";
const std::string WithoutPin = "620BC609900140830101830181"
                               "9000 ";
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
    void play(const std::string &script, const std::vector<std::string> &told, Card::Clock::duration time = 0ms)
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
        play(FindUsim + SelectUsim + WithoutPin + "80" + Profile + " > " + waiting(Menu) + " 80F2010C00 > 9000 " +
                 fetch("012500", Menu),
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
        {CardChannel::Protocol::T0,
         {0, 0xa4, 0, 4, {0x3f, 0}, 256},
         "00A40004023F00 > 6102 00C0000002 > 01026101 00C0000001 > 039000",
         "0102039000"},
        {CardChannel::Protocol::T1, {0, 0xa4, 0, 4, {0x3f, 0}, 256}, "00A40004023F0000 > 01029000", "01029000"},
        {CardChannel::Protocol::T0,
         {0x80, 0xc2, 0, 0, {1}, 256},
         "80C200000101 > 6100 00C0000000 > 6C02 00C0000002 > 01029105",
         "01029105"},
        {CardChannel::Protocol::T0,
         {0xa0, 0xa4, 0, 0, {0x7f, 0x20}, 256},
         "A0A40000027F20 > 9F02 A0C0000002 > 01029000",
         "01029000"},
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
        const std::string result =
            answer ? hex(answer->data) + hex(Bytes{uint8_t(answer->status >> 8), uint8_t(answer->status)}) : "";
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
    const std::string directory =
        "00A40004023F00 > 9000 00A40004022F00 > 611A 00C000001A > 62" + counted("8205 4221000C02 83022F00") + "9000 ";
    const std::string toGsm = "A0A40000023F00 > 9F16 A0C0000016 > 009000 A0A40000027F20 > ";
    const std::string chv = "00000000000000000000000000"; // up to the file's characteristics
    struct {
        std::string script;
        std::vector<std::string> told;
    } const cases[] = {
        {directory + "00B201040C > 61" + counted("4F05A000000003") + "00000000009000 00B202040C > 61" +
             counted("4F08A000000087100201") +
             "9000 "
             "00A4040408A000000087100201 > " +
             WithoutPin + Ready,
         {"- Reader: a USIM"}},
        {directory + "00B201040C > 6A83 " + SelectUsim + WithoutPin + Ready, {"- Reader: a USIM"}},
        {"00A40004023F00 > 6E00 " + toGsm + chv + "8000000000009000 A0" + Profile + " > 9000 ", {"- Reader: a 2G SIM"}},
        {FindUsim + SelectUsim + "6A82 " + toGsm + chv + "8000000000009000 A0" + Profile + " > 9000 ",
         {"- Reader: a 2G SIM"}},
        {"00A40004023F00 > 6D00 " + toGsm + chv + "0000000000839000 ", {"- Reader: a 2G SIM", "PIN? 3"}},
        {"00A40004023F00 > 6A82 A0A40000023F00 > 6E00 ",
         {"! Reader: no SIM application on this card (a bank card?)", "removed"}},
        {FindUsim + SelectUsim + "6A82 A0A40000023F00 > 9000 A0A40000027F20 > 9404 ",
         {"! Reader: no SIM application on this card (a bank card?)", "removed"}},
        {FindUsim + SelectUsim + WithPin + "0020000100 > 9000 " + Ready, {"- Reader: a USIM"}},
        {FindUsim + SelectUsim + "620EC60C90014083010183011183018190009000 0020001100 > 63C3 ",
         {"- Reader: a USIM", "PIN? 3"}},
        {FindUsim + SelectUsim + WithPin + "0020000100 > 6983 " + Ready,
         {"- Reader: a USIM", "! Reader: the PIN of this card is blocked; only its PUK, in a telephone, helps"}},
    };
    for (const auto &test : cases) {
        card.powerOn(now);
        play(test.script, test.told, 1s);
        card.powerOff();
        run(10s);
        log.lines.clear();
    }
}

TEST_F(TestToolkitCard, asksForThePin)
{
    card.powerOn(now);
    play(FindUsim + SelectUsim + WithPin + "0020000100 > 63C2", {"- Reader: a USIM", "PIN? 2"});
    run(60s); // nothing is sent by itself
    const auto enter = [&](const char *digits, int request) {
        card.answerPin(request, CardHost::Pin(digits, std::strlen(digits)), now);
    };
    enter("9999", log.request - 1); // an answer to another request
    play("", {});
    enter("1234", log.request);
    play("002000010831323334FFFFFFFF > 63C1", {"PIN.", "PIN? 1 wrong"});
    EXPECT_EQ(log.traffic.back(), "0020000108FFFFFFFFFFFFFFFF>63C1");
    enter("12345678", log.request);
    play("00200001083132333435363738 > 6C08 " + Ready,
         {"PIN.", "! Reader: the PIN could not be checked: the card answers 6C08 (another length was expected)"});
}

TEST_F(TestToolkitCard, goesOnBehindThePin)
{
    const std::string toGsm =
        "00A40004023F00 > 6E00 A0A40000023F00 > 9000 A0A40000027F20 > " + std::string(36, '0') + "839000 ";
    struct {
        std::string start, digits, script;
        std::vector<std::string> told;
    } const cases[] = {
        {toGsm, "0000", "A02000010830303030FFFFFFFF > 9000 A0" + Profile + " > 9000", {"PIN."}},
        {toGsm, "0000", "A02000010830303030FFFFFFFF > 9804", {"PIN.", "PIN? 2 wrong"}},
        {toGsm,
         "0000",
         "A02000010830303030FFFFFFFF > 9840 A0" + Profile + " > 9000",
         {"PIN.", "! Reader: the PIN of this card is blocked; only its PUK, in a telephone, helps"}},
        {toGsm, "000", "A0" + Profile + " > 9000", {"PIN.", "! Reader: the card goes on without its PIN"}},
        {toGsm, "0000", "A02000010830303030FFFFFFFF > gone", {"PIN.", "removed"}},
    };
    for (const auto &test : cases) {
        card.powerOn(now);
        play(test.start, {"- Reader: a 2G SIM", "PIN? 3"});
        card.answerPin(log.request, CardHost::Pin(test.digits.c_str(), test.digits.size()), now);
        play(test.script, test.told);
        card.powerOff();
        log.lines.clear();
    }
}

TEST_F(TestToolkitCard, answersForTheUser)
{
    struct {
        std::string details, objects;
        Result answer;
        const char *text; // entered, or the number of the item that was chosen
        std::string result;
    } const cases[] = {
        {"012180", Text, Result::Performed, nullptr, "0100"},
        {"012180", Text, Result::BackwardMove, nullptr, "0111"},
        {"012180", Text, Result::Cancelled, nullptr, "0110"},
        {"012180", Text, Result::Terminated, nullptr, "0110"},
        {"012180", Text, Result::NotSupported, nullptr, "0130"},
        {"012180", Text, Result::Other, nullptr, "022000"},
        {"012401", "850141 8F020742 8F020943", Result::Performed, "9", "0100 900109"},
        {"012200", Text, Result::Performed, "#", "0100 8D020423"},
        {"012203", Text, Result::Performed, "\xd0\x96", "0100 8D03080416"},
        {"012204", Text, Result::Performed, "1", "0100 8D020401"},
        {"012204", Text, Result::Performed, "0", "0100 8D020400"},
        {"012200", Text + "84020105", Result::Performed, "5", "0100 84020103 8D020435"}, // 3 s
        {"012301", Text + "91020105", Result::Performed, "12", "0100 8D03043132"},
        {"012309", Text + "91020105", Result::Performed, "12345678", "0100 8D080031D98C56B3DD70"},
        {"012301", Text + "91020005", Result::Performed, "", "0100 8D00"},
        {"011000", "850141 86029121", Result::NotSupported, nullptr, "0130"},
        {"011200", "8A020F41", Result::Unable, nullptr, "022004"},
    };
    start();
    select("910B " + fetch("010400", "") + respond("010400", "0100"), {"POLLING OFF: performed", "end"});
    for (const auto &test : cases) {
        SCOPED_TRACE(test.details + ' ' + test.objects + ' ' + test.result);
        card.selectMenuItem(1, now);
        wire.add(Select1 + waiting(test.objects) + ' ' + fetch(test.details, test.objects));
        run(3s);
        ASSERT_EQ(log.lines.size(), 1u);
        log.lines.clear();
        TerminalResponse response;
        response.result = test.answer;
        if (test.text && test.details == "012401")
            response.item = std::atoi(test.text);
        else if (test.text)
            response.text = test.text;
        card.respond(response, now);
        play(respond(test.details, test.result), {"end"});
    }
    card.selectMenuItem(1, now);
    play(Select1 + waiting(Text + "91020408") + ' ' + fetch("012305", Text + "91020408"), {"GET INPUT"});
    TerminalResponse entered;
    entered.text = "1234";
    card.respond(entered, now);
    play(respond("012305", "0100 8D050431323334"), {"end"});
    EXPECT_EQ(log.traffic.back(),
              "8014000013810301230582028281830100"
              "8D0504FFFFFFFF>9000");

    // Nobody answered, or the session was ended: what the card says to that is nobody's news.
    for (const bool noResponse : {true, false}) {
        card.selectMenuItem(1, now);
        play(Select1 + waiting(Text) + ' ' + ShowText, {"DISPLAY TEXT"});
        if (noResponse)
            card.respond({Result::NoResponse}, now);
        else
            card.endSession();
        play(respond("012180", noResponse ? "0112" : "0110"), {});
    }
}

TEST_F(TestToolkitCard, answersForTheModem)
{
    struct {
        std::string details, objects, result;
        std::string told;
    } const cases[] = {
        {"010200", "", "0100", "MORE TIME: performed"},
        {"010300", "8402003C", "0100 8402003C", "POLL INTERVAL (3600 s): performed"},
        {"010300", "84020200", "0100 84020101", "POLL INTERVAL (1 s): performed"},
        {"013501", "2D026465", "0100", "LANGUAGE NOTIFICATION (de): performed"},
        {"012604", "", "0100 AD02656E", "PROVIDE LOCAL INFORMATION (language): performed"},
        {"012600", "", "022004",
         "PROVIDE LOCAL INFORMATION (qualifier 0): terminal currently unable to process command"},
        {"012601", "", "022000",
         "PROVIDE LOCAL INFORMATION (qualifier 1): terminal currently unable to process command"},
        {"0126FF", "", "0130", "PROVIDE LOCAL INFORMATION (qualifier 255): command beyond terminal's capabilities"},
        {"010500", "990107", "0100", "SET UP EVENT LIST: performed"},
        {"010500", "990105", "0130", "SET UP EVENT LIST: command beyond terminal's capabilities"},
        {"010500", "9900", "0100", "SET UP EVENT LIST: performed"},
        {"012702", "A40101", "0124 A40101",
         "TIMER MANAGEMENT (timer 1): action in contradiction with the current timer state"},
        {"012700", "A40101 A503001000", "0100 A40101", "TIMER MANAGEMENT (timer 1, 60 s): performed"},
        {"012702", "A40101", "0100 A40101 A503001000", "TIMER MANAGEMENT (timer 1): performed"},
        {"012701", "A40101", "0100 A40101 A503001000", "TIMER MANAGEMENT (timer 1): performed"},
        {"010107", "", "0130", "REFRESH (qualifier 7): command beyond terminal's capabilities"},
    };
    start();
    for (const auto &test : cases) {
        SCOPED_TRACE(test.told);
        select(waiting(test.objects) + ' ' + fetch(test.details, test.objects) + respond(test.details, test.result),
               {test.told, "end"});
    }
}

TEST_F(TestToolkitCard, pollsAndTellsTimers)
{
    const std::string status = "80F2000C00 > 9000 ";
    const std::string expired = envelope("D70C 82028281 A40102 A503000021");
    start();
    play("", {}, 29s);
    play(status, {}, 1s);
    select("910F " + fetch("010300", "84020105") + respond("010300", "0100 84020105", "9113") + // 5 s
               fetch("012700", "A40102 A503000021") + respond("012700", "0100 A40102"), // 12 s
           {"POLL INTERVAL (5 s): performed", "TIMER MANAGEMENT (timer 2, 12 s): performed", "end"});
    play(status + status + expired + status, {"end"}, 15s);
    // While the user reads, nothing is asked, and a timer that ran out waits.
    select("9113 " + fetch("012700", "A40102 A503000021") + respond("012700", "0100 A40102", waiting(Text)) + ShowText,
           {"TIMER MANAGEMENT (timer 2, 12 s): performed", "DISPLAY TEXT"});
    play("", {}, 60s);
    card.respond({}, now);
    play(respond("012180", "0100", "910B") + fetch("010400", "") + respond("010400", "0100") + expired,
         {"POLLING OFF: performed", "end", "end"});
    play("", {}, 600s);
}

TEST_F(TestToolkitCard, reportsEvents)
{
    start();
    select("910F " + fetch("010500", "99020407") + respond("010500", "0100"), {"SET UP EVENT LIST: performed", "end"});
    select("9000 " + envelope("D607 990104 82028281"), {"end", "end"});
    select("9000", {"end"}); // told once
    card.setLanguage("fr", now);
    card.setLanguage("fr", now);
    play(envelope("D60B 990107 82028281 AD026672"), {"end"});
}

TEST_F(TestToolkitCard, triesAgainWhereTheToolkitIsBusy)
{
    start();
    card.selectMenuItem(1, now);
    play(Select1 + "9300", {});
    play("", {}, 99ms);
    play(Select1 + "9300", {}, 1ms);
    play("", {}, 199ms);
    play(Select1 + "9000", {"end"}, 1ms);

    wire.otherwise = "9300";
    card.selectMenuItem(1, now);
    run(40s);
    EXPECT_EQ(std::exchange(log.lines, {}),
              (std::vector<std::string>{
                  "! Reader: the card answers MENU SELECTION with 9300 (the card's toolkit is busy)", "end"}));
    EXPECT_LT(wire.transmits, 40);
}

TEST_F(TestToolkitCard, endsTheSessionOnErrors)
{
    start();
    select("6F00", {"! Reader: the card answers MENU SELECTION with 6F00 (technical problem of the card)", "end"});
    select("6200", {"end"}); // a warning
    select("910C 801200000C > 6D00",
           {"! Reader: the card answers FETCH with 6D00 (the card does not know the command)", "end"});
    select(
        "910C 801200000C > 9000 " + respond("000000", "0132", "6F00"),
        {"UNKNOWN COMMAND (no proactive command: expected tag D0 at byte 0): command data not understood by terminal",
         "! Reader: the card answers TERMINAL RESPONSE with 6F00 (technical problem of the card)", "end"});
    // A selection that comes in between waits for its turn, and the last one counts.
    select(waiting(Text) + ' ' + ShowText, {"DISPLAY TEXT"});
    card.respond({Result::Terminated}, now);
    card.selectMenuItem(7, now);
    card.selectMenuItem(1, now);
    play(respond("012180", "0110") + Select1 + "9000", {"end"});
}

TEST_F(TestToolkitCard, doesNotWaitForTheReaderOfAnImmediateText)
{
    const std::string shown = Text + "AB00";
    start();
    for (const bool read : {true, false}) {
        select(waiting(shown) + ' ' + fetch("012180", shown) + respond("012180", "0100"), {"DISPLAY TEXT"});
        if (read)
            card.respond({}, now);
        else
            card.respond({Result::NoResponse}, now);
        if (read)
            play("", {"end"});
        else
            play("", {});
    }
    // The next command takes the text's place.
    select(waiting(shown) + ' ' + fetch("012180", shown) + respond("012180", "0100", waiting(Text)) + ShowText,
           {"DISPLAY TEXT", "DISPLAY TEXT"});
    card.respond({Result::BackwardMove}, now);
    play(respond("012180", "0111"), {"end"});
}

TEST_F(TestToolkitCard, refreshes)
{
    start();
    const std::string again = SelectUsim + WithoutPin + "80F2010C00 > 9000 ";
    struct {
        std::string details, script;
    } const cases[] = {
        {"010100", respond("010100", "0100") + again}, {"010101", respond("010101", "0100")},
        {"010102", respond("010102", "0100") + again}, {"010103", respond("010103", "0100") + again},
        {"010105", respond("010105", "0100") + again}, {"010106", respond("010106", "0100") + again},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.details);
        const std::string files = test.details == "010101" ? "9203013F00" : "";
        select(waiting(files) + ' ' + fetch(test.details, files), {"REFRESH"});
        card.respond({}, now);
        play(test.script, {"end"});
    }
    EXPECT_EQ(wire.connects, 1);
    select("910B " + fetch("010104", ""), {"REFRESH"});
    card.respond({}, now);
    play(FindUsim + SelectUsim + WithoutPin + Ready, {"end", "- Reader: a USIM"});
    EXPECT_EQ(wire.connects, 2);
    play("", {"! Reader: this card has no toolkit menu"}, 3s);
}

TEST_F(TestToolkitCard, survivesTheCardsRemovalAtEachStep)
{
    const std::string session = Select1 + waiting(Text) + ' ' + ShowText + respond("012180", "0100", "910B") +
        fetch("010200", "") + respond("010200", "0100");
    const std::string whole = FindUsim + SelectUsim + WithoutPin + "80" + Profile + " > " + waiting(Menu) +
        " 80F2010C00 > 9000 " + fetch("012500", Menu) + respond("012500", "0100") + session;
    Wire count;
    count.add(whole);
    for (size_t last = 0; last < count.script.size(); ++last) {
        for (const bool noticed : {true, false}) { // by the exchange that fails, or by looking
            SCOPED_TRACE(std::to_string(last) + ' ' + count.script[last].command);
            wire.script = count.script;
            wire.script.resize(last + 1);
            if (noticed)
                wire.script[last].answer = "gone";
            card.powerOn(now);
            for (int turn = 0; turn < 50 && !wire.script.empty(); ++turn, step()) {
                card.respond({}, now);
                if (wire.script.front().command == Select1.substr(0, Select1.find(' ')))
                    card.selectMenuItem(1, now);
            }
            now += 250ms;
            wire.status = {CardChannel::State::NoCard, "no card"};
            wire.present = false;
            run(3s);
            EXPECT_EQ(wire.script.size(), 0u);
            ASSERT_GE(log.lines.size(), 2u);
            EXPECT_EQ(log.lines[log.lines.size() - 2], "removed");
            EXPECT_EQ(std::exchange(log.lines, {}).back(), "! no card");
            wire.status = {CardChannel::State::Ready, "Reader"};
            play(FindUsim + SelectUsim + WithoutPin + Ready, {"ready", "- Reader: a USIM"}, 1s);
            card.powerOff();
        }
    }
}

TEST_F(TestToolkitCard, tellsWhatIsInTheWayOnce)
{
    using State = CardChannel::State;
    card.powerOn(now);
    wire.status = {State::NoDaemon, "no daemon"};
    play("", {"! no daemon", "removed"}, 5s);
    EXPECT_EQ(wire.connects, 6);
    wire.status = {State::InUse, "in use"};
    play("", {"! in use"}, 5s);
    wire.status = {State::Ready, "Reader"};
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00",
         {"ready", "! Reader: no SIM application on this card (a bank card?)", "removed"}, 60s);
    wire.present = false;
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00",
         {"ready", "! Reader: no SIM application on this card (a bank card?)", "removed"}, 2s);
    card.powerOff();
    EXPECT_EQ(card.wakeUp(), Card::Time::max());
}

TEST_F(TestToolkitCard, slowsAnEndlessChainDown)
{
    start();
    wire.add(Select1 + "910B");
    card.selectMenuItem(1, now);
    const std::string more = fetch("010200", "");
    for (int i = 0; i < 2000; ++i)
        wire.add(more + respond("010200", "0100", "910B"));
    for (const Card::Time end = now + 60s; now < end; now = std::max(now + 1us, card.wakeUp()))
        card.nextEvent(now);
    EXPECT_LT(4000 - wire.script.size(), 2u * (64 + 100 + 60));
    EXPECT_GT(4000 - wire.script.size(), 2u * 64);
}

} // namespace
