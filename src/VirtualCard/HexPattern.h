#ifndef HEXPATTERN_H
#define HEXPATTERN_H

#include <optional>
#include <string>
#include <vector>

#include "cat/Bytes.h"

/// Bytes of which some may be anything.
class HexPattern {
public:
    /// A text like that of cat::fromHex(), in which "??" stands for any byte.
    static std::optional<HexPattern> read(const std::string &hex);

    bool matches(cat::ByteView bytes) const;
    std::string text() const;

private:
    std::vector<std::optional<uint8_t>> m_bytes;
};

#endif
