#include "StrictJson.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>

#include "Text.h"

namespace StrictJson {

namespace {

struct FileCloser {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

constexpr size_t LargestFile = 16 * 1024 * 1024;
constexpr int DeepestLevel = 400;
constexpr size_t LongestFound = 40; // bytes of a value that are shown

std::string escapedKey(const std::string &key)
{
    std::string escaped;
    for (char character : key) {
        if (character == '~')
            escaped += "~0";
        else if (character == '/')
            escaped += "~1";
        else
            escaped += character;
    }
    return escaped;
}

std::string described(const Json &value)
{
    if (value.is_object())
        return value.empty() ? "an empty object" : "an object";
    if (value.is_array())
        return value.empty() ? "an empty list" : "a list";
    if (value.is_string())
        return '"' + shortened(value.get<std::string>(), LongestFound) + '"';
    return value.dump();
}

// Watches over the parser: it knows where it is, which the parser does not tell.
class Watcher {
public:
    bool operator()(int, Json::parse_event_t event, Json &parsed)
    {
        switch (event) {
        case Json::parse_event_t::object_start:
        case Json::parse_event_t::array_start:
            enterValue();
            m_levels.push_back({event == Json::parse_event_t::array_start, 0, {}, {}});
            if (m_levels.size() > DeepestLevel)
                fail(shortened(pointer(), 100),
                     "nested deeper than " + std::to_string(DeepestLevel) + " levels");
            break;
        case Json::parse_event_t::key:
            m_levels.back().key = parsed.get<std::string>();
            if (!m_levels.back().keys.insert(m_levels.back().key).second)
                fail(pointer(), "this key stands here twice");
            break;
        case Json::parse_event_t::value:
            enterValue();
            break;
        case Json::parse_event_t::object_end:
        case Json::parse_event_t::array_end:
            m_levels.pop_back();
            break;
        }
        return true;
    }

private:
    struct Level {
        bool isList;
        size_t count;
        std::string key;
        std::set<std::string> keys;
    };

    void enterValue()
    {
        if (!m_levels.empty())
            ++m_levels.back().count;
    }

    std::string pointer() const
    {
        std::string path;
        for (const Level &level : m_levels) {
            if (level.isList && level.count > 0)
                path += '/' + std::to_string(level.count - 1);
            else if (!level.isList && !level.keys.empty())
                path += '/' + escapedKey(level.key);
        }
        return path;
    }

    std::vector<Level> m_levels;
};

// "syntax error while parsing value - invalid literal; last read: '...'" out of the library's text.
std::string reason(const std::string &what)
{
    const size_t start = what.find("column");
    const size_t colon = what.find(": ", start == std::string::npos ? 0 : start);
    return colon == std::string::npos ? what : what.substr(colon + 2);
}

} // namespace

Json parse(const std::string &text)
{
    try {
        return Json::parse(text, Watcher());
    } catch (const Json::parse_error &error) {
        const size_t end = std::min(text.size(), error.byte > 0 ? error.byte - 1 : 0);
        const auto lineFeeds = std::count(text.begin(), text.begin() + end, '\n');
        const size_t lineStart = end == 0 ? 0 : text.rfind('\n', end - 1) + 1;
        fail("line " + std::to_string(lineFeeds + 1) + ", column " +
                 std::to_string(end - lineStart + 1),
             "not JSON: " + reason(error.what()));
    } catch (const Json::exception &error) {
        // E.g. a number that no type holds.
        fail("", std::string("not JSON: ") + error.what());
    }
}

void fail(const std::string &pointer, const std::string &message)
{
    throw Error(oneLine((pointer.empty() ? "/" : pointer) + ": " + message));
}

Json readFile(const std::string &name, const std::string &what)
{
    const auto cannotBeRead = [] {
        return Error(std::string("cannot be read: ") + std::strerror(errno));
    };
    std::error_code ignored; // what cannot be looked at is told by opening it
    const auto status = std::filesystem::status(name, ignored);
    if (std::filesystem::is_directory(status))
        throw Error("expected a " + what + " file, found a directory");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw Error("expected a " + what + " file, found a device or a pipe");
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(name.c_str(), "rb"));
    if (!file)
        throw cannotBeRead();
    std::string text(LargestFile + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    if (std::ferror(file.get()))
        throw cannotBeRead();
    if (text.size() > LargestFile)
        throw Error("expected at most 16 MiB, found more");
    if (text.empty())
        throw Error("expected a " + what + ", found an empty file");
    return parse(text);
}

void fail(const std::string &pointer, const std::string &expected, const Json &found)
{
    fail(pointer, "expected " + expected + ", found " + described(found));
}

std::string joined(const std::vector<std::string> &names)
{
    std::string line;
    for (const std::string &name : names)
        line += (line.empty() ? "" : ", ") + name;
    return line;
}

Object::Object(const Json &value, std::string pointer, const std::vector<std::string> &keys)
    : m_value(object(value, pointer))
    , m_pointer(std::move(pointer))
{
    for (const auto &entry : m_value.items()) {
        if (entry.key() == "comment")
            text("comment");
        else if (std::find(keys.begin(), keys.end(), entry.key()) == keys.end())
            fail(this->pointer(entry.key()), "unknown key; allowed here: " + joined(keys));
    }
}

std::string Object::pointer(const std::string &key) const
{
    return keyPointer(m_pointer, key);
}

const Json &Object::required(const std::string &key, const char *expected) const
{
    const auto found = m_value.find(key);
    if (found == m_value.end())
        fail(m_pointer, "expected the key \"" + key + "\" (" + expected + "), found none");
    return *found;
}

std::string Object::text(const std::string &key) const
{
    const Json &value = required(key, "a string");
    if (!value.is_string())
        fail(pointer(key), "a string", value);
    return value.get<std::string>();
}

std::string Object::text(const std::string &key, const char *otherwise) const
{
    return has(key) ? text(key) : otherwise;
}

int64_t Object::number(const std::string &key, int64_t lowest, int64_t highest) const
{
    return StrictJson::number(required(key, "a number"), pointer(key), lowest, highest);
}

int64_t Object::number(const std::string &key, int64_t lowest, int64_t highest,
                       int64_t otherwise) const
{
    return has(key) ? number(key, lowest, highest) : otherwise;
}

bool Object::flag(const std::string &key) const
{
    if (!has(key))
        return false;
    const Json &value = m_value.at(key);
    if (!value.is_boolean())
        fail(pointer(key), "true or false", value);
    return value.get<bool>();
}

const Json &Object::list(const std::string &key) const
{
    return StrictJson::list(required(key, "a list"), pointer(key));
}

std::string keyPointer(const std::string &object, const std::string &key)
{
    return object + '/' + escapedKey(key);
}

std::string elementPointer(const std::string &list, size_t index)
{
    return list + '/' + std::to_string(index);
}

int64_t number(const Json &value, const std::string &pointer, int64_t lowest, int64_t highest)
{
    const std::string expected =
        "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    const bool tooBig = value.is_number_unsigned() && value.get<uint64_t>() > uint64_t(INT64_MAX);
    if (!value.is_number_integer() || tooBig || value.get<int64_t>() < lowest ||
        value.get<int64_t>() > highest)
        fail(pointer, expected, value);
    return value.get<int64_t>();
}

const Json &object(const Json &value, const std::string &pointer)
{
    if (!value.is_object())
        fail(pointer, "an object", value);
    return value;
}

const Json &list(const Json &value, const std::string &pointer)
{
    if (!value.is_array())
        fail(pointer, "a list", value);
    return value;
}

} // namespace StrictJson
