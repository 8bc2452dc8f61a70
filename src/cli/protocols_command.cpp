#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/reference.h"
#include "config/commands.h"
#include "config/generic_protocols.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

struct ProtocolsOptions {
  std::string Name, AppPath;
  bool Json = false;
};

/// Number of commands of a section, without the placeholder.
int LearnedIn(std::string_view text, std::string_view protocol) {
  return CommandsIn(text, protocol) - (FindPlaceholder(text, protocol) ? 1 : 0);
}

nlohmann::ordered_json Describe(std::string_view text, const ProtocolDraft& draft) {
  const ProtocolParams& params = draft.Params;
  return {{"name", draft.Name},
          {"description", draft.Description},
          {"gproto", GenericProtocolAt(draft.ProtoKind).Name},
          {"sendpls", params.SENDPLS},
          {"repeat", params.REPEAT},
          {"bitg", params.BITG},
          {"bit0", params.BIT0},
          {"bit1", params.BIT1},
          {"grepeat", params.GREPEAT},
          {"carrier", params.Carrier},
          {"commands", LearnedIn(text, draft.Name)}};
}

/// Prints one field per line.
void PrintFields(const nlohmann::ordered_json& protocol) {
  for (const auto& [field, value] : protocol.items()) {
    std::cout << field << '\t' << Printable(value.is_string() ? value.get<std::string>() : value.dump())
              << '\n';
  }
}

void PrintRow(std::string_view text, const ProtocolDraft& draft) {
  std::cout << Printable(draft.Name) << '\t' << GenericProtocolAt(draft.ProtoKind).Name << '\t'
            << LearnedIn(text, draft.Name) << '\t' << Printable(draft.Description) << '\n';
}

/// Only names the first, since a file that is badly damaged may have thousands.
void ReportDamaged(const std::vector<std::string>& names) {
  const std::size_t others = names.size() - 1;
  Tell("the section [" + names.front() + "] is damaged" +
       (others == 0 ? "" : ", and so are " + std::to_string(others) + " behind it"));
}

int List(const ProtocolsOptions& options) {
  const OpenedConfig config(options.AppPath);
  const std::string& text = config.Text();
  std::vector<std::string> names = ListProtocols(text);
  if (!options.Name.empty()) names = {RequireProtocol(text, options.Name, options.AppPath)};
  if (names.empty()) throw Refused(config.Mod.Store.Path.string() + " has no protocols");
  std::vector<std::string> damaged;
  for (const std::string& name : names) {
    const std::optional<ProtocolDraft> draft = LoadProtocol(text, name);
    if (!draft) {
      damaged.push_back(name);
    } else if (options.Json) {
      std::cout << JsonLine(Describe(text, *draft)) << '\n';
    } else if (!options.Name.empty()) {
      PrintFields(Describe(text, *draft));
    } else {
      PrintRow(text, *draft);
    }
  }
  if (damaged.empty()) return kDone;
  ReportDamaged(damaged);
  return kNoResult;
}

}  // namespace

void AddProtocolsCommand(Command& root) {
  Command command = root.Sub("protocols", "List the protocols, or tell the parameters of one of them");
  const auto options = std::make_shared<ProtocolsOptions>();
  command.Word("NAME", options->Name, "Only this protocol, with all its parameters");
  command.Flag("--json", options->Json, "One JSON object a protocol, with all parameters");
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo protocols", "keplo protocols NEC --json"});
  command.Runs([options] { return List(*options); });
}

}  // namespace keplo::cli
