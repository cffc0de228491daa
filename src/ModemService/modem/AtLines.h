#ifndef ATLINES_H
#define ATLINES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cat/Bytes.h"

// What a modem says on an AT port (ITU-T V.250, 3GPP TS 27.007), line by line.

/// Cuts bytes into lines, however they come.
class AtLineReader {
public:
    /// A proactive command has at most 258 bytes, and a line of a modem may be longer.
    static constexpr size_t LongestLine = 8192;

    /// The next whole line of what was added, without its end; empty ones, and those that are too
    /// long, are passed over.
    std::optional<std::string> next();
    void add(std::string_view bytes);
    void clear();

private:
    std::string m_bytes;
    bool m_tooLong = false; // the rest of this line is passed over
};

/// The end of a command's answer.
struct AtFinal {
    enum class Kind { Ok, Error };
    Kind kind = Kind::Error;
    std::optional<int> code; ///< of "+CME ERROR", where it is a number (3GPP TS 27.007 clause 9.2)
};
std::optional<AtFinal> finalResult(std::string_view line);

/// What stands behind the name of a line, where it has that name: "" of "+CUSATEND", "1,2" of
/// "+CUSATS: 1,2".
std::optional<std::string_view> valueOf(std::string_view line, std::string_view name);

/// The value's parameters, quotes taken off.
std::vector<std::string> parameters(std::string_view value);

/// Nothing for what is no whole number of hexadecimal bytes.
std::optional<cat::Bytes> bytesOf(std::string_view hexadecimal);

std::optional<int> numberOf(std::string_view decimal);

#endif
