#ifndef SCENARIOREADER_H
#define SCENARIOREADER_H

#include <memory>
#include <stdexcept>
#include <string>

#include "Scenario.h"

/// What is wrong with a scenario: one line that names the file, the place in it (a JSON pointer, or
/// line and column), what was expected and what was found.
class ScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a scenario file of at most 16 MiB.  Throws ScenarioError.
Scenario readScenario(const std::string &file);

/// Reads one command, written as in a scenario, into a script that sends it.  Throws ScenarioError;
/// the file's name in its line is "command".
std::shared_ptr<const Script> readCommand(const std::string &json);

#endif
