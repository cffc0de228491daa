// What stands between a modem and the terminal: lines, support bytes, and the AT port against a
// modem that is a table.
#include <deque>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "modem/AtLines.h"
#include "modem/AtPort.h"
#include "modem/MbimPort.h"
#include "toolkit/Notices.h"

using Strings = std::vector<std::string>;
using namespace std::chrono_literals;

TEST(AtLines, comeInAnyCut)
{
    const std::string said = "\r\nOK\r\n+CUSATP: \"D009\"\r\n\r\n\n+CUSATEND\r" +
        std::string(9000, 'A') + "\r\n" + std::string(1, '\0') + "ERROR\r\nrest";
    const Strings expected{"OK", "+CUSATP: \"D009\"", "+CUSATEND", "ERROR"};
    for (const size_t cut : {1, 2, 3, 5, 100, 20000}) {
        AtLineReader reader;
        Strings lines;
        for (size_t at = 0; at < said.size(); at += cut) {
            reader.add(said.substr(at, cut));
            while (const auto line = reader.next())
                lines.push_back(*line);
        }
        EXPECT_EQ(lines, expected) << "cut into " << cut;
    }
}

TEST(AtLines, haveMeanings)
{
    const struct {
        const char *line;
        bool isFinal, isOk;
        int code;
    } finals[] = {
        {"OK", true, true, -1},
        {"ERROR", true, false, -1},
        {"+CME ERROR: 14", true, false, 14},
        {"+CME ERROR:13", true, false, 13},
        {"+CME ERROR: SIM busy", true, false, 14},
        {"+CMS ERROR: 500", true, false, 500},
        {"+CUSATE: 0", false, false, -1},
        {"OKAY", false, false, -1},
    };
    for (const auto &row : finals) {
        const auto result = finalResult(row.line);
        ASSERT_EQ(result.has_value(), row.isFinal) << row.line;
        if (!result)
            continue;
        EXPECT_EQ(result->kind == AtFinal::Kind::Ok, row.isOk) << row.line;
        EXPECT_EQ(result->code.value_or(-1), row.code) << row.line;
    }
    EXPECT_EQ(valueOf("+CUSATE2: 144,0", "+CUSATE"), std::nullopt); // a longer name
    EXPECT_EQ(valueOf("+CUSATEND", "+CUSATEND"), "");
    EXPECT_EQ(valueOf("+CUSATP:\"D0\"", "+CUSATP"), "\"D0\"");
    EXPECT_EQ(parameters("0,\"a,b\", 144 ,"), (Strings{"0", "a,b", "144", ""}));
    EXPECT_EQ(bytesOf("d0Ff"), (cat::Bytes{0xd0, 0xff}));
    EXPECT_EQ(bytesOf("D0F"), std::nullopt);
    EXPECT_EQ(bytesOf("D0 F"), std::nullopt);
}

TEST(MbimSupport, tellsWhoHasAType)
{
    const std::vector<uint8_t> types{0x21, 0x25};
    const struct {
        const char *what;
        uint8_t atNumber, atDigits; // of SET UP MENU, type 0x25
        size_t byte;
        uint8_t bits; // with DISPLAY TEXT, type 0x21, which the host may always take
    } rows[] = {
        {"the host may", 1, 0, 4, 0x22},
        {"the modem, and the host may", 5, 0, 4, 0x22},
        {"the modem, which can notify", 3, 0, 4, 0x22},
        {"the modem alone", 4, 0, 4, 0x02},
        {"nobody", 0, 0, 4, 0x02},
        {"counted in decimal", 0, 7, 3, 0x02},
        {"counted in decimal, the modem's elsewhere", 2, 1, 3, 0x02},
    };
    for (const auto &row : rows) {
        MbimSupport support;
        support.of[0x21] = support.of[21] = 1;
        support.of[0x25] = row.atNumber;
        support.of[25] = row.atDigits;
        EXPECT_EQ(hostControl(types, support)[row.byte], row.bits) << row.what;
    }
    MbimSupport support;
    support.of[0x21] = 6;
    EXPECT_EQ(keptByModem({0x21, 0x25, 0x13, 0x23, 0x24}, support), "GET INPUT, SELECT ITEM");
    const cat::Bytes padded{0xd0, 0x02, 0x81, 0x00, 0x00, 0x00}, longer(3 + 0x90 + 5, 0xd0);
    EXPECT_EQ(commandIn(padded).size(), 4u);
    cat::Bytes two = longer;
    two[1] = 0x81;
    two[2] = 0x90;
    EXPECT_EQ(commandIn(two).size(), 3u + 0x90);
}

namespace {

constexpr const char *TextCommand = "D00D8103012180820281028D020441";

// What the port told, a line each.
class Told : public PortEvents, public PortReports {
public:
    void arrived(Time now) override
    {
        lines.push_back("arrived");
        port->start(now);
    }
    void departed() override
    {
        if (lines.empty() || lines.back() != "departed")
            lines.push_back("departed");
    }
    void commandArrived(cat::ByteView command, bool wantsAnswer, Time now) override
    {
        lines.push_back((wantsAnswer ? "command " : "notice ") + std::to_string(command.size()));
        if (answers)
            port->respond({{0x81, 0x03, 0x01, 0x21, 0x80}, 2}, now);
    }
    void sessionEnded() override { lines.push_back("end"); }
    void cameToRest() override { lines.push_back("rest"); }
    void exchanged(const PortTraffic &) override { }
    void answeredByTerminal(const std::string &, const std::string &) override { }
    void spoken(bool, const std::string &line) override { said += line + '\n'; }
    void noticed(const Notice &notice) override { lines.push_back(notice.id); }
    void pinWanted(const PinRequest &request) override
    {
        lines.push_back(request.wrong ? "wrong PIN" : "PIN");
        pin = request.id;
    }
    void pinDone() override { }

    ToolkitPort *port = nullptr;
    Strings lines;
    std::string said;
    bool answers = true;
    int pin = 0;
};

// The other end of an AT port: answers from a table, "OK" to the rest; time is the test's.
class TableModem {
public:
    explicit TableModem(std::map<std::string, std::deque<std::string>> answers)
        : m_answers(std::move(answers))
        , m_master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        grantpt(m_master);
        unlockpt(m_master);
        termios raw{};
        tcgetattr(m_master, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_master, TCSANOW, &raw);
        device = ptsname(m_master);
    }
    ~TableModem() { ::close(m_master); }

    void say(const std::string &lines)
    {
        [[maybe_unused]] auto n = ::write(m_master, lines.data(), lines.size());
    }

    // Runs both until nothing happens any more up to that time of the test's clock.
    void run(AtPort &port, std::chrono::milliseconds time)
    {
        const auto end = m_now + time;
        while (true) {
            port.work(m_now);
            if (listen())
                continue;
            const auto next = port.wakeUp();
            if (next > end)
                break;
            m_now = std::max(m_now, next);
        }
        m_now = end;
    }

    AtPort::Time now() const { return m_now; }

    std::string device;
    Strings heard;

private:
    bool listen()
    {
        char buffer[4096];
        const ssize_t count = ::read(m_master, buffer, sizeof buffer);
        if (count <= 0)
            return false;
        m_reader.add({buffer, static_cast<size_t>(count)});
        while (const auto line = m_reader.next()) {
            heard.push_back(*line);
            auto &answers = m_answers[line->substr(0, line->find('='))];
            std::string answer = "\r\nOK\r\n";
            if (!answers.empty()) {
                answer = answers.front();
                if (answers.size() > 1)
                    answers.pop_front();
            }
            say(answer);
        }
        return true;
    }

    std::map<std::string, std::deque<std::string>> m_answers;
    const int m_master;
    AtLineReader m_reader;
    AtPort::Time m_now{1h};
};

} // namespace

class AtPortTest : public testing::Test {
protected:
    using Answers = std::map<std::string, std::deque<std::string>>;

    void open(Answers answers, const AtDialect &dialect = {})
    {
        modem = std::make_unique<TableModem>(std::move(answers));
        port = std::make_unique<AtPort>(modem->device, cat::Bytes{0xff, 0x01}, told, dialect);
        told.port = port.get();
        port->open(told, AtPort::Time(1h));
    }
    bool hasHeard(const std::string &line) const
    {
        return std::count(modem->heard.begin(), modem->heard.end(), line) != 0;
    }

    Told told;
    std::unique_ptr<TableModem> modem;
    std::unique_ptr<AtPort> port;
};

TEST_F(AtPortTest, startsWithWhateverAModemSays)
{
    const Strings all{"AT",
                      "ATE0",
                      "AT+CMEE=1",
                      "AT+CPIN?",
                      "AT+CUSATW=?",
                      "AT+CUSATR",
                      "AT+CUSATW=0,\"FF01\"",
                      "AT+CUSATD=1,1",
                      "AT+CUSATA=1"};
    const std::string error = "\r\nERROR\r\n", ready = "\r\n+CPIN: READY\r\n\r\nOK\r\n";
    const struct {
        const char *what;
        Answers answers;
        Strings told;
    } rows[] = {
        {"all is well", {{"AT+CPIN?", {ready}}}, {"arrived", "rest"}},
        {"knows nothing of clause 12",
         {{"AT", {error}},
          {"AT+CMEE", {error}},
          {"AT+CUSATW", {error}},
          {"AT+CUSATR", {error}},
          {"AT+CUSATD", {error}},
          {"AT+CUSATA", {"\r\n+CME ERROR: 4\r\n"}}},
         {"arrived", "rest"}},
        {"echoes, and the card talks in between",
         {{"AT+CPIN?", {"AT+CPIN?\r" + ready}},
          {"AT+CUSATA", {"\r\n+CUSATP: " + std::string(TextCommand) + "\r\n\r\nOK\r\n"}}},
         {"arrived", "command 15", "rest", "end"}},
        {"has no card, and then one that is not ready",
         {{"AT+CPIN?",
           {"\r\n+CPIN: NOT INSERTED\r\n\r\nOK\r\n", "\r\n+CPIN: NOT READY\r\n\r\nOK\r\n", ready}}},
         {"IDS_CM_NOTICE_MODEM_NO_SIM", "departed", "arrived", "rest"}},
        {"is busy at first",
         {{"AT+CPIN?", {"\r\n+CME ERROR: 14\r\n", ready, ready}}},
         {"departed", "arrived", "rest"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        told.lines.clear();
        open(row.answers);
        modem->run(*port, 30s);
        EXPECT_EQ(told.lines, row.told);
        port->tellMissingMenu();
        EXPECT_EQ(told.lines.back() == "IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT", &row == &rows[1]);
        Strings heard = modem->heard;
        heard.erase(std::unique(heard.begin(), heard.end()), heard.end());
        for (const std::string &command : all)
            EXPECT_TRUE(hasHeard(command)) << command;
        port->close();
        modem->heard.clear();
    }
}

TEST_F(AtPortTest, speaksTheDialectOfAFile)
{
    const std::string file = testing::TempDir() + "dialect.json";
    std::ofstream(file) << R"({"+CUSATP": "^OWNP", "+CUSATT": "^OWNT", "+CUSATA": "^OWNA"})";
    open({{"AT^OWNA", {"\r\n^OWNP: " + std::string(TextCommand) + "\r\n\r\nOK\r\n"}}},
         readAtDialect(file));
    modem->run(*port, 20s);
    EXPECT_TRUE(hasHeard("AT^OWNT=\"8103012180\""));
    const std::pair<const char *, const char *> errors[] = {
        {"", "dialect.json: expected a dialect, found an empty file"},
        {"[]", "dialect.json: /: expected an object, found an empty list"},
        {R"({"+CUSATX": "^A"})", "dialect.json: /+CUSATX: unknown key; allowed here: +CUSATR, "},
        {R"({"+CUSATT": "A=B"})", "dialect.json: /+CUSATT: expected a name, without \"AT\": 2 "},
        {R"({"+CUSATT": "AT^A"})", "found \"AT^A\""}};
    for (const auto &[text, expected] : errors) {
        std::ofstream(file) << text;
        try {
            readAtDialect(file);
            ADD_FAILURE() << text;
        } catch (const std::exception &error) {
            EXPECT_NE(std::string(error.what()).find(expected), std::string::npos) << error.what();
        }
    }
}

TEST(ModemPorts, sayWhatIsNoDevice)
{
    const std::string file = testing::TempDir() + "no-device";
    std::ofstream(file) << "AT";
    const struct {
        const char *way;
        std::string device;
        const char *notice;
    } rows[] = {{"at", "/tmp", "FOLDER"},
                {"at", file, "FILE"},
                {"at", "/dev/null", "NONE"},
                {"mbim", "/dev/tty", "SERIAL"},
                {"mbim", "/tmp", "FOLDER"}};
    for (const auto &row : rows) {
        Told told;
        AtPort at(row.device, {}, told);
        MbimPort mbim(row.device, {}, told);
        ToolkitPort &port = row.way == std::string("at") ? static_cast<ToolkitPort &>(at) : mbim;
        port.open(told, AtPort::Time(1h));
        port.work(AtPort::Time(1h));
        EXPECT_EQ(told.lines,
                  (Strings{std::string("IDS_CM_NOTICE_MODEM_IS_") + row.notice, "departed"}))
            << row.device;
    }
}

TEST_F(AtPortTest, asksForThePinOnce)
{
    const std::string is = "\r\n+CPIN: ", ok = "\r\n\r\nOK\r\n", wanted = is + "SIM PIN" + ok;
    const struct {
        const char *what, *entered; // the modem's answer to the PIN
        Strings told;
        std::string last = "READY", third = "SIM PIN"; // states
    } rows[] = {
        {"right", "\r\nOK\r\n", {"arrived", "PIN", "rest"}},
        {"right, and echoed", "AT+CPIN=\"1234\"\r\r\nOK\r\n", {"arrived", "PIN", "rest"}},
        {"right, and echoed in part", "\"1234\"\r\r\nOK\r\n", {"arrived", "PIN", "rest"}},
        {"right, and without effect", "\r\nOK\r\n", {"arrived", "PIN", "PIN"}, "SIM PIN"},
        {"taken without a word", "", {"arrived", "PIN", "rest"}},
        {"wrong", "\r\n+CME ERROR: 16\r\n", {"arrived", "PIN", "wrong PIN"}},
        {"wrong, for the last time",
         "\r\n+CME ERROR: 16\r\n",
         {"arrived", "PIN", "IDS_CM_NOTICE_PIN_BLOCKED", "rest"},
         "SIM PUK",
         "SIM PUK"},
        {"blocked",
         "\r\n+CME ERROR: SIM PUK required\r\n",
         {"arrived", "PIN", "IDS_CM_NOTICE_PIN_BLOCKED", "rest"}},
        {"not taken",
         "\r\nERROR\r\n",
         {"arrived", "PIN", "IDS_CM_NOTICE_MODEM_REFUSES_PIN", "rest"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        told.lines.clear();
        open({{"AT+CPIN?", {wanted, wanted, is + row.third + ok, is + row.last + ok}},
              {"AT+CPIN", {row.entered}}});
        modem->run(*port, 20s);
        EXPECT_FALSE(hasHeard("AT+CUSATW=?"));
        port->answerPin(told.pin, Pin("1234", 4), modem->now());
        port->answerPin(told.pin, Pin("1234", 4), modem->now()); // a second click
        modem->run(*port, 60s);
        EXPECT_EQ(std::count(modem->heard.begin(), modem->heard.end(), "AT+CPIN=\"1234\""), 1);
        EXPECT_EQ(told.lines, row.told);
        EXPECT_NE(told.said.find("\nAT+CPIN=\"***\n"), std::string::npos);
        EXPECT_EQ(told.said.find("1234"), std::string::npos) << told.said;
        const bool isBlocked =
            std::count(told.lines.begin(), told.lines.end(), "IDS_CM_NOTICE_PIN_BLOCKED");
        port->tellMissingMenu();
        EXPECT_EQ(told.lines.back() == "IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED", isBlocked);
        port->close();
    }
}

TEST_F(AtPortTest, keepsThePinFromAnotherCard)
{
    open({{"AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"}}});
    modem->run(*port, 5s);
    const int request = told.pin;
    modem->say("\r\n+CPIN: NOT INSERTED\r\n");
    modem->run(*port, 5s);
    port->answerPin(request, Pin("1234", 4), modem->now());
    modem->run(*port, 5s);
    EXPECT_EQ(
        told.lines,
        (Strings{"arrived", "PIN", "IDS_CM_NOTICE_MODEM_NO_SIM", "departed", "arrived", "PIN"}));
    EXPECT_FALSE(hasHeard("AT+CPIN=\"1234\""));
}

// What comes late is no answer to what was said after it.
TEST_F(AtPortTest, takesNoLateAnswerForAnother)
{
    const std::string ok = "\r\nOK\r\n", wanted = "\r\n+CPIN: SIM PIN\r\n" + ok;
    open({{"AT", {ok, ""}}, {"AT+CMEE", {""}}, {"AT+CPIN?", {wanted}}});
    modem->run(*port, 11s);
    for (int late = 0; late < 2; ++late) {
        modem->say(ok);
        modem->run(*port, 1s);
        EXPECT_EQ(modem->heard.back(), "AT");
    }
    modem->run(*port, 5s);
    EXPECT_EQ(told.lines, (Strings{"arrived", "PIN"}));
}

TEST_F(AtPortTest, answersOnceAndInAnyDialect)
{
    const std::string command = "\r\n+CUSATP: \"" + std::string(TextCommand) + "\"\r\n";
    const struct {
        const char *what;
        Answers answers;
        std::string said; // by the modem, once it runs
        int responses;
        Strings told; // from then on
    } rows[] = {
        {"quoted", {}, command, 1, {"command 15", "end"}},
        {"bare, cut in the middle, the end first",
         {},
         "+CUSATP:" + std::string(TextCommand) + "\r\n+CUSATEND\r\n",
         1,
         {"command 15", "end", "end"}},
        {"tells the end before the result",
         {{"AT+CUSATT", {"\r\n+CUSATEND\r\n\r\nOK\r\n"}}},
         command,
         1,
         {"command 15", "end"}},
        {"tells the end, goes on, and was busy",
         {{"AT+CUSATT",
           {"\r\n+CUSATEND\r\n+CUSATP: D00D8103022180820281028D020442\r\n+CME ERROR: 14\r\n",
            "\r\nOK\r\n"}}},
         command,
         2,
         {"command 15", "end", "command 15", "end"}},
        {"wants no quotes",
         {{"AT+CUSATW", {"\r\nOK\r\n", "\r\nERROR\r\n", "\r\nOK\r\n"}},
          {"AT+CUSATT", {"\r\n+CUSATT: 0\r\n\r\nOK\r\n"}}},
         command,
         1,
         {"command 15", "end"}},
        {"wants no quotes, and no profile",
         {{"AT+CUSATW", {"\r\nERROR\r\n"}},
          {"AT+CUSATT", {"\r\nERROR\r\n", "\r\n+CUSATT: 0\r\n\r\nOK\r\n"}}},
         command,
         2,
         {"command 15", "end"}},
        {"refuses",
         {{"AT+CUSATT", {"\r\n+CME ERROR: 100\r\n"}}},
         command,
         1,
         {"command 15", "IDS_CM_NOTICE_MODEM_REFUSES", "end"}},
        {"unreadable", {}, "\r\n+CUSATP: \"D0X\"\r\n", 0, {"IDS_CM_NOTICE_MODEM_UNREADABLE"}},
        {"falls silent",
         {{"AT+CUSATT", {""}}},
         command,
         1,
         {"command 15", "IDS_CM_NOTICE_MODEM_SILENT", "IDS_CM_NOTICE_MODEM_ANSWERS", "end"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        open(row.answers);
        modem->run(*port, 20s);
        told.lines.clear();
        told.said.clear();
        modem->say(row.said);
        modem->run(*port, 30s);
        const auto isResponse = [](const std::string &line) {
            return line.rfind("AT+CUSATT", 0) == 0;
        };
        EXPECT_EQ(std::count_if(modem->heard.begin(), modem->heard.end(), isResponse),
                  row.responses);
        EXPECT_EQ(told.said.find("810301***") != std::string::npos, row.responses > 0);
        EXPECT_EQ(told.lines, row.told);
        port->close();
    }
}

TEST_F(AtPortTest, leavesACommandOpenThatCameBeforeTheEnvelopesResult)
{
    const std::string ok = "\r\nOK\r\n";
    for (const std::string &result :
         {ok, "\r\n+CUSATE2: 144,0" + ok, std::string("\r\nERROR\r\n")}) {
        open({{"AT+CUSATE", {"\r\n+CUSATP: " + std::string(TextCommand) + "\r\n" + result}}});
        told.answers = false;
        modem->run(*port, 20s);
        port->sendEnvelope({{0xd3, 0x00}, "MENU SELECTION", true}, modem->now());
        modem->run(*port, 60s);
        EXPECT_EQ(std::count(told.lines.begin(), told.lines.end(), "end"), 0) << result;
        EXPECT_FALSE(port->takesEnvelope()) << result;
        port->close();
    }
}

// Whatever the modem says to what was on its way when a person wants the card to start anew.
TEST_F(AtPortTest, startsTheCardAnewDuringAnExchange)
{
    const std::string ok = "\r\nOK\r\n", wanted = "\r\n+CPIN: SIM PIN\r\n" + ok;
    const struct {
        Answers answers;
        std::string said;
        Strings told;
    } rows[] = {{{{"AT+CUSATA", {"", ok}}}, ok, {"arrived", "rest"}},
                {{{"AT+CPIN", {""}}, {"AT+CPIN?", {wanted, wanted, ok}}},
                 "\r\n+CME ERROR: 16\r\n",
                 {"arrived", "PIN", "rest"}}};
    for (const auto &row : rows) {
        told.lines.clear();
        open(row.answers);
        modem->run(*port, 1s);
        port->answerPin(told.pin, Pin("1234", 4), modem->now());
        modem->run(*port, 1s);
        port->restart(modem->now());
        modem->say(row.said);
        modem->run(*port, 20s);
        EXPECT_TRUE(hasHeard("AT+CFUN=1"));
        EXPECT_EQ(told.lines, row.told);
        port->close();
    }
}
