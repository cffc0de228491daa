#include "AtDialect.h"

#include <algorithm>
#include <vector>

#include "Text.h"
#include "scenario/StrictJson.h"

namespace {

constexpr std::string AtDialect::*Members[] = {
    &AtDialect::profileRead,       &AtDialect::profileWrite,  &AtDialect::download,
    &AtDialect::activate,          &AtDialect::envelope,      &AtDialect::response,
    &AtDialect::command,           &AtDialect::state,         &AtDialect::end,
    &AtDialect::envelopeAnswerToo, &AtDialect::envelopeStatus};

// None of what would be taken for something else in a command or a line; "AT" stands before it.
bool isName(const std::string &text)
{
    constexpr size_t Shortest = 2, Longest = 32;
    const auto fits = [](char character) {
        return character > ' ' && character <= '~' &&
            std::string_view("\",:;=?").find(character) == std::string_view::npos;
    };
    return text.size() >= Shortest && text.size() <= Longest && text.compare(0, 2, "AT") != 0 &&
        std::all_of(text.begin(), text.end(), fits);
}

AtDialect readNames(const StrictJson::Json &json)
{
    AtDialect dialect;
    std::vector<std::string> keys;
    for (const auto member : Members)
        keys.push_back(dialect.*member);
    const StrictJson::Object object(json, "", keys);
    for (const auto member : Members) {
        const std::string key = dialect.*member;
        dialect.*member = object.text(key, key.c_str());
        if (!isName(dialect.*member))
            StrictJson::fail(
                object.pointer(key),
                "a name, without \"AT\": 2 to 32 visible ASCII characters, none of \",:;=?",
                dialect.*member);
    }
    return dialect;
}

} // namespace

AtDialect readAtDialect(const std::string &file)
{
    try {
        return readNames(StrictJson::readFile(file, "dialect"));
    } catch (const StrictJson::Error &error) {
        throw StrictJson::Error(oneLine(file) + ": " + error.what());
    }
}
