#ifndef STRICTJSON_H
#define STRICTJSON_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

/// JSON that people write by hand: whatever is not exactly right is an error that says where.
namespace StrictJson {

using Json = nlohmann::json;

/// One line: the place (a JSON pointer, or line and column) and what is wrong there.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Parses the text.  A key that stands twice in an object and nesting deeper than 400 levels are
/// errors too.
Json parse(const std::string &text);
/// The same of a file, which is to hold `what`: "scenario".
Json readFile(const std::string &name, const std::string &what);

/// "<pointer>: expected <expected>, found <found>"
[[noreturn]] void fail(const std::string &pointer, const std::string &expected, const Json &found);
[[noreturn]] void fail(const std::string &pointer, const std::string &message);

/// The names as a list for people: "a, b, c".
std::string joined(const std::vector<std::string> &names);

/// An object whose keys are known.  Every reading function fails on a value that does not fit.
class Object {
public:
    /// `keys` are the keys that may stand there; "comment", a string, always may.
    Object(const Json &value, std::string pointer, const std::vector<std::string> &keys);

    const std::string &pointer() const { return m_pointer; }
    std::string pointer(const std::string &key) const;
    bool has(const std::string &key) const { return m_value.contains(key); }
    const Json &required(const std::string &key, const char *expected) const;

    std::string text(const std::string &key) const;
    std::string text(const std::string &key, const char *otherwise) const;
    int64_t number(const std::string &key, int64_t lowest, int64_t highest) const;
    int64_t number(const std::string &key, int64_t lowest, int64_t highest,
                   int64_t otherwise) const;
    bool flag(const std::string &key) const; ///< false where it does not stand there
    const Json &list(const std::string &key) const;

private:
    const Json &m_value;
    std::string m_pointer;
};

/// The pointer to what stands under the key of an object, or to an element of a list.
std::string keyPointer(const std::string &object, const std::string &key);
std::string elementPointer(const std::string &list, size_t index);
int64_t number(const Json &value, const std::string &pointer, int64_t lowest, int64_t highest);
const Json &object(const Json &value, const std::string &pointer);
const Json &list(const Json &value, const std::string &pointer);

} // namespace StrictJson

#endif
