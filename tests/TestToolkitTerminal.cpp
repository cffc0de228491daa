#include <gtest/gtest.h>

#include <deque>
#include <fstream>
#include <map>
#include <cstring>
#include <regex>
#include <sstream>

#include "reader/ReaderPort.h"
#include "toolkit/ToolkitTerminal.h"
#include "cat/Hex.h"

using namespace std::chrono_literals;
using cat::Bytes;
using Result = TerminalResponse::Result;

namespace {

Bytes bytes(const std::string &hex)
{
    return cat::fromHex(hex).value();
}

// A card that plays a script of "command > answer"; the answer "gone" takes it out.
struct Wire {
    std::deque<std::pair<std::string, std::string>> script;
    std::string otherwise; // the answer to everything when the script is over; empty: a failure
    CardChannel::Status status{CardChannel::State::Ready, "Reader", {}};
    CardChannel::Protocol protocol = CardChannel::Protocol::T0;
    bool present = true;
    bool isAmongOthers = false; // there is another card to go on to
    int connects = 0, transmits = 0;

    void add(const std::string &text)
    {
        std::istringstream words(text);
        for (std::string command, arrow, answer; words >> command >> arrow >> answer;)
            script.push_back({command, answer});
    }
};

CardChannel::Status trouble(CardChannel::State state, const std::string &text)
{
    return {state, {}, {{}, {}, text, true}};
}

struct FakeChannel : CardChannel {
    explicit FakeChannel(Wire &owner)
        : wire(owner)
    {
    }
    Status connect() override
    {
        ++wire.connects;
        wire.present = wire.status.state == State::Ready;
        return wire.status;
    }
    void disconnect() override { }
    bool passOver() override { return std::exchange(wire.isAmongOthers, false); }
    bool isPresent() override { return wire.present; }
    Protocol protocol() const override { return wire.protocol; }
    std::optional<Bytes> transmit(cat::ByteView command) override
    {
        ++wire.transmits;
        std::string answer = wire.otherwise;
        if (!wire.script.empty()) {
            EXPECT_EQ(cat::toHex(command), wire.script.front().first);
            answer = wire.script.front().second;
            wire.script.pop_front();
        }
        EXPECT_NE(answer, "") << "after the script: " << cat::toHex(command);
        wire.present = answer != "gone";
        return !wire.present || answer == "silent"
            ? std::nullopt
            : std::optional<Bytes>(bytes(answer + (answer.empty() ? "6F00" : "")));
    }
    Wire &wire;
};

// Everything that is told of the card, one line each.
struct Log : PortReports {
    std::string told; // separated by semicolons
    std::vector<std::string> traffic;

    int request = 0;

    void tell(const std::string &line) { told += (told.empty() ? "" : "; ") + line; }
    void exchanged(const PortTraffic &apdu) override
    {
        traffic.push_back(cat::toHex(apdu.command) + ">" + cat::toHex(apdu.response));
    }
    void answeredByTerminal(const std::string &command, const std::string &result) override
    {
        tell(command + ": " + result);
    }
    void noticed(const Notice &notice) override
    {
        tell((notice.problem ? "! " : "- ") + notice.text);
    }
    void pinWanted(const PinRequest &wanted) override
    {
        request = wanted.id;
        tell("PIN? " + std::to_string(wanted.triesLeft) + (wanted.wrong ? " wrong" : ""));
    }
    void pinDone() override { tell("PIN."); }
};

std::string name(const CardEvent &event)
{
    if (const auto *command = std::get_if<ProactiveCommand>(&event))
        return commandName(command->body);
    const char *const names[] = {"", "end", "timeout", "removed", "ready"};
    return names[event.index()];
}

// The lines of a table, each a list of cells.
std::vector<std::vector<std::string>> rows(const std::string &table)
{
    std::vector<std::vector<std::string>> result;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> row;
        std::istringstream cells(std::regex_replace(line, std::regex(" *(\\||^|$) *"), "$1"));
        for (std::string cell; std::getline(cells, cell, '|');)
            row.push_back(cell);
        if (row.size() > 1)
            result.push_back(row);
    }
    return result;
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
    return cat::toHex(Bytes{uint8_t(data.size() / 2)}) + data;
}

// The card's proactive command, from the objects behind the command details on.
std::string fetch(const std::string &details, const std::string &objects)
{
    const std::string pdu = "D0" + counted("8103" + details + "82028182" + objects);
    return "80120000" + cat::toHex(Bytes{uint8_t(pdu.size() / 2)}) + " > " + pdu + "9000 ";
}

// The terminal's response, from the value of the result on.
std::string respond(const std::string &details, const std::string &result,
                    const std::string &status = "9000")
{
    return "80140000" + counted("8103" + details + "82028281 83" + result) + " > " + status + ' ';
}

std::string envelope(const std::string &data)
{
    return "80C20000" + counted(data) + " > 9000 ";
}

std::string waiting(const std::string &objects) // the status that announces such a command
{
    return cat::toHex(Bytes{0x91, uint8_t(packed(objects).size() / 2 + 11)});
}

// Names that stand for their text in scripts.
const std::map<std::string, std::string> Names = {
    {"FIND", "00A40004023F00 > 9000 00A40004022F00 > 6A82"},
    {"USIM", "00A4040407A0000000871002 >"},
    {"ISIM", "00A4040407A0000000871004 >"},
    {"GSM", "A0A40000023F00 > 9000 A0A40000027F20 >"},
    {"CHV", std::string(36, '0') + "839000"}, // enabled, three tries
    {"NOCHV", std::string(26, '0') + "8000000000839000"},
    {"PIN", "620BC6099001808301018301819000"}, // file control parameters, the PIN in use or not
    {"NOPIN", "620BC6099001408301018301819000"},
    {"PROFILE", "80100000" + counted(cat::toHex(cat::terminalProfile()))},
    {"PROFILE2G", "A0100000" + counted(cat::toHex(cat::terminalProfile()))},
    {"READY",
     "80100000" + counted(cat::toHex(cat::terminalProfile())) + " > 9000 80F2010C00 > 9000"},
    {"STATUS", "80F2000C00 > 9000"},
    {"SELECT1", "80C2000009D30782020181900101 >"},
};

std::string expanded(const std::string &script)
{
    std::istringstream words(script);
    std::string result;
    for (std::string word; words >> word; result += ' ') {
        const auto name = Names.find(word);
        result += name == Names.end() ? word : name->second;
    }
    return result;
}

const std::string Menu = "85034142438F03014441";
const std::string Text = "8D020441";
const std::string ShowText = fetch("012180", Text);
const std::string Reset = "FIND USIM NOPIN READY";
const char *const NoSim = "! Reader: no SIM application on this card (a bank card?); removed";

class TestToolkitTerminal : public testing::Test {
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
        log.tell(name(*event));
        if (const auto *command = std::get_if<ProactiveCommand>(&*event))
            asked = *command;
        if (std::holds_alternative<ModemReady>(*event))
            card.powerOn(now);
    }

    // The script is played to its end within the time, and all this is told.
    void play(const std::string &script, const std::string &told, Card::Clock::duration time = 0ms)
    {
        SCOPED_TRACE(script);
        wire.add(expanded(script));
        run(time);
        EXPECT_EQ(wire.script.size(), 0u) << "next: " << wire.script.front().first;
        wire.script.clear();
        EXPECT_EQ(std::exchange(log.told, {}), told);
    }

    // A card with a menu, no PIN, and a session for every selection.
    void start()
    {
        card.powerOn(now);
        play("FIND USIM NOPIN PROFILE > " + waiting(Menu) + " 80F2010C00 > 9000 " +
                 fetch("012500", Menu),
             "- Reader: a USIM; SET UP MENU");
        card.respond({}, now);
        play(respond("012500", "0100"), "end");
    }
    void select(const std::string &script, const std::string &told)
    {
        card.selectMenuItem(1, now);
        play("SELECT1 " + script, told);
    }
    // The card sends a command in a session of its own, and more.
    void offer(const std::string &details, const std::string &objects, const std::string &told,
               const std::string &more = "")
    {
        select(waiting(objects) + ' ' + fetch(details, objects) + more, told);
    }
    void answerPin(const std::string &digits)
    {
        card.answerPin(log.request, Pin(digits.data(), digits.size()), now);
    }

    Wire wire;
    Log log;
    ToolkitTerminal card{
        std::make_unique<ReaderPort>(std::make_unique<FakeChannel>(wire), "name", log), "name",
        "en", log};
    Card::Time now = Card::Time() + 24h;
    ProactiveCommand asked; // last
};

TEST(TestApdu, followsTheStatusWords)
{
    // The command, its data and the length expected; what goes over the wire; the result.
    for (const auto &row : rows(R"(
        T0 | 80F2000C |      |     | 80F2000C00 > 9000                                                | 9000
        T1 | 80F2000C |      |     | 80F2000C > 9000                                                  | 9000
        T0 | A0F20000 |      | 256 | A0F2000000 > 6C02 A0F2000002 > 01029000                          | 01029000
        T0 | 00A40004 | 3F00 | 256 | 00A40004023F00 > 6102 00C0000002 > 01026101 00C0000001 > 039000  | 0102039000
        T1 | 00A40004 | 3F00 | 256 | 00A40004023F0000 > 01029000                                      | 01029000
        T0 | 80C20000 | 01   | 256 | 80C200000101 > 6100 00C0000000 > 6C02 00C0000002 > 01029105      | 01029105
        T0 | A0A40000 | 7F20 | 256 | A0A40000027F20 > 9F02 A0C0000002 > 01029000                      | 01029000
        T0 | 00B20104 |      | 5   | 00B2010405 > 6C03 00B2010403 > 6C04                              | 6C04
        T0 | A0F20000 |      | 22  | A0F2000016 > 6702 A0F2000002 > 01029000                          | 01029000
        T0 | A0F20000 |      | 22  | A0F2000016 > 6700                                                | 6700
        T0 | 80F20000 |      | 22  | 80F2000016 > 6702                                                | 6702
        T0 | 00A40004 | 3F00 | 256 | 00A40004023F00 > 6283 00C0000000 > 6C02 00C0000002 > 01029000    | 01026283
        T0 | 80C20000 | 01   | 256 | 80C200000101 > 6200 00C0000000 > 6D00                            | 6200
        T0 | 80C20000 | 01   | 256 | 80C200000101 > 6300 00C0000000 > 9105                            | 9105
        T0 | 00200001 | 01   |     | 002000010101 > 63C2                                              | 63C2
        T1 | 80C20000 | 01   | 256 | 80C20000010100 > 6200                                            | 6200
        T0 | 00B20104 |      | 5   | 00B2010405 > 90                                                  | none)")) {
        Wire wire;
        wire.protocol = row[0] == "T1" ? CardChannel::Protocol::T1 : CardChannel::Protocol::T0;
        wire.add(row[4]);
        FakeChannel channel(wire);
        const Bytes header = bytes(row[1]);
        Apdu command{header[0], header[1], header[2], header[3], bytes(row[2])};
        if (!row[3].empty())
            command.expected = static_cast<uint16_t>(std::stoi(row[3]));
        const auto answer = exchange(channel, command, [](const PortTraffic &) {});
        const auto status = [&] {
            return cat::toHex(Bytes{uint8_t(answer->status >> 8), uint8_t(answer->status)});
        };
        EXPECT_EQ(answer ? cat::toHex(answer->data) + status() : "none", row[5]);
        EXPECT_TRUE(wire.script.empty()) << row[4];
    }
    Wire endless;
    endless.otherwise = "6110";
    FakeChannel channel(endless);
    Apdu command{0, 0xa4, 0, 4, {0x3f, 0}, 256};
    EXPECT_FALSE(isDone(exchange(channel, command, [](const PortTraffic &) {})->status));
    EXPECT_LT(endless.transmits, 100);
}

TEST(TestNotices, sayWhatTheEnglishCatalogueSays)
{
    std::ifstream file(STK_SOURCE_DIR "/translations/host_en.ts");
    const std::string all{std::istreambuf_iterator<char>(file), {}};
    for (int id = 0; id <= static_cast<int>(LastNoticeId); ++id) {
        const Notice notice = noticeOf(static_cast<NoticeId>(id), {"%1", "%2", "%3"});
        const size_t source = all.find('>' + notice.id + '<');
        const size_t text = all.find("translation>", source) + std::strlen("translation>");
        EXPECT_EQ(all.substr(text, all.find('<', text) - text), notice.text) << notice.id;
    }
    const Notice refused =
        noticeOf(NoticeId::CardRefuses, {"%3", "A", statusDigits(0x6f00)}, statusMeaning(0x6f00));
    EXPECT_EQ(refused.text, "%3: the card answers A with 6F00 (technical problem of the card)");
    EXPECT_EQ(refused.arguments, (std::vector<std::string>{"%3", "A", "6F00"}));
}

TEST_F(TestToolkitTerminal, findsTheApplication)
{
    for (const auto &row : rows(R"(
        00A40004023F00 > 9000 00A40004022F00 > 611A 00C000001A > 620B82054221000C0283022F009000 00B201040C > 61074F05A00000000300009000 00B202040C > 610A4F08A0000000871002019000 00A4040408A000000087100201 > NOPIN READY | - Reader: a USIM
        00A40004023F00 > 9000 00A40004022F00 > 620782054221000C019000 00B201040C > 9000 USIM NOPIN READY | - Reader: a USIM
        00A40004023F00 > 9000 00A40004022F00 > 9000 00B2010400 > 6A83 USIM NOPIN READY | - Reader: a USIM
        00A40004023F00 > 6E00 GSM NOCHV PROFILE2G > 9000 | - Reader: a 2G SIM
        FIND USIM 6A82 ISIM 6A82 GSM NOCHV PROFILE2G > 9000 | - Reader: a 2G SIM
        00A40004023F00 > 6D00 GSM CHV                    | - Reader: a 2G SIM; PIN? 3
        00A40004023F00 > 6A82 A0A40000023F00 > 6E00      | ! Reader: no SIM application on this card (a bank card?); removed
        FIND USIM 6A82 ISIM 6A82 A0A40000023F00 > 6E00 00A40004027F20 > 6A82 00A40004022FE2 > 6A82 | ! Reader: no SIM application on this card (a bank card?); removed
        FIND USIM 6A82 ISIM 6A82 GSM 9404 00A40004027F20 > NOPIN READY | - Reader: a 2G SIM
        FIND USIM 6A82 ISIM 6A82 A0A40000023F00 > 6E00 00A40004027F20 > 6A82 00A40004022FE2 > 9000 0020000100 > 9000 READY | - Reader: a UICC without a USIM
        FIND USIM 6A82 ISIM NOPIN READY                  | - Reader: an ISIM
        00A40004023F00 > 9000 00A40004022F00 > 620782054221000C019000 00B201040C > 610A4F08A0000000871004019000 USIM 6A82 00A4040408A000000087100401 > NOPIN READY | - Reader: an ISIM
        FIND USIM PIN 0020000100 > 9000 READY            | - Reader: a USIM
        00A40004023F00 > 9300 FIND USIM 9300 USIM NOPIN READY | - Reader: a USIM
        FIND USIM 620EC60C90014083010183011183018190009000 0020001100 > 63C3 | - Reader: a USIM; PIN? 3
        FIND USIM 6211C60F9001408301019501088301118301819000 0020001100 > 63C3 | - Reader: a USIM; PIN? 3
        FIND USIM 6211C60F9001408301019501008301118301819000 READY | - Reader: a USIM
        FIND USIM PIN 0020000100 > 6700                  | - Reader: a USIM; PIN? 0
        FIND USIM PIN 0020000100 > 6983 READY            | - Reader: a USIM; ! Reader: the PIN of this card is blocked; only its PUK, in a telephone, helps)")) {
        card.powerOn(now);
        play(row[0], row[1], 1s);
        card.powerOff();
        run(10s);
        log.told.clear();
    }
}

TEST_F(TestToolkitTerminal, asksForThePin)
{
    card.powerOn(now);
    play("FIND USIM PIN 0020000100 > 63C2", "- Reader: a USIM; PIN? 2");
    card.answerPin(log.request - 1, Pin("9999", 4), now); // to another request
    play("", "", 60s); // nothing is sent by itself
    answerPin("1234");
    play("002000010831323334FFFFFFFF > 63C1", "PIN.; PIN? 1 wrong");
    EXPECT_EQ(log.traffic.back(), "0020000108FFFFFFFFFFFFFFFF>63C1");
    answerPin("12345678");
    play("00200001083132333435363738 > 6C08 READY", // never twice
         "PIN.; ! Reader: the PIN could not be checked: the card answers 6C08 (another length was "
         "expected)");
    for (const auto &row : rows(R"(
        0000 | A02000010830303030FFFFFFFF > 9000 PROFILE2G > 9000 | PIN.
        0000 | A02000010830303030FFFFFFFF > 9804                  | PIN.; PIN? 2 wrong
        0000 | A02000010830303030FFFFFFFF > 9840 PROFILE2G > 9000 | PIN.; ! Reader: the PIN of this card is blocked; only its PUK, in a telephone, helps
        000  | PROFILE2G > 9000                                   | PIN.; ! Reader: the card goes on without its PIN
        0000 | A02000010830303030FFFFFFFF > gone                  | PIN.; removed)")) {
        card.powerOff();
        log.told.clear();
        card.powerOn(now);
        play("00A40004023F00 > 6E00 GSM CHV", "- Reader: a 2G SIM; PIN? 3");
        answerPin(row[0]);
        play(row[1], row[2]);
    }
    EXPECT_EQ(log.traffic.back(), "A020000108FFFFFFFFFFFFFFFF>"); // the last one without an answer
}

TEST_F(TestToolkitTerminal, answersForTheUser)
{
    start();
    offer("010400", "", "POLLING OFF: performed; end",
          respond("010400", "0100")); // nothing comes in between
    // The command's details and objects; the user's answer after three seconds; what the card gets.
    for (const auto &row : rows(R"(
        012180 | 8D020441                   | ok           |   | 0100
        012180 | 8D020441 9E020001          | ok           |   | 0104
        012180 | 8D020441 84020103          | ok           |   | 0112
        012180 | 8D020441 84020103          | terminated   |   | 0110
        012180 | 8D020441 84020105          | ok           |   | 0100
        012180 | 8D020441 84020100          | ok           |   | 0100
        012100 | 8D020441 84020103          | ok           |   | 0100
        012401 | 8F020943 9F020001          | item         | 9 | 0104 900109
        012180 | 8D020441                   | back         |   | 0111
        012180 | 8D020441                   | cancelled    |   | 0110
        012180 | 8D020441                   | terminated   |   | 0110
        012180 | 8D020441                   | notSupported |   | 0130
        012180 | 8D020441                   | other        |   | 022000
        012401 | 850141 8F020742 8F020943   | item         | 9 | 0100 900109
        012200 | 8D020441                   | text         | # | 0100 8D020423
        012203 | 8D020441                   | text         | Ж | 0100 8D03080416
        012204 | 8D020441                   | text         | 1 | 0100 8D020401
        012204 | 8D020441                   | text         | 0 | 0100 8D020400
        012200 | 8D020441 84020105          | text         | 5 | 0100 84020103 8D020435
        012301 | 8D020441 91020105          | text         | 12 | 0100 8D03043132
        012309 | 8D020441 91020105          | text         | 12345678 | 0100 8D080031D98C56B3DD70
        012301 | 8D020441 91020005          | text         |   | 0100 8D00
        011000 | 850141 86029121            | notSupported |   | 0130
        011200 | 8A020F41                   | unable       |   | 022004
        012305 | 8D020441 91020408          | text         | 1234 | 0100 8D050431323334)")) {
        SCOPED_TRACE(row[0] + ' ' + row[1] + ' ' + row[4]);
        card.selectMenuItem(1, now);
        wire.add(expanded("SELECT1 " + waiting(row[1]) + ' ' + fetch(row[0], row[1])));
        run(3s);
        log.told.clear();
        TerminalResponse response;
        for (int result = 0; result <= static_cast<int>(Result::Other); ++result) {
            if (row[2] == resultName(static_cast<Result>(result)))
                response.result = static_cast<Result>(result);
        }
        if (row[2] == "item")
            response.item = std::stoi(row[3]);
        if (row[2] == "text")
            response.text = row[3];
        EXPECT_EQ(codeText(asked, response), StatusSuccess);
        card.respond(response, now);
        const bool nobody = row[4] == "0112";
        play(respond(row[0], row[4]),
             std::string(nobody ? "DISPLAY TEXT: no response from user; " : "") + "end");
    }
    // The last one was hidden.
    EXPECT_EQ(log.traffic.back(),
              "8014000013810301230582028281830100"
              "8D0504FFFFFFFF>9000");

    // Nobody answered, or the session was ended: what the card says to that is nobody's news.
    offer("012180", Text, "DISPLAY TEXT");
    card.respond({Result::NoResponse}, now);
    play(respond("012180", "0112"), "");
    offer("012180", Text, "DISPLAY TEXT");
    card.endSession();
    play(respond("012180", "0110"), "");
    offer("011200", "8A020F41", "SEND USSD");
    card.endSession();
    play(respond("011200", "022004"), "");
}

TEST_F(TestToolkitTerminal, answersForTheModem)
{
    start();
    for (const auto &row : rows(R"(
        010200 |                   | 0100                   | MORE TIME: performed
        010300 | 8402003C          | 0100 8402003C          | POLL INTERVAL (3600 s): performed
        010300 | 84020200          | 0100 84020101          | POLL INTERVAL (1 s): performed
        013501 | 2D026465          | 0100                   | LANGUAGE NOTIFICATION (de): performed
        012604 |                   | 0100 AD02656E          | PROVIDE LOCAL INFORMATION (language): performed
        012600 |                   | 022004                 | PROVIDE LOCAL INFORMATION (qualifier 0): terminal currently unable to process command
        012601 |                   | 022000                 | PROVIDE LOCAL INFORMATION (qualifier 1): terminal currently unable to process command
        0126FF |                   | 022000                 | PROVIDE LOCAL INFORMATION (qualifier 255): terminal currently unable to process command
        010500 | 990107            | 0100                   | SET UP EVENT LIST: performed
        010500 | 990105            | 0130                   | SET UP EVENT LIST: command beyond terminal's capabilities
        010500 | 9900              | 0100                   | SET UP EVENT LIST: performed
        012702 | A40101            | 0124 A40101            | TIMER MANAGEMENT (timer 1): action in contradiction with the current timer state
        012700 | A40101 A503001000 | 0100 A40101            | TIMER MANAGEMENT (timer 1, 60 s): performed
        012702 | A40101            | 0100 A40101 A503001000 | TIMER MANAGEMENT (timer 1): performed
        012701 | A40101            | 0100 A40101 A503001000 | TIMER MANAGEMENT (timer 1): performed
        012701 | A40101            | 0124 A40101            | TIMER MANAGEMENT (timer 1): action in contradiction with the current timer state
        010107 |                   | 0130                   | REFRESH (qualifier 7): command beyond terminal's capabilities)")) {
        offer(row[0], row[1], row[3] + "; end", respond(row[0], row[2]));
    }
}

TEST_F(TestToolkitTerminal, pollsAndTellsTimers)
{
    const std::string status = std::string(48, '0') + "9000 "; // of a 2G card, and its length
    card.powerOn(now);
    play("00A40004023F00 > 6E00 GSM NOCHV PROFILE2G > 9000 A0F2000016 > 6718 A0F2000018 > " +
             status + "A0F2000018 > " + status,
         "- Reader: a 2G SIM; ! Reader: this card has no toolkit menu", 60s);
    card.powerOff();
    const std::string timer = "A40102A503000021"; // 12 s
    const std::string started = "TIMER MANAGEMENT (timer 2, 12 s): performed";
    const std::string expired = envelope("D70C82028281" + timer);
    start();
    play("", "", 29s);
    play("STATUS", "", 1s);
    select("910F " + fetch("010300", "84020105") + respond("010300", "0100 84020105", "9113") +
               fetch("012700", timer) + respond("012700", "0100 A40102"),
           "POLL INTERVAL (5 s): performed; " + started + "; end");
    play("STATUS STATUS " + expired + " STATUS", "", 15s);
    // While the user reads, nothing is asked, and a timer that ran out waits.
    select("9113 " + fetch("012700", timer) + respond("012700", "0100 A40102", waiting(Text)) +
               ShowText,
           started + "; DISPLAY TEXT");
    play("", "", 60s);
    card.respond({}, now);
    play(respond("012180", "0100", "910B") + fetch("010400", "") + respond("010400", "0100") +
             expired.substr(0, 38) + " > 9000",
         "POLLING OFF: performed; end");
    play("", "", 600s);
}

TEST_F(TestToolkitTerminal, reportsEvents)
{
    start();
    offer("010500", "99020407", "SET UP EVENT LIST: performed; SET UP IDLE MODE TEXT",
          respond("010500", "0100", waiting(Text)) + fetch("012800", Text));
    card.respond({}, now); // which nobody does
    play(respond("012800", "0100"), "end");
    select("9000 " + envelope("D60799010482028281"), "end");
    select("9000", "end"); // told once
    card.setLanguage("fr", now);
    card.setLanguage("fr", now);
    play(envelope("D60B99010782028281AD026672"), "");
}

TEST_F(TestToolkitTerminal, triesAgainWhereTheToolkitIsBusy)
{
    start();
    select("9300", "");
    play("", "", 99ms);
    play("SELECT1 9300", "", 1ms);
    play("", "", 199ms);
    play("SELECT1 " + waiting(Text) + ' ' + ShowText.substr(0, 10) + " > 9300 ", "", 1ms);
    play(ShowText, "DISPLAY TEXT", 100ms);
    card.respond({}, now);
    play(respond("012180", "0100", "9300"), "");
    play(respond("012180", "0100", "9300") + respond("012180", "0100"), "end", 300ms);

    wire.otherwise = "9300";
    card.selectMenuItem(1, now);
    run(40s);
    EXPECT_EQ(
        log.told,
        "! Reader: the card answers MENU SELECTION with 9300 (the card's toolkit is busy); end");
    EXPECT_LT(wire.transmits, 40);
}

TEST_F(TestToolkitTerminal, endsTheSessionOnErrors)
{
    start();
    for (const auto &row : rows(R"(
        6F00                     | ! Reader: the card answers MENU SELECTION with 6F00 (technical problem of the card); end
        6200 00C0000000 > 6900   | end
        910C 801200000C > 6D00   | ! Reader: the card answers FETCH with 6D00 (the card does not know the command); end)"))
        select(row[0], row[1]);
    card.selectMenuItem(1, now);
    wire.add(expanded("SELECT1 910C 801200000C > 9000 ") + respond("000000", "0132", "6F00"));
    run(0ms);
    EXPECT_NE(log.told.find("command data not understood by terminal; ! Reader: the card answers "
                            "TERMINAL RESPONSE"),
              std::string::npos);
    log.told.clear();
    // A selection that comes in between waits for its turn, and the last one counts.
    offer("012180", Text, "DISPLAY TEXT");
    card.respond({Result::Terminated}, now);
    card.selectMenuItem(7, now);
    card.selectMenuItem(1, now);
    play(respond("012180", "0110") + "SELECT1 9000", "end");
}

TEST_F(TestToolkitTerminal, doesNotWaitForTheReaderOfAnImmediateText)
{
    const std::string shown = Text + "AB00";
    start();
    for (const Result result : {Result::Performed, Result::NoResponse}) {
        offer("012180", shown, "DISPLAY TEXT", respond("012180", "0100"));
        card.respond({result}, now);
        play("", result == Result::Performed ? "end" : "");
    }
    // A choice takes the place of the session that waits for the user.
    offer("012180", shown, "DISPLAY TEXT", respond("012180", "0100"));
    card.respond({Result::Terminated}, now);
    select("9000", "end");
    // The next command waits until the text is gone, the modem's own as well; a choice takes its
    // place.
    offer("012180", shown, "DISPLAY TEXT",
          respond("012180", "0100", waiting(Menu)) + fetch("012500", Menu));
    card.respond({}, now);
    play("", "SET UP MENU");
    card.respond({}, now);
    play(respond("012500", "0100"), "end");
    for (const bool choose : {false, true}) {
        offer("012180", shown, "DISPLAY TEXT", respond("012180", "0100", waiting(Text)) + ShowText);
        card.respond({}, now);
        if (choose) {
            card.selectMenuItem(1, now);
            play(respond("012180", "0110") + "SELECT1 9000", "end");
        } else {
            play("", "DISPLAY TEXT");
            card.respond({Result::BackwardMove}, now);
            play(respond("012180", "0111"), "end");
        }
    }
}

TEST_F(TestToolkitTerminal, refreshes)
{
    start();
    for (const std::string details : {"010100", "010101", "010102", "010103", "010105", "010106"}) {
        const bool filesOnly = details == "010101";
        offer(details, filesOnly ? "9203013F00" : "", "REFRESH");
        card.respond({}, now);
        play(respond(details, "0100") + (filesOnly ? "" : "USIM NOPIN 80F2010C00 > 9000"), "end");
    }
    EXPECT_EQ(wire.connects, 1);
    offer("010104", "", "REFRESH");
    card.respond({}, now);
    play(Reset, "end; - Reader: a USIM");
    EXPECT_EQ(wire.connects, 2);
    play("", "! Reader: this card has no toolkit menu", 3s);
}

TEST_F(TestToolkitTerminal, survivesTheCardsRemovalAtEachStep)
{
    Wire whole;
    whole.add(expanded("FIND USIM NOPIN PROFILE > " + waiting(Menu) + " 80F2010C00 > 9000 " +
                       fetch("012500", Menu) + respond("012500", "0100") + "SELECT1 " +
                       waiting(Text) + ' ' + ShowText + respond("012180", "0100", "910B") +
                       fetch("010200", "") + respond("010200", "0100")));
    for (size_t i = 0; i < 2 * whole.script.size(); ++i) {
        const size_t last = i / 2;
        SCOPED_TRACE(std::to_string(last) + ' ' + whole.script[last].first);
        wire.script = whole.script;
        wire.script.resize(last + 1);
        if (i % 2) // noticed by an exchange that fails; else by looking
            wire.script[last].second = "gone";
        card.powerOn(now);
        for (int turn = 0; turn < 50 && !wire.script.empty(); ++turn, step()) {
            card.respond({}, now);
            if (expanded("SELECT1").find(wire.script.front().first) == 0)
                card.selectMenuItem(1, now);
        }
        wire.status = trouble(CardChannel::State::NoCard, "no card");
        wire.present = false;
        now += 250ms;
        run(1s);
        EXPECT_EQ(wire.script.size(), 0u);
        const std::string end = "removed; ! no card";
        EXPECT_EQ(log.told.substr(std::max(log.told.size(), end.size()) - end.size()), end);
        log.told.clear();
        wire.status = {CardChannel::State::Ready, "Reader", {}};
        play(Reset, "ready; - Reader: a USIM", 1s);
        card.powerOff();
    }
}

TEST_F(TestToolkitTerminal, tellsWhatIsInTheWayOnce)
{
    using State = CardChannel::State;
    card.powerOn(now);
    wire.status = trouble(State::NoDaemon, "no daemon");
    play("", "! no daemon; removed", 5s);
    EXPECT_EQ(wire.connects, 6);
    wire.status = trouble(State::InUse, "in use");
    play("", "! in use", 5s);
    wire.status = {State::Ready, "Reader", {}};
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00", std::string("ready; ") + NoSim, 60s);
    wire.present = false; // another one takes its place, that breaks down
    play("00A40004023F00 > silent 00A40004023F00 > silent 00A40004023F00 > silent 00A40004023F00 > "
         "silent",
         "ready; ! Reader: the card does not answer; removed; ready; removed; ready; removed; "
         "ready; removed",
         8s);
    wire.present = false;
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00", std::string("ready; ") + NoSim, 2s);
    wire.isAmongOthers = true; // what had no SIM may be passed over as soon as another card comes
    wire.status.chosenAmong = 2;
    card.lookAgain(now);
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00",
         "- Reader: chosen among 2 readers; ready; " + std::string(NoSim), 100ms);
    wire.present = false;
    wire.status = trouble(State::NoCard, "no card");
    play("", "! no card", 1s);
    wire.status = {State::Ready, "Reader", {}};
    card.lookAgain(now);
    wire.isAmongOthers = true;
    play("00A40004023F00 > 6A82 A0A40000023F00 > 6E00 " + Reset,
         "ready; " + std::string(NoSim) + "; ready; - Reader: a USIM", 100ms);
    card.powerOff();
    EXPECT_EQ(card.wakeUp(), Card::Time::max());
}

TEST_F(TestToolkitTerminal, slowsAnEndlessChainDown)
{
    start();
    wire.add(expanded("SELECT1 910B"));
    card.selectMenuItem(1, now);
    for (int i = 0; i < 2000; ++i)
        wire.add(fetch("010200", "") + respond("010200", "0100", "910B"));
    for (const Card::Time end = now + 60s; now < end; now = std::max(now + 1us, card.wakeUp()))
        card.nextEvent(now);
    EXPECT_LT(4000 - wire.script.size(), 2u * (64 + 100 + 60));
    EXPECT_GT(4000 - wire.script.size(), 2u * 64);
}

} // namespace
