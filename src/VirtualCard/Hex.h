#ifndef HEX_H
#define HEX_H

#include <optional>
#include <string>
#include <vector>

#include "cat/Bytes.h"

/// Upper-case digits, without blanks.
std::string hexDigits(cat::ByteView bytes);

/// The bytes of a text of hexadecimal digits, with blanks anywhere between pairs.
std::optional<cat::Bytes> bytesOf(const std::string &hex);

/// Bytes of which some may be anything.
class HexPattern {
public:
    /// A text like that of bytesOf(), in which "??" stands for any byte.
    static std::optional<HexPattern> read(const std::string &hex);

    bool matches(cat::ByteView bytes) const;
    std::string text() const;

private:
    std::vector<std::optional<uint8_t>> m_bytes;
};

#endif
