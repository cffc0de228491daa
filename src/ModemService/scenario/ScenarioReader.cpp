#include "ScenarioReader.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "StrictJson.h"
#include "Text.h"

using std::chrono::milliseconds;
using StrictJson::Json;
using StrictJson::Object;

namespace {

using Names = std::vector<std::string>;

constexpr int64_t LongestTime = 24 * 60 * 60 * 1000; // milliseconds
constexpr milliseconds DefaultResponseTime{120000};

template <class Number> struct Range {
    static constexpr int64_t Lowest = std::numeric_limits<Number>::min();
    static constexpr int64_t Highest = std::numeric_limits<Number>::max();
};

template <class Number> void read(const Object &object, const char *key, Number &number)
{
    number = static_cast<Number>(
        object.number(key, Range<Number>::Lowest, Range<Number>::Highest, number));
}

milliseconds readTime(const Object &object, const char *key, milliseconds otherwise,
                      int64_t shortest = 0)
{
    return milliseconds(object.number(key, shortest, LongestTime, otherwise.count()));
}

Faults readFaults(const Object &owner)
{
    Faults faults;
    if (!owner.has("fail"))
        return faults;
    const std::string pointer = owner.pointer("fail");
    const Object object(owner.required("fail", "an object"), pointer, functionNames());
    for (const std::string &name : functionNames()) {
        if (!object.has(name))
            continue;
        const int64_t status = object.number(name, Range<int32_t>::Lowest, Range<int32_t>::Highest);
        if (status == 0)
            StrictJson::fail(object.pointer(name), "expected a status other than 0, found 0");
        faults[*functionByName(name)] = static_cast<int32_t>(status);
    }
    return faults;
}

CommandText readText(const Object &object, const char *key)
{
    return {object.text(key), object.flag("unterminated")};
}

CommandText readOptionalText(const Object &object, const char *key)
{
    return {object.text(key, ""), object.flag("unterminated")};
}

// ---- One function for each command: its own fields ----

void readItems(const Object &object, CommandMenu &menu)
{
    constexpr size_t MostItems = Range<int16_t>::Highest; // the count is a signed 16-bit number
    const Json &items = object.list("items");
    if (items.size() > MostItems)
        StrictJson::fail(object.pointer("items"),
                         "expected at most " + std::to_string(MostItems) + " items, found " +
                             std::to_string(items.size()));
    std::set<int16_t> ids;
    for (size_t i = 0; i < items.size(); ++i) {
        const Object item(items[i], StrictJson::elementPointer(object.pointer("items"), i),
                          {"id", "text", "do", "unterminated"});
        int16_t id = static_cast<int16_t>(i + 1);
        read(item, "id", id);
        if (!ids.insert(id).second)
            StrictJson::fail(item.pointer(item.has("id") ? "id" : "text"),
                             "another item has the identifier " + std::to_string(id) + " too");
        menu.items.push_back({id, readText(item, "text")});
    }
}

void readMenu(const Object &object, CommandMenu &menu)
{
    readItems(object, menu);
    menu.title = readText(object, "title");
    menu.withoutItems = object.flag("withoutItems");
    if (object.has("itemCount"))
        menu.reportedCount = static_cast<int16_t>(
            object.number("itemCount", Range<int16_t>::Lowest, Range<int16_t>::Highest));
}

CommandBody readSetUpMenu(const Object &object)
{
    SetUpMenu command;
    readMenu(object, command.menu);
    return command;
}

CommandBody readSelectItem(const Object &object)
{
    SelectItem command;
    readMenu(object, command.menu);
    read(object, "defaultItem", command.defaultItem);
    return command;
}

CommandBody readDisplayText(const Object &object)
{
    DisplayText command;
    command.text = readText(object, "text");
    read(object, "clearMode", command.clearMode);
    read(object, "duration", command.duration);
    return command;
}

CommandBody readGetInkey(const Object &object)
{
    GetInkey command;
    command.text = readText(object, "text");
    read(object, "inputType", command.inputType);
    read(object, "option", command.option);
    read(object, "duration", command.duration);
    return command;
}

CommandBody readGetInput(const Object &object)
{
    GetInput command;
    command.text = readText(object, "text");
    read(object, "inputType", command.inputType);
    read(object, "echo", command.echo);
    read(object, "minLength", command.minLength);
    read(object, "maxLength", command.maxLength);
    read(object, "option", command.option);
    command.defaultText = readOptionalText(object, "defaultText");
    return command;
}

CommandBody readSetUpCall(const Object &object)
{
    return SetUpCall{readOptionalText(object, "text"), object.text("address", "")};
}

CommandBody readPlayTone(const Object &object)
{
    PlayTone command;
    command.text = readOptionalText(object, "text");
    read(object, "tone", command.tone);
    read(object, "duration", command.duration);
    return command;
}

std::vector<uint8_t> readBytes(const Object &object, const char *key)
{
    constexpr size_t MostBytes = sizeof MOVA_STKRefreshInfo::abFiles;
    const std::string digits = object.text(key, "");
    const bool hexadecimal =
        digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!hexadecimal || digits.size() % 2 != 0 || digits.size() > 2 * MostBytes)
        StrictJson::fail(object.pointer(key), "at most 256 bytes in hexadecimal digits", digits);
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

CommandBody readRefresh(const Object &object)
{
    Refresh command;
    read(object, "qualifier", command.qualifier);
    command.files = readBytes(object, "files");
    return command;
}

CommandBody readSendSs(const Object &object)
{
    return SendSs{readOptionalText(object, "text"), object.text("code", "")};
}

CommandBody readSendShortMessage(const Object &object)
{
    return SendShortMessage{readOptionalText(object, "text"), object.text("address", ""),
                            object.text("message", "")};
}

CommandBody readSendUssd(const Object &object)
{
    return SendUssd{readOptionalText(object, "text"), object.text("code", "")};
}

CommandBody readLaunchBrowser(const Object &object)
{
    LaunchBrowser command;
    command.url = readOptionalText(object, "url");
    read(object, "launchMode", command.launchMode);
    return command;
}

CommandBody readSetUpIdleModeText(const Object &object)
{
    return SetUpIdleModeText{readText(object, "text")};
}

CommandBody readUnknownCommand(const Object &object)
{
    return UnknownCommand{static_cast<int32_t>(
        object.number("type", Range<int32_t>::Lowest, Range<int32_t>::Highest))};
}

struct CommandFormat {
    Names fields;
    Names branches;
    CommandBody (*read)(const Object &object);
};

const std::map<std::string, CommandFormat> &commandFormats()
{
    static const Names NoData = {"ok", "terminated", "notSupported", "otherwise"};
    static const Names Input = {"ok", "text", "cancelled", "terminated", "otherwise"};
    static const Names Inkey = {"ok", "yes", "no", "text", "cancelled", "terminated", "otherwise"};
    static const Names Menu = {"back", "terminated", "otherwise"};
    static const std::map<std::string, CommandFormat> Formats = {
        {"setUpMenu", {{"title", "items", "itemCount", "withoutItems"}, NoData, readSetUpMenu}},
        {"selectItem",
         {{"title", "items", "defaultItem", "itemCount", "withoutItems"}, Menu, readSelectItem}},
        {"displayText", {{"text", "clearMode", "duration"}, NoData, readDisplayText}},
        {"getInkey", {{"text", "inputType", "option", "duration"}, Inkey, readGetInkey}},
        {"getInput",
         {{"text", "inputType", "echo", "minLength", "maxLength", "option", "defaultText"},
          Input,
          readGetInput}},
        {"setUpCall", {{"text", "address"}, NoData, readSetUpCall}},
        {"playTone", {{"text", "tone", "duration"}, NoData, readPlayTone}},
        {"refresh", {{"qualifier", "files"}, NoData, readRefresh}},
        {"sendSs", {{"text", "code"}, NoData, readSendSs}},
        {"sendShortMessage", {{"text", "address", "message"}, NoData, readSendShortMessage}},
        {"sendUssd", {{"text", "code"}, NoData, readSendUssd}},
        {"launchBrowser", {{"url", "launchMode"}, NoData, readLaunchBrowser}},
        {"setUpIdleModeText", {{"text"}, NoData, readSetUpIdleModeText}},
        {"raw", {{"type"}, NoData, readUnknownCommand}},
    };
    return Formats;
}

const Names &kindsOfStep()
{
    static const Names Kinds = {"command", "wait", "silence", "endSession",
                                "timeout", "goto", "modem"};
    return Kinds;
}

// ---- Scripts ----

class ScriptReader {
public:
    explicit ScriptReader(milliseconds responseTime)
        : m_responseTime(responseTime)
    {
    }

    StepListId readList(const Json &steps, const std::string &pointer,
                        std::optional<StepPosition> parent, bool endsSession);
    // A list of a single command.
    StepListId readSingle(const Json &command, const std::string &pointer);
    // The card's main menu: a Set Up Menu that says so by its place.
    StepListId readMainMenu(const Json &menu, const std::string &pointer);
    std::shared_ptr<const Script> finish();

private:
    struct Jump {
        StepPosition from;
        std::string label;
        std::string pointer;
    };

    StepListId newList(std::optional<StepPosition> parent, bool endsSession);
    Step readStep(const Json &value, const std::string &pointer, const StepPosition &position);
    CommandStep readCommand(const std::string &name, const Json &value, const std::string &pointer,
                            const StepPosition &position, const Names &extraKeys);
    void readItemLists(const Object &object, CommandStep &step, const StepPosition &position);
    void readBranches(const Object &owner, const Names &allowed, CommandStep &step,
                      const StepPosition &position);
    ModemStep readModemStep(const Json &value, const std::string &pointer);
    void checkRemovals(const StepList &list, const std::string &pointer) const;

    milliseconds m_responseTime;
    Script m_script;
    std::map<std::string, StepPosition> m_labels;
    std::vector<Jump> m_jumps;
};

StepListId ScriptReader::newList(std::optional<StepPosition> parent, bool endsSession)
{
    m_script.lists.push_back({parent, endsSession, {}});
    return m_script.lists.size() - 1;
}

StepListId ScriptReader::readList(const Json &steps, const std::string &pointer,
                                  std::optional<StepPosition> parent, bool endsSession)
{
    StrictJson::list(steps, pointer);
    const StepListId id = newList(parent, endsSession);
    for (size_t i = 0; i < steps.size(); ++i) {
        // Reading a step adds lists: no reference into them may last across it.
        Step step = readStep(steps[i], StrictJson::elementPointer(pointer, i), {id, i});
        m_script.lists[id].steps.push_back(std::move(step));
    }
    checkRemovals(m_script.lists[id], pointer);
    return id;
}

StepListId ScriptReader::readSingle(const Json &command, const std::string &pointer)
{
    StrictJson::object(command, pointer);
    if (!command.contains("command"))
        StrictJson::fail(pointer, "expected the key \"command\" (a string), found none");
    const StepListId id = newList(std::nullopt, true);
    Step step = readStep(command, pointer, {id, 0});
    m_script.lists[id].steps.push_back(std::move(step));
    return id;
}

StepListId ScriptReader::readMainMenu(const Json &menu, const std::string &pointer)
{
    const StepListId id = newList(std::nullopt, true);
    Step step = readCommand("setUpMenu", menu, pointer, {id, 0}, {});
    m_script.lists[id].steps.push_back(std::move(step));
    return id;
}

std::shared_ptr<const Script> ScriptReader::finish()
{
    Names labels;
    for (const auto &label : m_labels)
        labels.push_back(label.first);
    for (const Jump &jump : m_jumps) {
        const auto target = m_labels.find(jump.label);
        if (target == m_labels.end())
            StrictJson::fail(jump.pointer,
                             labels.empty() ? "a label, of which there are none"
                                            : "one of the labels " + StrictJson::joined(labels),
                             jump.label);
        m_script.lists[jump.from.list].steps[jump.from.index] = GoToStep{target->second};
    }
    return std::make_shared<const Script>(std::move(m_script));
}

Step ScriptReader::readStep(const Json &value, const std::string &pointer,
                            const StepPosition &position)
{
    StrictJson::object(value, pointer);
    const Names &kinds = kindsOfStep();
    const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const std::string &name) { return value.contains(name); });
    if (kind == kinds.end())
        StrictJson::fail(pointer, "a step with one of the keys " + StrictJson::joined(kinds),
                         value);
    if (*kind == "command") {
        const Json &name = value["command"];
        if (!name.is_string())
            StrictJson::fail(pointer + "/command", "a string", name);
        return readCommand(name.get<std::string>(), value, pointer, position, {"command"});
    }
    if (*kind == "modem")
        return readModemStep(value, pointer);

    const Object object(value, pointer, {*kind});
    if (*kind == "wait")
        return WaitStep{milliseconds(object.number("wait", 0, LongestTime))};
    if (*kind == "goto") {
        m_jumps.push_back({position, object.text("goto"), object.pointer("goto")});
        return GoToStep();
    }
    if (!object.flag(*kind))
        StrictJson::fail(object.pointer(*kind), "true", value[*kind]);
    if (*kind == "silence")
        return SilenceStep();
    return *kind == "timeout" ? Step(TimeOutStep()) : Step(EndSessionStep());
}

CommandStep ScriptReader::readCommand(const std::string &name, const Json &value,
                                      const std::string &pointer, const StepPosition &position,
                                      const Names &extraKeys)
{
    const auto &formats = commandFormats();
    const auto format = formats.find(name);
    if (format == formats.end()) {
        Names names;
        for (const auto &known : formats)
            names.push_back(known.first);
        StrictJson::fail(pointer + "/command", "one of " + StrictJson::joined(names), name);
    }
    Names keys = extraKeys;
    for (const Names &more :
         {format->second.fields, Names{"label", "on", "fail", "responseTime", "unterminated"}})
        keys.insert(keys.end(), more.begin(), more.end());
    const Object object(value, pointer, keys);

    if (object.has("label") && !m_labels.emplace(object.text("label"), position).second)
        StrictJson::fail(object.pointer("label"),
                         "this label is used twice: \"" + object.text("label") + '"');
    CommandStep step;
    step.command.body = format->second.read(object);
    step.command.faults = readFaults(object);
    step.command.responseTime = readTime(object, "responseTime", m_responseTime);
    if (commandMenu(step.command.body))
        readItemLists(object, step, position);
    readBranches(object, format->second.branches, step, position);
    return step;
}

void ScriptReader::readItemLists(const Object &object, CommandStep &step,
                                 const StepPosition &position)
{
    // A Set Up Menu's items are chosen when its own script is long over.
    const bool isSubMenu = std::holds_alternative<SelectItem>(step.command.body);
    const auto parent = isSubMenu ? std::optional<StepPosition>(position) : std::nullopt;
    const Json &items = object.list("items");
    for (size_t i = 0; i < items.size(); ++i) {
        static const Json NoSteps = Json::array();
        const auto steps = items[i].find("do");
        const std::string item = StrictJson::elementPointer(object.pointer("items"), i);
        step.itemLists.push_back(readList(steps == items[i].end() ? NoSteps : *steps,
                                          StrictJson::keyPointer(item, "do"), parent, !isSubMenu));
    }
}

void ScriptReader::readBranches(const Object &owner, const Names &allowed, CommandStep &step,
                                const StepPosition &position)
{
    if (!owner.has("on"))
        return;
    const Object on(owner.required("on", "an object"), owner.pointer("on"), allowed);
    for (const std::string &name : allowed) {
        if (!on.has(name))
            continue;
        const std::string pointer = on.pointer(name);
        if (name != "text") {
            const bool positive = name == "ok" || name == "yes" || name == "no";
            step.branches[name] = readList(on.list(name), pointer, position, !positive);
            continue;
        }
        const Json &texts = StrictJson::object(on.required(name, "an object"), pointer);
        for (const auto &entry : texts.items())
            step.textBranches[entry.key()] = readList(
                entry.value(), StrictJson::keyPointer(pointer, entry.key()), position, false);
    }
}

ModemStep ScriptReader::readModemStep(const Json &value, const std::string &pointer)
{
    const Object object(value, pointer, {"modem", "after"});
    const std::string state = object.text("modem");
    if (state != "removed" && state != "ready")
        StrictJson::fail(object.pointer("modem"), "\"removed\" or \"ready\"", state);
    return {state == "ready", readTime(object, "after", milliseconds(0))};
}

// Without a modem the card can say nothing, and with a new one it starts from its beginning.
void ScriptReader::checkRemovals(const StepList &list, const std::string &pointer) const
{
    bool removed = false;
    bool over = false;
    for (size_t i = 0; i < list.steps.size(); ++i) {
        const auto *modem = std::get_if<ModemStep>(&list.steps[i]);
        const std::string place = StrictJson::elementPointer(pointer, i);
        if (over)
            StrictJson::fail(place,
                             "expected no step after the modem is ready, the card starts "
                             "from its beginning");
        if (removed && !(modem && modem->ready) && !std::holds_alternative<WaitStep>(list.steps[i]))
            StrictJson::fail(place, "expected a wait or the modem ready, after it was removed");
        if (!removed && modem && modem->ready)
            StrictJson::fail(place, "expected the modem removed before it is ready again");
        removed = removed || modem;
        over = modem && modem->ready;
    }
}

// ---- Files ----

Scenario readScenarioObject(const Json &json)
{
    const Object object(
        json, "", {"name", "latency", "responseTime", "modemTime", "menu", "unasked", "fail"});
    Scenario scenario;
    scenario.latency = readTime(object, "latency", scenario.latency, 1);
    scenario.traits.modemTime = readTime(object, "modemTime", scenario.traits.modemTime);
    scenario.traits.faults = readFaults(object);

    ScriptReader reader(readTime(object, "responseTime", DefaultResponseTime));
    reader.readMainMenu(object.required("menu", "an object"), object.pointer("menu"));
    const Json none = Json::array();
    const Json &unasked = object.has("unasked") ? object.list("unasked") : none;
    for (size_t i = 0; i < unasked.size(); ++i) {
        const Object entry(unasked[i], StrictJson::elementPointer(object.pointer("unasked"), i),
                           {"after", "send"});
        const Json &command = entry.required("send", "a command");
        scenario.unasked.push_back({milliseconds(entry.number("after", 0, LongestTime)),
                                    reader.readSingle(command, entry.pointer("send"))});
    }
    scenario.script = reader.finish();
    const CommandStep &menu = std::get<CommandStep>(scenario.script->lists[0].steps[0]);
    scenario.traits.name = object.text("name", commandMenu(menu.command.body)->title.utf8.c_str());
    return scenario;
}

} // namespace

Scenario readScenario(const std::string &file)
{
    try {
        return readScenarioObject(StrictJson::readFile(file, "scenario"));
    } catch (const StrictJson::Error &error) {
        throw ScenarioError(oneLine(file) + ": " + error.what());
    }
}

std::shared_ptr<const Script> readCommand(const std::string &json)
{
    try {
        ScriptReader reader(DefaultResponseTime);
        reader.readSingle(StrictJson::parse(json), "");
        return reader.finish();
    } catch (const StrictJson::Error &error) {
        throw ScenarioError(std::string("command: ") + error.what());
    }
}
