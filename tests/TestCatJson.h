#ifndef TESTCATJSON_H
#define TESTCATJSON_H

#include <nlohmann/json.hpp>
#include <string>

#include "cat/Command.h"
#include "cat/Hex.h"

// Bytes from hexadecimal digits, and decoded commands as JSON, for tables of cases.

inline cat::Bytes bytes(const std::string &hex)
{
    return cat::fromHex(hex).value();
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

inline Json with(Json json, const std::optional<cat::Duration> &value)
{
    if (value)
        json["duration"] = duration(*value);
    return json;
}

inline Json with(Json json, const char *key, const Json &value)
{
    json[key] = value;
    return json;
}

struct Fields {
    Json operator()(const cat::DisplayText &c) const
    {
        return with({{"text", c.text}, {"immediate", c.immediateResponse}}, c.duration);
    }
    Json operator()(const cat::GetInkey &c) const { return with({{"text", c.text}}, c.duration); }
    Json operator()(const cat::GetInput &c) const
    {
        const Json limits{{"min", c.minLength}, {"max", c.maxLength}};
        return with(with(limits, "text", c.text), "default", c.defaultText);
    }
    Json operator()(const cat::PlayTone &c) const
    {
        const Json json{{"alpha", c.alpha}};
        return with(c.tone ? with(json, "tone", *c.tone) : json, c.duration);
    }
    Json operator()(const cat::SetUpMenu &c) const { return menu(c.menu); }
    Json operator()(const cat::SelectItem &c) const
    {
        return with(menu(c.menu), "default_item", c.defaultItem);
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
    Json operator()(const cat::Refresh &c) const { return {{"files", cat::toHex(c.files)}}; }
    Json operator()(const cat::PollInterval &c) const { return with(Json::object(), c.duration); }
    Json operator()(const cat::TimerManagement &c) const
    {
        const Json json{{"timer", c.timer}};
        return c.value ? with(json, "seconds", c.value->count()) : json;
    }
    Json operator()(const cat::SetUpEventList &c) const
    {
        return {{"events", cat::toHex(c.events)}};
    }
    Json operator()(const cat::LanguageNotification &c) const { return {{"language", c.language}}; }
    template <class Body> Json operator()(const Body &) const { return Json::object(); }
};

inline Json fields(const cat::Command &command)
{
    return std::visit(Fields(), command.body);
}

} // namespace CatJson

#endif
