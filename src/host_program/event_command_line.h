#pragma once

#include <QString>
#include <nlohmann/json.hpp>
#include <optional>

namespace keplo::host {

/// The actions of an event as one command line, words in quotes where they need them; empty for no action.
/// @return nothing if the actions are more than a command line can show: several, another kind than run, an
/// argument without a character
std::optional<QString> CommandLineOf(const nlohmann::json& actions);

/// The actions with the program and the arguments of a command line. What else stands in a run action that
/// CommandLineOf can show stays; other actions are replaced.
nlohmann::json WithCommandLine(const nlohmann::json& actions, const QString& commandLine);

}  // namespace keplo::host
