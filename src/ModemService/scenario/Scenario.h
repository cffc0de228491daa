#ifndef SCENARIO_H
#define SCENARIO_H

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "session/Card.h"

// What a scenario file describes: lists of steps, joined into a tree by the branches of the
// commands in them.

using StepListId = size_t;

/// A step in a script: its list and its place in that list.
struct StepPosition {
    StepListId list = 0;
    size_t index = 0;
};

/// Sends a command and waits for the answer, which decides where the script goes on.
struct CommandStep {
    ProactiveCommand command;
    std::vector<StepListId> itemLists; ///< one for each item of the command's menu
    std::map<std::string, StepListId>
        branches; ///< by kind of answer: "ok", "back", "otherwise" ...
    std::map<std::string, StepListId> textBranches; ///< by the text that was entered, "*" for any
};

struct WaitStep {
    std::chrono::milliseconds time{0};
};

/// The card does nothing more by itself.
struct SilenceStep { };

struct EndSessionStep { };

struct TimeOutStep { };

struct GoToStep {
    StepPosition target;
};

struct ModemStep {
    bool ready = false;
    std::chrono::milliseconds after{0};
};

using Step = std::variant<CommandStep, WaitStep, SilenceStep, EndSessionStep, TimeOutStep, GoToStep,
                          ModemStep>;

struct StepList {
    std::optional<StepPosition> parent; ///< the command whose branch this is
    bool endsSession = true; ///< at its end; otherwise the script goes on behind the parent
    std::vector<Step> steps;
};

/// The first list is where a script begins.
struct Script {
    std::vector<StepList> lists;
};

struct Scenario {
    struct Unasked {
        std::chrono::milliseconds after{0};
        StepListId list = 0; ///< of the scenario's script
    };

    CardTraits traits;
    std::chrono::milliseconds latency{
        80}; ///< between a terminal's call and what the card does next
    std::shared_ptr<const Script> script; ///< begins with the main menu's Set Up Menu
    std::vector<Unasked> unasked;
};

#endif
