#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

#include "TestCatJson.h"
#include "toolkit/CommandBridge.h"
#include "cat/Response.h"

// The conformance sequences of 3GPP TS 31.124 in the folder that STK_CONFORMANCE_VECTORS names:
// what an independent decoder finds in proactive commands, and terminal responses byte for byte.

namespace {

using cat::Json;

struct Vector {
    std::string name;
    Json row;
    cat::Command command;
};

// As the vectors call it; what the terminal does not do can be decoded all the same.
const std::map<cat::Problem, std::string> Statuses = {
    {cat::Problem::None, "ok"},
    {cat::Problem::BeyondCapabilities, "ok"},
    {cat::Problem::ValuesMissing, "missing value"},
    {cat::Problem::DataNotUnderstood, "data not understood"},
    {cat::Problem::TypeNotUnderstood, "type not understood"}};

// A number as the vectors write it: semi-octets in hexadecimal, without the type of number.
std::string semiOctets(const std::string &number)
{
    static const std::string From = "*#pPwW?&", To = "abccccde";
    std::string result;
    for (const char c : number) {
        const size_t place = From.find(c);
        if (c != '+')
            result += place == std::string::npos ? char(tolower(c)) : To[place];
    }
    return result;
}

// What a row does not write where it is nothing.
bool isNothing(const Json &value)
{
    return value.is_null() || value == "" || value == 0 || value == false || value == Json::array();
}

bool isSame(const std::string &key, const Json &expected, const Json &found)
{
    if (expected.is_null() || found.is_null())
        return isNothing(expected) && isNothing(found);
    if (key == "number_dialled")
        return semiOctets(expected) == semiOctets(found);
    if (key == "duration")
        return expected["interval"] == found["interval"] &&
            expected["unit"].get<std::string>().rfind(found["unit"], 0) == 0;
    return expected == found;
}

// What a user or a terminal does.  The names stand without "response".
struct Answer {
    std::string names;
    std::string result; // with its additional information
    std::string text = "-";
    int item = 0;
};

const Answer Answers[] = {
    {"display_text_111 display_text_151 more_time_111 play_tone_111 poll_interval_111 send_sms_111 "
     "refresh_111a set_up_menu_111 set_up_call_111 set_up_call_151 polling_off_112 "
     "set_up_event_list_111 set_up_idle_mode_text_111 language_notification_111 launch_browser_111 "
     "timer_mgmt_111 timer_mgmt_121 timer_mgmt_131 timer_mgmt_163 timer_mgmt_166 "
     "provide_local_info_111a provide_local_info_131 provide_local_info_161 provide_local_info_191 "
     "provide_local_info_1131 provide_local_info_1161",
     "00"},
    {"timer_mgmt_141a timer_mgmt_143a timer_mgmt_146a timer_mgmt_151a timer_mgmt_153a "
     "timer_mgmt_156a",
     "24"},
    {"refresh_121b refresh_141b", "03"},
    {"play_tone_311b", "04"},
    {"get_inkey_141 get_input_171", "10"},
    {"select_item_141", "11"},
    {"get_inkey_211 get_input_211 select_item_811", "12"},
    {"refresh_241b", "2001"},
    {"set_up_call_1121", "2191"},
    {"set_up_call_171b", "219D"},
    {"launch_browser_231", "2602"},
    {"display_text_191", "32"},
    {"select_item_611", "00", "-", 1},
    {"select_item_111", "00", "-", 2},
    {"select_item_311", "00", "-", 3},
    {"get_inkey_111 get_inkey_712", "00", "+"},
    {"get_inkey_512", "00", "0"},
    {"get_inkey_1311", "00", "ル"},
    {"get_input_111", "00", "12345"},
    {"get_input_141", "00", "2345678"},
    {"get_input_611b", "04", "+"},
    {"get_input_843", "00", "33333"},
    {"get_input_421", "00",
     "ЗДРАВСТВУЙТЕЗДРАВСТВУЙТЕЗДРАВСТВУЙТЕЗДРАВСТВУЙТЕЗДРАВСТВУЙТЕЗДРАВСТВУЙ"},
    {"get_input_1021", "00",
     "你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好"
     "你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好你好"},
};

const Answer *answerOf(const std::string &name)
{
    for (const Answer &answer : Answers) {
        if ((' ' + answer.names + ' ').find(' ' + name + ' ') != std::string::npos)
            return &answer;
    }
    return nullptr;
}

// The command of the same name, else one of its type with the details that the response repeats.
std::optional<cat::Command> commandOf(const std::vector<Vector> &vectors, std::string name,
                                      const std::string &details)
{
    if (name.rfind("set_up", 0) == 0)
        name.erase(3, 1);
    std::optional<cat::Command> like;
    for (const auto &[vectorName, row, command] : vectors) {
        if (vectorName == name && cat::toHex(command.details.object) == details)
            return command;
        std::string pdu = row.at("pdu");
        const size_t place = pdu.find(details.substr(0, 8));
        if (command.problem == cat::Problem::None && place < 8)
            like = cat::decode(bytes(pdu.replace(place, details.size(), details)));
    }
    // The answer repeats a value of that very command.
    const bool repeats = like && std::holds_alternative<cat::TimerManagement>(like->body);
    return repeats ? std::nullopt : like;
}

cat::Response respond(const cat::Command &command, const Answer &answer)
{
    const cat::Bytes result = bytes(answer.result);
    cat::Response response{command.details, result[0], cat::ByteView(result).part(1).copy()};
    if (answer.item)
        response.item = uint8_t(answer.item);
    if (const auto *poll = std::get_if<cat::PollInterval>(&command.body))
        response.duration = poll->duration;
    if (const auto *timer = std::get_if<cat::TimerManagement>(&command.body))
        response.timer = timer->timer;
    const auto asked = toProactiveCommand(command);
    if (answer.text == "-" || !asked)
        return response;
    TerminalResponse entered;
    entered.text = answer.text;
    codeText(*asked, entered);
    response.text = entered.coded;
    return response;
}

} // namespace

class CatVectors : public testing::Test {
protected:
    void SetUp() override
    {
        if (!std::getenv("STK_CONFORMANCE_VECTORS"))
            GTEST_SKIP() << "STK_CONFORMANCE_VECTORS names no folder";
        std::ifstream file = open("proactive.jsonl");
        for (std::string line; std::getline(file, line);) {
            if (line.empty())
                continue;
            Json row = Json::parse(line);
            row.emplace("number", 1);
            vectors.push_back({row.at("name"), row, cat::decode(bytes(row.at("pdu")))});
        }
        ASSERT_FALSE(vectors.empty());
    }

    static std::ifstream open(const std::string &name)
    {
        std::ifstream file(std::getenv("STK_CONFORMANCE_VECTORS") + ('/' + name));
        EXPECT_TRUE(file.is_open()) << "no " << name;
        return file;
    }

    std::vector<Vector> vectors;
};

TEST_F(CatVectors, CommandsAreDecoded)
{
    // Every key that the set writes of such a command.
    std::map<std::string, std::set<std::string>> vocabularies;
    for (const Vector &vector : vectors) {
        for (const auto &item : vector.row.items())
            vocabularies[vector.row.at("command")].insert(item.key());
    }
    for (const auto &[name, row, command] : vectors) {
        SCOPED_TRACE(row.dump().substr(0, 300));
        Json found = row.at("status") == "ok" ? cat::fields(command) : row;
        found.update({{"name", name},
                      {"pdu", row.at("pdu")},
                      {"command", command.name},
                      {"number", command.details.number},
                      {"type", cat::toHex({&command.details.type, 1})},
                      {"qualifier", cat::toHex({&command.details.qualifier, 1})},
                      {"status", Statuses.at(command.problem)}});
        for (const std::string &key : vocabularies[row.at("command")]) {
            const Json expected = row.value(key, Json()), here = found.value(key, Json());
            EXPECT_TRUE(isSame(key, expected, here))
                << key << ": expected " << expected << ", found " << here << command.reason;
        }
    }
    std::cout << vectors.size() << " commands\n";
}

TEST_F(CatVectors, ResponsesAreEncoded)
{
    std::ifstream file = open("responses.txt");
    int equal = 0, heads = 0;
    std::string left;
    for (std::string name, hex; file >> name >> hex;) {
        SCOPED_TRACE(name + ' ' + hex);
        const size_t place = name.find("_response");
        ASSERT_NE(place, std::string::npos);
        name.erase(place, strlen("_response"));
        const Answer *answer = answerOf(name);
        const auto command = commandOf(vectors, name, hex.substr(0, 10));
        if (!answer || !command) {
            left += ' ' + name;
            continue;
        }
        // What only a network knows is never sent.
        const bool whole = !std::holds_alternative<cat::ProvideLocalInformation>(command->body);
        const std::string encoded = cat::toHex(*cat::encode(respond(*command, *answer)));
        EXPECT_EQ(encoded, whole ? hex : hex.substr(0, encoded.size()));
        ++(whole ? equal : heads);
    }
    EXPECT_GT(equal, 0);
    std::cout << equal << " responses and the heads of " << heads
              << " equal; without a command or an answer here:" << left << '\n';
}
