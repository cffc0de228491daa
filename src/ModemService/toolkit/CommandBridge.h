#ifndef COMMANDBRIDGE_H
#define COMMANDBRIDGE_H

#include <optional>

#include "session/ProactiveCommand.h"
#include "cat/Command.h"

/// A card's command as the session and the plug-in know it.  Nothing for a command that has a
/// problem, and for what the modem answers without them.
std::optional<ProactiveCommand> toProactiveCommand(const cat::Command &command);

#endif
