#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

#include "TestCatJson.h"
#include "card/CommandBridge.h"
#include "cat/Response.h"

// The conformance sequences of 3GPP TS 31.124 in the folder that STK_CONFORMANCE_VECTORS names:
// what an independent decoder finds in proactive commands, and terminal responses byte for byte.

namespace {

using CatJson::Json;

const std::set<std::string> CommandKeys = {"name",   "command", "pdu",      "status",
                                           "number", "type",    "qualifier"};
// Texts that a row leaves out where they are empty.
const std::set<std::string> Texts = {"text", "alpha", "confirm", "setup", "default", "title"};
const std::set<std::string> Keys = {"immediate", "number_dialled", "tone", "duration",    "min",
                                    "max",       "items",          "url",  "default_item"};

std::ifstream open(const std::string &name)
{
    const char *folder = std::getenv("STK_CONFORMANCE_VECTORS");
    return folder ? std::ifstream(std::string(folder) + '/' + name) : std::ifstream();
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return char(tolower(c)); });
    return text;
}

bool contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

bool isStatus(const std::string &status, cat::Problem problem)
{
    const std::string words = lowerCase(status);
    if (words == "ok") // what the terminal does not do can be decoded all the same
        return problem == cat::Problem::None || problem == cat::Problem::BeyondCapabilities;
    if (contains(words, "missing"))
        return problem == cat::Problem::ValuesMissing;
    if (contains(words, "data"))
        return problem == cat::Problem::DataNotUnderstood;
    if (contains(words, "type"))
        return problem == cat::Problem::TypeNotUnderstood;
    return problem != cat::Problem::None;
}

// A number as the vectors write it: semi-octets in hexadecimal, without the type of number.
std::string semiOctets(const std::string &number)
{
    static const std::string From = "*#pPwW?&";
    static const std::string To = "abccccde";
    std::string result;
    for (const char c : lowerCase(number)) {
        const size_t place = From.find(c);
        if (c != '+')
            result += place == std::string::npos ? c : To[place];
    }
    return result;
}

bool isSame(const std::string &key, const Json &expected, const Json &found)
{
    if (key == "number_dialled" && expected.is_string())
        return semiOctets(expected) == semiOctets(found);
    if (key == "duration" && expected.is_object() && expected.contains("unit"))
        return expected["interval"] == found["interval"] &&
            lowerCase(expected["unit"]).rfind(found["unit"].get<std::string>().substr(0, 3), 0) ==
            0;
    return expected == found;
}

void checkFields(const Json &row, const cat::Command &command, std::map<std::string, int> &unknown)
{
    const Json found = CatJson::fields(command);
    for (const auto &[key, expected] : row.items()) {
        if (CommandKeys.count(key))
            continue;
        if (!Texts.count(key) && !Keys.count(key))
            ++unknown[key];
        else if (!found.contains(key))
            ADD_FAILURE() << command.name << " has no " << key;
        else
            EXPECT_TRUE(isSame(key, expected, found[key]))
                << key << ": expected " << expected << ", found " << found[key];
    }
    if (command.problem != cat::Problem::None)
        return;
    for (const std::string &key : Texts) {
        if (found.contains(key) && !row.contains(key)) {
            EXPECT_EQ(found[key], "") << key;
        }
    }
}

std::map<std::string, cat::Command> decodeAll()
{
    std::map<std::string, cat::Command> commands;
    std::ifstream file = open("proactive.jsonl");
    for (std::string line; std::getline(file, line);) {
        if (line.empty())
            continue;
        const Json row = Json::parse(line);
        commands[row["name"]] = cat::decode(fromHex(row["pdu"]));
    }
    return commands;
}

// The command that a response belongs to: their names differ in one word and in the spelling of
// another.
const cat::Command *commandOf(std::string response, const cat::Bytes &details)
{
    static const auto commands = decodeAll();
    for (const auto &[from, to] : {std::pair("_response", ""), std::pair("set_up", "setup")}) {
        if (const size_t place = response.find(from); place != std::string::npos)
            response.replace(place, strlen(from), to);
    }
    const auto found = commands.find(response);
    const bool same = found != commands.end() && found->second.details.object == details;
    return same ? &found->second : nullptr;
}

struct DataObject {
    uint8_t tag; // without the comprehension bit
    cat::Bytes value;
};

std::vector<DataObject> split(const cat::Bytes &bytes)
{
    std::vector<DataObject> objects;
    for (size_t i = 0; i < bytes.size();) {
        const uint8_t tag = bytes[i++] & 0x7f;
        if (bytes.at(i) == 0x81)
            ++i;
        const size_t length = bytes.at(i++);
        objects.push_back({tag, cat::ByteView(bytes).part(i, length).copy()});
        i += length;
    }
    return objects;
}

// The response of those data objects; false where the terminal never sends one of them.
bool assemble(const std::vector<DataObject> &objects, const cat::Command *command,
              cat::Response &response)
{
    bool complete = true;
    for (const auto &[tag, value] : objects) {
        if (tag == 0x03) {
            response.result = value.at(0);
            response.additional = {value.begin() + 1, value.end()};
        } else if (tag == 0x04) {
            response.duration = cat::Duration{cat::Duration::Unit(value.at(0)), value.at(1)};
        } else if (tag == 0x0d) {
            auto coding = cat::TextCoding(value.empty() ? 0 : value[0]);
            if (const auto asked = command ? toProactiveCommand(*command) : std::nullopt)
                coding = asked->answerCoding.value_or(coding);
            response.text = cat::encodeTextString(cat::decodeTextString(value), coding);
        } else if (tag == 0x10) {
            response.item = value.at(0);
        } else if (tag == 0x24) {
            response.timer = value.at(0);
        } else if (tag == 0x25) {
            const auto decimal = [&](size_t i) {
                return (value.at(i) & 0x0f) * 10 + (value.at(i) >> 4);
            };
            response.timerValue =
                std::chrono::seconds(decimal(0) * 3600 + decimal(1) * 60 + decimal(2));
        } else if (tag == 0x26) {
            response.dateTime = value;
        } else if (tag == 0x2d) {
            response.language = std::string(value.begin(), value.end());
        } else if (tag != 0x01 && tag != 0x02) {
            complete = false;
        }
    }
    return complete;
}

} // namespace

TEST(CatVectors, CommandsAreDecoded)
{
    std::ifstream file = open("proactive.jsonl");
    if (!file.is_open())
        GTEST_SKIP() << "no proactive.jsonl in STK_CONFORMANCE_VECTORS";
    int count = 0;
    std::map<std::string, int> unknown;
    for (std::string line; std::getline(file, line);) {
        if (line.empty())
            continue;
        SCOPED_TRACE(line.substr(0, 300));
        ++count;
        const Json row = Json::parse(line);
        const cat::Command command = cat::decode(fromHex(row.at("pdu")));
        EXPECT_EQ(row.at("command"), command.name);
        EXPECT_EQ(row.value("number", 1), command.details.number);
        EXPECT_EQ(row.at("type"), toHex({&command.details.type, 1}));
        EXPECT_EQ(row.at("qualifier"), toHex({&command.details.qualifier, 1}));
        EXPECT_TRUE(isStatus(row.at("status"), command.problem))
            << "problem " << int(command.problem) << ": " << command.reason;
        checkFields(row, command, unknown);
    }
    EXPECT_GT(count, 0);
    std::cout << count << " commands\n";
    for (const auto &[key, times] : unknown)
        std::cout << "not looked at: \"" << key << "\" in " << times << " commands\n";
}

TEST(CatVectors, ResponsesAreEncoded)
{
    std::ifstream file = open("responses.txt");
    if (!file.is_open())
        GTEST_SKIP() << "no responses.txt in STK_CONFORMANCE_VECTORS";
    int whole = 0;
    int heads = 0;
    int paired = 0;
    for (std::string name, hex; file >> name >> hex;) {
        SCOPED_TRACE(name + ' ' + hex);
        const cat::Bytes bytes = fromHex(hex);
        cat::Response response;
        response.details.object = cat::ByteView(bytes).part(0, 5).copy();
        const cat::Command *command = commandOf(name, response.details.object);
        if (command)
            response.details = command->details;
        paired += command != nullptr;
        const bool complete = assemble(split(bytes), command, response);
        const std::string encoded = toHex(*cat::encode(response));
        EXPECT_EQ(encoded, complete ? toHex(bytes) : toHex(bytes).substr(0, encoded.size()));
        ++(complete ? whole : heads);
    }
    EXPECT_GT(whole, 0);
    std::cout << whole << " responses, " << heads << " with data that this terminal never sends ("
              << "their heads compared), " << paired << " of them to commands of this set\n";
}
