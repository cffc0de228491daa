#include "Transcript.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <utility>

#include "ServiceStatus.h"
#include "Text.h"
#include "cat/Hex.h"

using Json = nlohmann::ordered_json;

struct Transcript::Line {
    const char *road; // who tells whom
    std::string text;
    Json json;
    bool isDialogue = false;
};

namespace {

constexpr const char *FromCard = "card → terminal";
constexpr const char *ToCard = "terminal → card";
constexpr const char *OfModem = "modem          ";
constexpr const char *Wire = "APDU           ";
constexpr const char *FromModem = "modem → host   ";
constexpr const char *ToModem = "host → modem   ";

std::string number(int64_t value)
{
    return std::to_string(value);
}

std::string quoted(const std::string &text)
{
    return '"' + oneLine(text) + '"';
}

void addMenu(Json &json, const CommandMenu &menu)
{
    json["title"] = menu.title.utf8;
    Json items = Json::array();
    for (const CommandMenuItem &item : menu.items)
        items.push_back({{"id", item.id}, {"text", item.text.utf8}});
    json["items"] = std::move(items);
}

struct FieldWriter {
    Json &json;

    void operator()(const UnknownCommand &command) { json["type"] = command.type; }
    void operator()(const SetUpMenu &command) { addMenu(json, command.menu); }
    void operator()(const DisplayText &command)
    {
        json["text"] = command.text.utf8;
        json["clearMode"] = command.clearMode;
        json["duration"] = command.duration;
    }
    void operator()(const GetInkey &command)
    {
        json["text"] = command.text.utf8;
        json["inputType"] = command.inputType;
        json["option"] = command.option;
        json["duration"] = command.duration;
    }
    void operator()(const GetInput &command)
    {
        json["text"] = command.text.utf8;
        json["inputType"] = command.inputType;
        json["echo"] = command.echo;
        json["minLength"] = command.minLength;
        json["maxLength"] = command.maxLength;
        json["option"] = command.option;
        json["defaultText"] = command.defaultText.utf8;
    }
    void operator()(const SetUpCall &command)
    {
        json["text"] = command.text.utf8;
        json["address"] = command.address;
    }
    void operator()(const PlayTone &command)
    {
        json["text"] = command.text.utf8;
        json["tone"] = command.tone;
        json["duration"] = command.duration;
    }
    void operator()(const SelectItem &command)
    {
        addMenu(json, command.menu);
        json["defaultItem"] = command.defaultItem;
    }
    void operator()(const Refresh &command)
    {
        json["qualifier"] = command.qualifier;
        json["files"] = cat::toHex(command.files);
    }
    void operator()(const SendSs &command)
    {
        json["text"] = command.text.utf8;
        json["code"] = command.code;
    }
    void operator()(const SendShortMessage &command)
    {
        json["text"] = command.text.utf8;
        json["address"] = command.address;
        json["message"] = command.message;
    }
    void operator()(const SendUssd &command)
    {
        json["text"] = command.text.utf8;
        json["code"] = command.code;
    }
    void operator()(const LaunchBrowser &command)
    {
        json["url"] = command.url.utf8;
        json["launchMode"] = command.launchMode;
    }
    void operator()(const SetUpIdleModeText &command) { json["text"] = command.text.utf8; }
};

// What a command says, for people: its text, then the other fields in brackets.
std::string inWords(const Json &fields)
{
    std::string text;
    std::string rest;
    for (const auto &field : fields.items()) {
        const std::string &name = field.key();
        if (name == "title" || name == "text" || name == "url") {
            text += ' ' + quoted(field.value().get<std::string>());
            continue;
        }
        rest += rest.empty() ? " (" : ", ";
        if (field.value().is_array())
            rest += number(static_cast<int64_t>(field.value().size())) + " items";
        else if (field.value().is_string())
            rest += name + ' ' + quoted(field.value().get<std::string>());
        else
            rest += name + ' ' + field.value().dump();
    }
    return text + (rest.empty() ? "" : rest + ")");
}

std::string commandNumber(const char *name, int16_t id)
{
    return std::string(name) + " #" + number(id);
}

// What the user types unseen is nobody's to read: most often it is a PIN.
bool isHidden(const CommandBody &body)
{
    const auto *input = std::get_if<GetInput>(&body);
    return input && input->echo != 1;
}

// An asterisk for each character.
std::string blanked(const std::string &utf8)
{
    const auto isStart = [](char unit) {
        return (static_cast<unsigned char>(unit) & 0xc0) != 0x80;
    };
    return std::string(static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), isStart)), '*');
}

// The time of day for people, local; date and time for programs, UTC (ISO 8601), both to the
// millisecond.
std::pair<std::string, std::string> timeStamps()
{
    const auto now = std::chrono::system_clock::now();
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
    const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm local{}, utc{};
    localtime_r(&seconds, &local);
    gmtime_r(&seconds, &utc);
    char time[16], date[32], fraction[8];
    std::strftime(time, sizeof time, "%H:%M:%S.", &local);
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S.", &utc);
    std::snprintf(fraction, sizeof fraction, "%03u", static_cast<unsigned>(milliseconds % 1000));
    return {std::string(time) + fraction, std::string(date) + fraction + 'Z'};
}

} // namespace

int Transcript::addListener(CardHost::TranscriptListener listener)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_listeners.emplace(++m_lastId, std::move(listener));
    return m_lastId;
}

void Transcript::removeListener(int id)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_listeners.erase(id);
    if (m_teller != std::this_thread::get_id())
        m_changed.wait(lock, [&] { return m_told != id; });
}

void Transcript::removeAllListeners()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_listeners.clear();
}

bool Transcript::hasListeners()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return !m_listeners.empty();
}

void Transcript::cardOpened(const std::string &name)
{
    if (!hasListeners())
        return;
    append({OfModem,
            "card opened " + quoted(name),
            {{"event", "card"}, {"state", "opened"}, {"name", name}}});
}

void Transcript::cardClosed()
{
    if (!hasListeners())
        return;
    append({OfModem, "card closed", {{"event", "card"}, {"state", "closed"}}});
}

void Transcript::device(bool ready)
{
    if (!hasListeners())
        return;
    const char *state = ready ? "ready" : "removed";
    append({OfModem, state, {{"event", "device"}, {"state", state}}});
}

void Transcript::command(int16_t id, const CommandBody &body)
{
    if (!hasListeners())
        return;
    Json fields = Json::object();
    std::visit(FieldWriter{fields}, body);
    Json json = {{"event", "command"}, {"command", commandName(body)}, {"id", id}};
    json.update(fields);
    append({FromCard, commandNumber(commandName(body), id) + inWords(fields), std::move(json)});
}

void Transcript::response(int16_t id, const CommandBody &body, const TerminalResponse &response,
                          std::optional<ServiceFunction> function)
{
    if (!hasListeners())
        return;
    std::string text = commandNumber(commandName(body), id) + ": " + resultName(response.result);
    Json json = {{"event", "response"},
                 {"command", commandName(body)},
                 {"id", id},
                 {"by", function ? functionName(*function) : "modem"},
                 {"result", resultName(response.result)}};
    if (function == ServiceFunction::AnswerInKey || function == ServiceFunction::AnswerInput)
        json["accepted"] = response.result == TerminalResponse::Result::Performed;
    if (response.value) {
        json["value"] = *response.value;
        text += " (" + number(*response.value) + ')';
    }
    if (response.item) {
        json["item"] = *response.item;
        text += ", item " + number(*response.item);
        const CommandMenu *menu = commandMenu(body);
        if (const CommandMenuItem *item = menu ? menu->find(*response.item) : nullptr) {
            json["itemText"] = item->text.utf8;
            text += ' ' + quoted(item->text.utf8);
        }
    }
    if (response.text) {
        const std::string shown = isHidden(body) ? blanked(*response.text) : *response.text;
        json["text"] = shown;
        text += ", " + quoted(shown);
    }
    append({function ? ToCard : OfModem, text, std::move(json)});
}

void Transcript::overtaken(int16_t id, const CommandBody &body)
{
    if (!hasListeners())
        return;
    append({FromCard,
            commandNumber(commandName(body), id) + ": overtaken by the next command",
            {{"event", "overtaken"}, {"command", commandName(body)}, {"id", id}}});
}

void Transcript::selection(const CommandMenuItem &item)
{
    if (!hasListeners())
        return;
    append({ToCard,
            "MENU SELECTION, item " + number(item.id) + ' ' + quoted(item.text.utf8),
            {{"event", "selection"}, {"item", item.id}, {"itemText", item.text.utf8}}});
}

void Transcript::timeOut(int16_t id)
{
    if (!hasListeners())
        return;
    append({FromCard, commandNumber("SESSION TIME-OUT", id), {{"event", "timeout"}, {"id", id}}});
}

void Transcript::endOfSession(int16_t id)
{
    if (!hasListeners())
        return;
    append({FromCard, commandNumber("END OF SESSION", id), {{"event", "endSession"}, {"id", id}}});
}

void Transcript::refused(ServiceFunction function, std::optional<int16_t> id, int32_t status)
{
    if (!hasListeners())
        return;
    const char *reason = *statusText(status) ? statusText(status) : "the card's fault";
    std::string text = std::string("refused: ") + functionName(function);
    Json json = {{"event", "refused"}, {"call", functionName(function)}};
    if (id) {
        text += " #" + number(*id);
        json["id"] = *id;
    }
    json["status"] = status;
    json["reason"] = reason;
    append({ToCard, text + ": " + reason + " (" + number(status) + ')', std::move(json)});
}

void Transcript::notice(const CardHost::Notice &notice)
{
    if (!hasListeners())
        return;
    append({OfModem,
            oneLine(notice.text),
            {{"event", "notice"}, {"text", notice.text}, {"problem", notice.problem}}});
}

void Transcript::answeredByModem(const std::string &command, const std::string &result)
{
    if (!hasListeners())
        return;
    append({OfModem,
            command + ": " + result,
            {{"event", "answeredByModem"}, {"command", command}, {"result", result}}});
}

void Transcript::apdu(cat::ByteView command, cat::ByteView response)
{
    if (!hasListeners())
        return;
    append({Wire,
            cat::toHex(command) + " → " + (response.empty() ? "no answer" : cat::toHex(response)),
            {{"event", "apdu"},
             {"command", cat::toHex(command)},
             {"response", cat::toHex(response)}}});
}

void Transcript::spoken(bool byModem, const std::string &line)
{
    if (!hasListeners())
        return;
    append({byModem ? FromModem : ToModem,
            oneLine(line),
            {{"event", "spoken"}, {"by", byModem ? "modem" : "host"}, {"line", line}},
            true});
}

void Transcript::append(const Line &line)
{
    const auto [text, date] = timeStamps();
    Json json = {{"time", date}};
    json.update(line.json);
    CardHost::TranscriptEntry entry{text + "  " + line.road + "  " + line.text,
                                    json.dump(-1, ' ', false, Json::error_handler_t::replace),
                                    line.isDialogue};
    std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.push_back(std::move(entry));
}

void Transcript::deliver()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_teller == std::this_thread::get_id())
        return;
    m_changed.wait(lock, [this] { return m_teller == std::thread::id(); });
    m_teller = std::this_thread::get_id();
    while (!m_entries.empty()) {
        const CardHost::TranscriptEntry entry = std::move(m_entries.front());
        m_entries.pop_front();
        tell(lock, entry);
    }
    m_teller = std::thread::id();
    m_changed.notify_all();
}

void Transcript::tell(std::unique_lock<std::mutex> &lock, const CardHost::TranscriptEntry &entry)
{
    // A listener may remove itself or another while it is called: walk by identifier.
    for (auto next = m_listeners.begin(); next != m_listeners.end();
         next = m_listeners.upper_bound(m_told)) {
        m_told = next->first;
        const CardHost::TranscriptListener listener = next->second;
        lock.unlock();
        listener(entry);
        lock.lock();
        m_changed.notify_all();
    }
    m_told = 0;
    m_changed.notify_all();
}
