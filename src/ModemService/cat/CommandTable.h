#ifndef CAT_COMMANDTABLE_H
#define CAT_COMMANDTABLE_H

#include "Command.h"
#include "DataObject.h"

namespace cat {

enum class Presence { Mandatory, Optional };

/// Which data object of a kind, where a command may have more than one.
enum class Which { First = 0, Second = 1, Every };

/// A data object of a command, and where in the command its value goes.
struct Field {
    const DataObject *object = nullptr; ///< null: no further field
    bool (*read)(ByteView bytes, Command &command) = nullptr;
    Presence presence = Presence::Optional;
    Which which = Which::First;
};

/// What is wrong with a command beyond its single data objects.
struct Finding {
    Problem problem = Problem::None;
    const char *reason = "";
};

struct CommandRow {
    uint8_t type; ///< clause 9.4
    const char *name;
    const char *clause; ///< of its structure
    void (*create)(Body &body);
    Field fields[7];
    const DataObject *label = nullptr; ///< the text that an icon of the command goes with
    Finding (*check)(Command &command) = nullptr;
};

/// Device identities, which every command has.
extern const Field DevicesField;

/// Null for a type that the standard does not have.
const CommandRow *findCommand(uint8_t type);

} // namespace cat

#endif
