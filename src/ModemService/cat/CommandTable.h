#ifndef CAT_COMMANDTABLE_H
#define CAT_COMMANDTABLE_H

#include <algorithm>
#include <iterator>

#include "Command.h"
#include "DataObject.h"

namespace cat {

/// Where `mask` leaves `value` of the qualifier.
struct Condition {
    uint8_t mask = 0;
    uint8_t value = 0;

    constexpr bool holds(uint8_t qualifier) const { return (qualifier & mask) == value; }
};
constexpr Condition Always{0, 0};
constexpr Condition Never{0, 1};

/// Which data object of a kind, where a command may have more than one.
enum class Which : uint8_t { First, Second, Every };

/// A data object of a command, and where in the command its value goes.
struct Field {
    const DataObject *object = nullptr; ///< null: no further field
    bool (*read)(ByteView bytes, Command &command) = nullptr;
    Condition mandatory = Never;
    Which which = Which::First;
};

/// Whether an icon needs a text (clause 6.5.4).
enum class IconText : uint8_t { Always, UnlessSelfExplanatory };

constexpr size_t FieldCount = 8;

struct CommandRow {
    uint8_t type; ///< clause 9.4
    const char *name;
    const char *clause; ///< of its structure
    void (*create)(Body &body);
    Field fields[FieldCount];
    uint8_t others[12] = {}; ///< tags of what it may have besides, and nobody here reads
    const DataObject *label = nullptr; ///< the text that an icon of the command goes with
    /// What is wrong beyond its single data objects, or null.
    const char *(*check)(Command &command) = nullptr;
    IconText iconText = IconText::Always;

    bool hasBesides(uint16_t tag) const
    {
        return tag != 0 && std::find(std::begin(others), std::end(others), tag) != std::end(others);
    }
};

/// Null for a type that the standard does not have.
const CommandRow *findCommand(uint8_t type);

} // namespace cat

#endif
