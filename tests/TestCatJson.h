#ifndef TESTCATJSON_H
#define TESTCATJSON_H

#include <nlohmann/json.hpp>
#include <string>

#include "cat/Command.h"

// Bytes as hexadecimal digits, and decoded commands as JSON, for tables of cases.

inline cat::Bytes fromHex(const std::string &hex)
{
    cat::Bytes bytes;
    std::string digits;
    for (const char c : hex) {
        if (isxdigit(c))
            digits += c;
        if (digits.size() == 2) {
            bytes.push_back(uint8_t(std::stoul(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

inline std::string toHex(cat::ByteView bytes)
{
    std::string hex;
    for (const uint8_t byte : bytes) {
        hex += "0123456789ABCDEF"[byte >> 4];
        hex += "0123456789ABCDEF"[byte & 0x0f];
    }
    return hex;
}

namespace CatJson {

using Json = nlohmann::json;

inline Json duration(const cat::Duration &duration)
{
    static constexpr const char *Units[] = {"minutes", "seconds", "tenths"};
    return {{"unit", Units[int(duration.unit)]}, {"interval", duration.interval}};
}

inline Json menu(const cat::Menu &menu)
{
    Json items = Json::array();
    for (const cat::Item &item : menu.items)
        items.push_back({{"id", item.id}, {"text", item.text}});
    return {{"title", menu.title}, {"items", items}};
}

inline void set(Json &json, const char *key, const std::optional<cat::Duration> &value)
{
    if (value)
        json[key] = duration(*value);
}

struct Fields {
    Json operator()(const cat::DisplayText &c) const
    {
        Json json{{"text", c.text}, {"immediate", c.immediateResponse}};
        set(json, "duration", c.duration);
        return json;
    }
    Json operator()(const cat::GetInkey &c) const
    {
        Json json{{"text", c.text}};
        set(json, "duration", c.duration);
        return json;
    }
    Json operator()(const cat::GetInput &c) const
    {
        return {{"text", c.text},
                {"min", c.minLength},
                {"max", c.maxLength},
                {"default", c.defaultText}};
    }
    Json operator()(const cat::PlayTone &c) const
    {
        Json json{{"alpha", c.alpha}};
        if (c.tone)
            json["tone"] = *c.tone;
        set(json, "duration", c.duration);
        return json;
    }
    Json operator()(const cat::SetUpMenu &c) const { return menu(c.menu); }
    Json operator()(const cat::SelectItem &c) const
    {
        Json json = menu(c.menu);
        json["default_item"] = c.defaultItem;
        return json;
    }
    Json operator()(const cat::SetUpIdleModeText &c) const { return {{"text", c.text}}; }
    Json operator()(const cat::SetUpCall &c) const
    {
        return {{"confirm", c.confirmation}, {"setup", c.setUp}, {"number_dialled", c.address}};
    }
    Json operator()(const cat::SendSs &c) const { return {{"alpha", c.alpha}, {"code", c.code}}; }
    Json operator()(const cat::SendUssd &c) const { return {{"alpha", c.alpha}, {"code", c.code}}; }
    Json operator()(const cat::SendShortMessage &c) const
    {
        return {{"alpha", c.alpha}, {"address", c.address}, {"message", c.message}};
    }
    Json operator()(const cat::LaunchBrowser &c) const
    {
        return {{"alpha", c.alpha}, {"url", c.url}};
    }
    Json operator()(const cat::Refresh &c) const { return {{"files", toHex(c.files)}}; }
    Json operator()(const cat::PollInterval &c) const
    {
        return {{"duration", duration(c.duration)}};
    }
    Json operator()(const cat::TimerManagement &c) const
    {
        Json json{{"timer", c.timer}};
        if (c.value)
            json["seconds"] = c.value->count();
        return json;
    }
    Json operator()(const cat::SetUpEventList &c) const { return {{"events", toHex(c.events)}}; }
    Json operator()(const cat::LanguageNotification &c) const { return {{"language", c.language}}; }
    template <class Body> Json operator()(const Body &) const { return Json::object(); }
};

inline Json fields(const cat::Command &command)
{
    return std::visit(Fields(), command.body);
}

} // namespace CatJson

#endif
