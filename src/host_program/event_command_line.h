#pragma once

#include <QString>
#include <nlohmann/json.hpp>
#include <optional>

namespace keplo::host {

/// The actions of an event as a command line, with words quoted if necessary; empty if there are no actions.
/// @return none if a command line cannot express the actions: several, a kind other than run, or an empty
/// argument
std::optional<QString> CommandLineOf(const nlohmann::json& actions);

/// The actions with program and arguments from a command line. Other fields of an action that CommandLineOf
/// can express are kept; any other actions are replaced.
nlohmann::json WithCommandLine(const nlohmann::json& actions, const QString& commandLine);

}  // namespace keplo::host
