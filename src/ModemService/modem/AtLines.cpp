#include "AtLines.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

bool isLineEnd(char character)
{
    return character == '\r' || character == '\n';
}

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<int> digitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return std::nullopt;
}

// A modem that was not asked for numbers, or does not know them, says words.
std::optional<int> errorCode(std::string_view value)
{
    constexpr struct {
        std::string_view words;
        int code;
    } Words[] = {{"SIM not inserted", 10},  {"SIM PIN required", 11}, {"SIM PUK required", 12},
                 {"SIM failure", 13},       {"SIM busy", 14},         {"SIM wrong", 15},
                 {"incorrect password", 16}};
    for (const auto &row : Words) {
        if (value == row.words)
            return row.code;
    }
    return numberOf(value);
}

} // namespace

void AtLineReader::add(std::string_view bytes)
{
    m_bytes.append(bytes);
}

void AtLineReader::clear()
{
    m_bytes.clear();
    m_tooLong = false;
}

std::optional<std::string> AtLineReader::next()
{
    while (true) {
        const auto end = std::find_if(m_bytes.begin(), m_bytes.end(), isLineEnd);
        if (end == m_bytes.end()) {
            if (m_bytes.size() > LongestLine) {
                m_bytes.clear();
                m_tooLong = true;
            }
            return std::nullopt;
        }
        // Some modems put a zero before their first line.
        std::string line(m_bytes.begin(), end);
        m_bytes.erase(m_bytes.begin(), end + 1);
        const bool passedOver = std::exchange(m_tooLong, false) || line.size() > LongestLine;
        line.erase(std::remove(line.begin(), line.end(), '\0'), line.end());
        if (!passedOver && !trimmed(line).empty())
            return std::string(trimmed(line));
    }
}

std::optional<AtFinal> finalResult(std::string_view line)
{
    if (line == "OK")
        return AtFinal{AtFinal::Kind::Ok, std::nullopt};
    if (line == "ERROR" || line == "NO CARRIER" || line == "COMMAND NOT SUPPORT")
        return AtFinal{AtFinal::Kind::Error, std::nullopt};
    for (const char *name : {"+CME ERROR", "+CMS ERROR"}) {
        if (const auto value = valueOf(line, name))
            return AtFinal{AtFinal::Kind::Error, errorCode(*value)};
    }
    return std::nullopt;
}

std::optional<std::string_view> valueOf(std::string_view line, std::string_view name)
{
    if (line.substr(0, name.size()) != name)
        return std::nullopt;
    line.remove_prefix(name.size());
    if (line.empty())
        return line;
    if (line.front() != ':' && line.front() != ' ')
        return std::nullopt; // a longer name
    line.remove_prefix(1);
    return trimmed(line);
}

std::vector<std::string> parameters(std::string_view value)
{
    std::vector<std::string> result(1);
    bool quoted = false;
    for (const char character : value) {
        if (character == '"')
            quoted = !quoted;
        else if (character == ',' && !quoted)
            result.emplace_back();
        else
            result.back() += character;
    }
    for (std::string &parameter : result)
        parameter = trimmed(parameter);
    return result;
}

std::optional<cat::Bytes> bytesOf(std::string_view hexadecimal)
{
    if (hexadecimal.size() % 2 != 0)
        return std::nullopt;
    cat::Bytes bytes;
    bytes.reserve(hexadecimal.size() / 2);
    for (size_t i = 0; i < hexadecimal.size(); i += 2) {
        const auto high = digitOf(hexadecimal[i]), low = digitOf(hexadecimal[i + 1]);
        if (!high || !low)
            return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(*high << 4 | *low));
    }
    return bytes;
}

std::optional<int> numberOf(std::string_view decimal)
{
    int number = 0;
    const auto [end, error] = std::from_chars(decimal.begin(), decimal.end(), number);
    if (error != std::errc() || end != decimal.end())
        return std::nullopt;
    return number;
}
