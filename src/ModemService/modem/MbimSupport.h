#ifndef MBIMSUPPORT_H
#define MBIMSUPPORT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cat/Bytes.h"

/// Who carries out a type of proactive command (PacSupport of MBIM 1.0, service STK).
struct MbimSupport {
    static constexpr size_t Types = 256;
    std::array<uint8_t, Types> of{};

    /// Where the type stands: at its number, or, as a few modems count, at its digits read as a
    /// decimal number.
    bool isDecimal() const;
    size_t position(uint8_t type) const;
    /// Whether the host may take the type over.
    bool isFree(uint8_t type) const;
    /// Whether the host has it.
    bool isHosts(uint8_t type) const;
};

/// A bit for each of the types that the modem leaves to the host (PacHostControl).
std::array<uint8_t, 32> hostControl(const std::vector<uint8_t> &types, const MbimSupport &support);

/// The names of those of the types that the host could carry out and does not have, SET UP MENU
/// aside; empty: it has all.
std::string keptByModem(const std::vector<uint8_t> &types, const MbimSupport &support);

/// The proactive command at the beginning of what a modem sent; padding may follow it.
cat::ByteView commandIn(cat::ByteView bytes);

#endif
