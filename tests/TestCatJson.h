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

// The fields of the commands' bodies; found in the namespace of the codec, whose names they share.
namespace cat {

using Json = nlohmann::json;

inline Json with(Json json, const char *key, const Json &value)
{
    json[key] = value;
    return json;
}

inline Json with(const Json &json, const std::optional<Duration> &value)
{
    static constexpr const char *Units[] = {"minutes", "seconds", "tenths"};
    if (!value)
        return json;
    const Json duration{{"unit", Units[int(value->unit)]}, {"interval", value->interval}};
    return with(json, "duration", duration);
}

inline Json with(Json json, const Menu &menu)
{
    json["title"] = menu.title;
    json["items"] = Json::array();
    for (const Item &item : menu.items)
        json["items"].push_back({{"id", item.id}, {"text", item.text}});
    return json;
}

struct Fields {
    Json operator()(const DisplayText &c) const
    {
        return with({{"text", c.text}, {"immediate", c.immediateResponse}}, c.duration);
    }
    Json operator()(const GetInkey &c) const { return with({{"text", c.text}}, c.duration); }
    Json operator()(const GetInput &c) const
    {
        const Json limits{{"min", c.minLength}, {"max", c.maxLength}};
        return with(with(limits, "text", c.text), "default", c.defaultText);
    }
    Json operator()(const PlayTone &c) const
    {
        const Json json{{"alpha", c.alpha}};
        return with(c.tone ? with(json, "tone", *c.tone) : json, c.duration);
    }
    Json operator()(const SetUpMenu &c) const { return with({}, c.menu); }
    Json operator()(const SelectItem &c) const
    {
        return with({{"default_item", c.defaultItem}}, c.menu);
    }
    Json operator()(const SetUpIdleModeText &c) const { return {{"text", c.text}}; }
    Json operator()(const SetUpCall &c) const
    {
        return {{"confirm", c.confirmation}, {"setup", c.setUp}, {"number_dialled", c.address}};
    }
    Json operator()(const SendSs &c) const { return {{"alpha", c.alpha}, {"code", c.code}}; }
    Json operator()(const SendUssd &c) const { return {{"alpha", c.alpha}, {"code", c.code}}; }
    Json operator()(const SendShortMessage &c) const
    {
        return {{"alpha", c.alpha}, {"address", c.address}, {"message", c.message}};
    }
    Json operator()(const LaunchBrowser &c) const { return {{"alpha", c.alpha}, {"url", c.url}}; }
    Json operator()(const Refresh &c) const { return {{"files", toHex(c.files)}}; }
    Json operator()(const PollInterval &c) const { return with(Json::object(), c.duration); }
    Json operator()(const TimerManagement &c) const
    {
        const Json json{{"timer", c.timer}};
        return c.value ? with(json, "seconds", c.value->count()) : json;
    }
    Json operator()(const SetUpEventList &c) const { return {{"events", toHex(c.events)}}; }
    Json operator()(const LanguageNotification &c) const { return {{"language", c.language}}; }
    template <class Body> Json operator()(const Body &) const { return Json::object(); }
};

inline Json fields(const Command &command)
{
    return std::visit(Fields(), command.body);
}

} // namespace cat

#endif
