#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/commands.h"
#include "config/generic_protocols.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "program/app_path.h"
#include "program/json_line.h"

namespace keplo::cli {

namespace {

struct ProtocolsOptions {
  std::string Name, AppPath;
  bool Json = false;
};

/// Commands of a section, its placeholder left out.
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
          {"commands", LearnedIn(text, draft.Name)}};
}

/// One field a line.
void PrintFields(const nlohmann::ordered_json& protocol) {
  for (const auto& [field, value] : protocol.items()) {
    std::cout << field << '\t' << (value.is_string() ? value.get<std::string>() : value.dump()) << '\n';
  }
}

int ListOf(const ProtocolsOptions& options) {
  const OpenConfig config(options.AppPath);
  const std::string& text = config.Mod.Store.CfgText;
  bool any = false, allWhole = true;
  for (const std::string& name : ListProtocols(text)) {
    if (!options.Name.empty() && name != options.Name) continue;
    any = true;
    const std::optional<ProtocolDraft> draft = LoadProtocol(text, name);
    if (!draft) {
      std::cerr << "keplo: the section [" << name << "] is damaged\n";
      allWhole = false;
    } else if (options.Json) {
      std::cout << JsonLine(Describe(text, *draft)) << '\n';
    } else if (!options.Name.empty()) {
      PrintFields(Describe(text, *draft));
    } else {
      std::cout << name << '\t' << GenericProtocolAt(draft->ProtoKind).Name << '\t' << LearnedIn(text, name)
                << '\t' << draft->Description << '\n';
    }
  }
  if (any) return allWhole ? kDone : kNoResult;
  std::cerr << "keplo: there is no protocol " << options.Name << " in " << config.Mod.Store.Path.string()
            << "; names count in capitals too\n";
  return kNoResult;
}

}  // namespace

void AddProtocolsCommand(Command& root) {
  Command command = root.Sub("protocols", "List the protocols, or tell the parameters of one of them");
  const auto options = std::make_shared<ProtocolsOptions>();
  command.Word("NAME", options->Name, "Only this protocol, with all its parameters");
  command.Flag("--json", options->Json, "One JSON object a protocol, with all parameters");
  AddAppPathOption(command, options->AppPath);
  command.Runs([options] { return ListOf(*options); });
}

}  // namespace keplo::cli
