#include "CardFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "cat/Hex.h"
#include "scenario/StrictJson.h"

using StrictJson::Json;
using StrictJson::Object;

namespace {

constexpr const char *HexExpected = "pairs of hexadecimal digits";
constexpr const char *PatternExpected = "pairs of hexadecimal digits, or of question marks";

// Answers to reset that offer T=0 alone, or T=1 alone (ISO/IEC 7816-3 clause 8.2).
const cat::Bytes AtrOfT0 = {0x3b, 0x02, 0x14, 0x50};
const cat::Bytes AtrOfT1 = {0x3b, 0x80, 0x01, 0x81};
// Longer than any answer to reset: the daemon takes it for a card that cannot be switched on.
const cat::Bytes AtrOfMute(40, 0x00);

cat::Bytes readBytes(const Object &object, const std::string &key)
{
    const std::string text = object.text(key);
    const auto bytes = cat::fromHex(text);
    if (!bytes)
        StrictJson::fail(object.pointer(key), HexExpected, text);
    return *bytes;
}

HexPattern readPattern(const Json &value, const std::string &pointer)
{
    const auto pattern =
        value.is_string() ? HexPattern::read(value.get<std::string>()) : std::nullopt;
    if (!pattern)
        StrictJson::fail(pointer, PatternExpected, value);
    return *pattern;
}

std::vector<HexPattern> readPatterns(const Object &object, const std::string &key)
{
    const Json &value = object.required(key, PatternExpected);
    const std::string pointer = object.pointer(key);
    if (!value.is_array())
        return {readPattern(value, pointer)};
    std::vector<HexPattern> patterns;
    for (const Json &one : value)
        patterns.push_back(readPattern(one, StrictJson::elementPointer(pointer, patterns.size())));
    return patterns;
}

Step readStep(const Json &value, const std::string &pointer)
{
    const Object object(value, pointer, {"send", "expect", "reset", "envelope", "on", "optional"});
    Step step;
    step.optional = object.flag("optional");
    if (object.has("on")) {
        if (object.text("on") != "status")
            StrictJson::fail(object.pointer("on"), "\"status\"", value.at("on"));
        step.kind = Step::Kind::Status;
    } else if (object.has("envelope")) {
        step.kind = Step::Kind::Envelope;
        step.expected = readPatterns(object, "envelope");
    } else {
        step.command = readBytes(object, "send");
        if (step.command.empty() || step.command.size() > 256)
            StrictJson::fail(object.pointer("send"), "1 to 256 bytes", value.at("send"));
        step.reset = object.flag("reset");
        if (!step.reset)
            step.expected = readPatterns(object, "expect");
    }
    return step;
}

Sequence readSequence(const Json &value, const std::string &pointer, std::string name)
{
    Sequence sequence{std::move(name), {}};
    for (const Json &step : StrictJson::list(value, pointer))
        sequence.steps.push_back(
            readStep(step, StrictJson::elementPointer(pointer, sequence.steps.size())));
    return sequence;
}

void readStart(const Object &card, CardFile *file)
{
    if (!card.has("start"))
        return;
    const std::string pointer = card.pointer("start");
    for (const Json &value : card.list("start")) {
        const size_t index = file->start.size();
        file->start.push_back(readSequence(value, StrictJson::elementPointer(pointer, index),
                                           "start " + std::to_string(index + 1)));
    }
}

void readMenu(const Object &card, CardFile *file)
{
    if (!card.has("menu"))
        return;
    const std::string pointer = card.pointer("menu");
    for (const auto &entry : StrictJson::object(card.required("menu", ""), pointer).items()) {
        const std::string place = StrictJson::keyPointer(pointer, entry.key());
        const Json number = Json::parse(entry.key(), nullptr, false);
        const Json &id = number.is_discarded() ? Json(entry.key()) : number;
        const auto item = static_cast<int>(StrictJson::number(id, place, 1, 255));
        file->menu[item] = readSequence(entry.value(), place, "menu " + std::to_string(item));
    }
}

CardFile::Kind readKind(const Object &card)
{
    const std::pair<const char *, CardFile::Kind> kinds[] = {{"usim", CardFile::Kind::Usim},
                                                             {"sim", CardFile::Kind::Sim},
                                                             {"bank", CardFile::Kind::Bank},
                                                             {"mute", CardFile::Kind::Mute}};
    const std::string name = card.text("kind");
    for (const auto &[known, kind] : kinds) {
        if (name == known)
            return kind;
    }
    StrictJson::fail(card.pointer("kind"), "usim, sim, bank or mute", name);
}

std::optional<CardFile::Pin> readPin(const Object &card)
{
    if (!card.has("pin"))
        return std::nullopt;
    const Object pin(card.required("pin", ""), card.pointer("pin"), {"digits", "tries"});
    const std::string digits = pin.text("digits");
    if (digits.size() < 4 || digits.size() > 8 ||
        digits.find_first_not_of("0123456789") != std::string::npos)
        StrictJson::fail(pin.pointer("digits"), "four to eight digits", digits);
    return CardFile::Pin{digits, static_cast<int>(pin.number("tries", 0, 15, 3))};
}

CardFile readCard(const Json &value)
{
    const Object card(value, "", {"kind", "protocol", "atr", "pin", "profile", "start", "menu"});
    CardFile file;
    file.kind = readKind(card);
    const std::string protocol = card.text("protocol", "T=0");
    if (protocol != "T=0" && protocol != "T=1")
        StrictJson::fail(card.pointer("protocol"), "\"T=0\" or \"T=1\"", protocol);
    file.oneByOne = protocol == "T=0";
    file.atr = file.kind == CardFile::Kind::Mute ? AtrOfMute : file.oneByOne ? AtrOfT0 : AtrOfT1;
    if (card.has("atr"))
        file.atr = readBytes(card, "atr");
    file.pin = readPin(card);
    if (card.has("profile"))
        file.profile = readPattern(value.at("profile"), card.pointer("profile"));
    readStart(card, &file);
    readMenu(card, &file);
    return file;
}

} // namespace

CardFile CardFile::read(const std::string &name)
{
    std::ifstream stream(name, std::ios::binary);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf()))
        throw std::runtime_error(name + ": cannot be read: " + std::strerror(errno));
    try {
        CardFile file = readCard(StrictJson::parse(text.str()));
        file.file = name;
        return file;
    } catch (const StrictJson::Error &error) {
        throw StrictJson::Error(name + ": " + error.what());
    }
}
