#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cat/Hex.h"

namespace {

// Behind '#' a modem, started so; then line by line what is sent, and what comes.  What comes
// beyond that is found at the next line.  "gone": the modem, and it is back.
const char Dialogues[] = R"(
# --at steps.json
ATE0^AT+CPIN? => ATE0^|OK||+CPIN: READY||OK|
AT+CUSATW=0,"20"^AT+CUSATW=0,"08C1" => |+CUSATW: 0,"200000000000000000"||ERROR||OK|
AT+CUSATD=1,1^AT+CUSATA=1 => |OK||OK||+CUSATS: 1||+CUSATP: $menu|
AT+CUSATR=3 => |+CUSATR: 3,"29C1E80E0000000708"||OK|
AT+CUSATT="$response" => |OK||+CUSATEND|
AT+CUSATE="$choice" => |+CUSATE: "",0||+CUSATE2: 145,20||OK||+CUSATP: $text|
AT+CUSATE="$choice" => |+CUSATE: "",1||+CUSATE2: 147,0||OK|
# --at steps.json --fault echo --fault early --fault quoted --fault tight --fault again --fault bytes
ATE0 => ATE0^|OK|
AT+CUSATA=1 => AT+CUSATA=1^|+CUSATP:"$menu"||+CUSATP:"$menu"||OK|
AT+CUSATT="$response" => AT+CUSATT="$response"^|+CUSATEND||OK|
# --at steps.json --fault earlyEnd --fault noEnd --fault never@2 --fault busy@5 --fault wrongFinal@6
ATE0^AT+CUSATA=1^AT+CUSATA=1 => ATE0^|OK||OK||+CUSATP: $menu||+CUSATEND|
AT+CUSATT="$response" => |OK|
AT+CUSATE="$choice" => |+CUSATE: "",1||+CUSATE2: 147,0||OK|
AT+CUSATE="$choice" => |+CUSATE: "",0||+CUSATE2: 145,20||ERROR||+CUSATP: $text|
# --at steps.json --fault unquoted --fault words --fault noFinal@4
ATE0^AT+CUSATA=1 => ATE0^|OK||OK||+CUSATP: $menu|
AT+CUSATT="$response" => |+CME ERROR: Incorrect parameters|
AT+CUSATT=$response => |+CUSATEND|
# --at steps.json --fault late --fault forms
ATE0^AT+CUSATA=1^AT+CMEE=1 => ATE0^|OK||+CUSATA: 1,0||OK||OK|
AT+CFUN=4^AT+CPIN? => |OK||+CME ERROR: 10|
AT+CFUN=1 => |OK||+CUSATP: $menu|
AT+CUSATT="$response" => |+CUSATT: 0||OK||+CUSATEND|
AT+CUSATE="$choice" => |+CUSATER: 9000||OK||+CUSATP: $text|
# --at steps.json --fault bare
ATE0 => |+CUSATP: $menu|ATE0^|ERROR|
# --at steps.json --fault hangUp@each
AT => gone
AT => AT^|OK|
AT+CUSATA=1 => gone
AT+CUSATA=1 => AT+CUSATA=1^|OK||+CUSATP: $menu|
# --at pin.json
ATE0^AT+CPIN? => ATE0^|OK||+CPIN: SIM PIN||OK|
AT+CPIN="1234"^AT+CPIN? => |ERROR||+CPIN: SIM PUK||OK|
# --at session.json
ATE0^AT+CUSATA=1 => ATE0^|OK||OK||+CUSATP: D02E810301250082028182850753657373696F6E8F11015265667573656420636F6D6D616E64738F07024576656E7473|
AT+CUSATT="$response" => |OK||+CUSATEND||+CUSATP: D00D81030C350182028182AD026465|
AT+CUSATT="81030C350182028281830100" => |OK||+CUSATEND||+CUSATP: D0228103102180820281028D17045468726565207365636F6E647320617265206F766572|
# --mbim steps.json
03000000 50000000 09 $pac 01000000 20000000 $bits => 04000080 10000000 09000000 05000000
$open
03000000 50000000 02 $pac 01000000 20000000 $bits => 03000080 30010000 02 $pac $support 07000080 4F000000 00 $pac 23000000 00000000 $menu
03000000 40000000 03 $head 02000000 01000000 10000000 0C000000 $response => 03000080 3C000000 03 $head 02000000 00000000 0C000000 0000000000000000 0F910000
03000000 39000000 04 $head 03000000 01000000 09000000 $choice => 03000080 30000000 04 $head 03000000 00000000 00000000 07000080 44000000 00 $pac 18000000 00000000 $text
# --mbim steps.json --fault early --fault padding --fault bytes --fault busy@2
$open
03000000 50000000 02 $pac 01000000 20000000 $bits => 03000080 30000000 02 $pac 1B000000 00000000
03000000 50000000 03 $pac 01000000 20000000 $bits => 07000080 54000000 00 $pac 28000000 00000000 $menu 0000000000 03000080 30010000 03 $pac $support
)";
const std::vector<std::pair<std::string, std::string>> Words = {
    {"$open", "01000000 10000000 01000000 00100000 => 01000080 10000000 01000000 00000000"},
    {"$pac", "$head 01000000"},
    {"$head", "000000 01000000 00000000 D8F20131FCB54E178602D6ED3816164C"},
    {"$bits", "0000000022" + std::string(54, '0')},
    {"$support",
     "00000000 00010000 000302020201$none 030303030001$none 050601010106020201$none"
     "0000 01" +
         std::string(404, '0')},
    {"$none", "00000000000000000000"},
    {"$menu", "D01D810301250082028182850553746570738F0B0145766572797468696E67"},
    {"$response", "810301250082028281830100"},
    {"$choice", "D30782020181900101"},
    {"$text", "D0128103012180820281028D0704412074657874"},
    {"^", "\r"},
    {"|", "\r\n"}};

// A modem, and who has its port open.
class VirtualModem {
public:
    explicit VirtualModem(const std::string &arguments)
        : m_output(popen(("cd " CARDS "; echo $$; exec " VIRTUAL_MODEM + arguments).c_str(), "re"))
    {
        EXPECT_EQ(fscanf(m_output, "%d\n", &m_process), 1);
        open();
    }
    ~VirtualModem()
    {
        close(m_port);
        kill(m_process, SIGTERM);
        while (fgetc(m_output) != EOF) { }
        EXPECT_EQ(pclose(m_output), 0) << "the card has got what its file expects";
    }
    void open()
    {
        char line[200], name[200] = "";
        while (fgets(line, sizeof line, m_output) &&
               sscanf(line, "VirtualModem: %*[atmbim]:%s", name) != 1) { }
        close(m_port);
        m_port = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
        ASSERT_GE(m_port, 0) << name;
    }
    // At most so many bytes; fewer where no more come.
    cat::Bytes answer(const cat::Bytes &sent, size_t most)
    {
        EXPECT_EQ(write(m_port, sent.data(), sent.size()), ssize_t(sent.size()));
        cat::Bytes got;
        pollfd input = {m_port, POLLIN, 0};
        for (uint8_t byte;
             got.size() < most && poll(&input, 1, 10000) == 1 && read(m_port, &byte, 1) == 1;)
            got.push_back(byte);
        return got;
    }

private:
    FILE *m_output;
    pid_t m_process = 0;
    int m_port = -1;
};

TEST(VirtualModem, AnswersAsItsProtocolAndItsFaultsWant)
{
    std::istringstream lines(Dialogues);
    std::unique_ptr<VirtualModem> modem;
    std::string line, title;
    for (std::getline(lines, line); std::getline(lines, line);) {
        SCOPED_TRACE(title + ": " + line);
        for (const auto &[word, meaning] : Words) {
            for (size_t at; (at = line.find(word)) != std::string::npos;)
                line.replace(at, word.size(), meaning);
        }
        if (line[0] == '#') {
            title = line;
            modem.reset();
            modem = std::make_unique<VirtualModem>(line.substr(1));
            continue;
        }
        const bool isMbim = title.find("--mbim") != std::string::npos;
        const auto bytes = [&](const std::string &text) {
            return isMbim ? cat::fromHex(text).value() : cat::Bytes(text.begin(), text.end());
        };
        const size_t arrow = line.find(" => ");
        const std::string comes = line.substr(arrow + 4);
        const cat::Bytes sent = bytes(line.substr(0, arrow) + (isMbim ? "" : "\r"));
        if (comes == "gone") {
            modem->answer(sent, SIZE_MAX);
            modem->open();
        } else {
            const cat::Bytes got = modem->answer(sent, bytes(comes).size());
            ASSERT_EQ(got, bytes(comes)) << cat::toHex(got) << std::string(got.begin(), got.end());
        }
    }
}

} // namespace
