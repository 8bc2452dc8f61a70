#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/commands.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "program/app_path.h"

namespace keplo::cli {

namespace {

struct ConfigOptions {
  std::string AppPath;
  std::string Argument;
};

int ListLearned(const ConfigOptions& options) {
  const OpenConfig config(options.AppPath);
  bool any = false;
  for (const std::string& protocol : ListProtocols(config.Mod.Store.CfgText)) {
    if (!options.Argument.empty() && protocol != options.Argument) continue;
    any = true;
    for (const LearnedCommand& command : ListCommands(config.Mod.Store.CfgText, protocol)) {
      std::cout << protocol << '\t' << command.Name << '\t' << command.Code << '\n';
    }
  }
  if (any) return kDone;
  if (options.Argument.empty()) {
    std::cerr << "keplo: " << config.Mod.Store.Path.string() << " has no protocols\n";
    return kNoResult;
  }
  std::cerr << "keplo: there is no protocol " << options.Argument
            << " in keplo.cfg; names count in capitals too\n";
  return kNoResult;
}

int Lookup(const ConfigOptions& options) {
  OpenConfig config(options.AppPath);
  CfgStore& store = config.Mod.Store;
  const bool hasHead =
      !options.Argument.empty() && (options.Argument[0] == 'G' || options.Argument[0] == 'g');
  const std::string code = options.Argument.substr(hasHead ? 1 : 0);
  // A code of 14 digits may be RC5 as it was on air, with its toggle digit.
  const auto isFound = [&](Analysis readBy) {
    return LookupCommand(store, code, kNec, readBy) ||
           (code.size() == 14 && LookupCommand(store, code, kRc5, readBy));
  };
  // The very code, or the first that begins with it.
  const bool found = !code.empty() && (isFound(Analysis::Second) || isFound(Analysis::First));
  if (!found) {
    std::cerr << "keplo: the code G" << code << " belongs to no learned command\n";
    return kNoResult;
  }
  std::cout << store.CurProtocol << '&' << store.CurCommand << '\n';
  return kDone;
}

}  // namespace

void AddCommandsCommand(Command& root) {
  Command command = root.Sub("commands", "List the learned commands");
  const auto options = std::make_shared<ConfigOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Word("PROTOCOL", options->Argument, "Only the commands of this protocol");
  command.Runs([options] { return ListLearned(*options); });
}

void AddLookupCommand(Command& root) {
  Command command = root.Sub("lookup", "Tell to which learned command a code belongs");
  const auto options = std::make_shared<ConfigOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Word("CODE", options->Argument, "Code digits, with or without the leading G").Required();
  command.Runs([options] { return Lookup(*options); });
}

}  // namespace keplo::cli
