#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/map_users.h"
#include "cli/open_install.h"
#include "cli/outcome.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"
#include "signal/decode.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct ListOptions {
  std::string AppPath, Only;
  bool Json = false;
};

struct RenameOptions {
  std::string AppPath, Command, NewName;
};

void Print(const std::string& protocol, const LearnedCommand& command, bool json) {
  if (!json) {
    std::cout << Printable(protocol) << '\t' << Printable(command.Name) << '\t' << Printable(command.Code)
              << '\n';
    return;
  }
  nlohmann::ordered_json line;
  line["protocol"] = protocol;
  line["command"] = command.Name;
  line["reference"] = CommandReference{protocol, command.Name}.Text();
  line["code"] = command.Code.substr(std::min<std::size_t>(1, command.Code.size()));
  std::cout << JsonLine(line) << '\n';
}

void PrintProtocols(const std::string& text, const std::vector<std::string>& protocols, bool json) {
  for (const std::string& protocol : protocols) {
    for (const LearnedCommand& command : ListCommands(text, protocol)) Print(protocol, command, json);
  }
}

int List(const ListOptions& options) {
  const OpenedConfig config(options.AppPath);
  const std::string& text = config.Text();
  if (options.Only.empty()) {
    const std::vector<std::string> protocols = ListProtocols(text);
    if (protocols.empty()) throw Refused(config.Mod.Store.Path.string() + " has no protocols");
    PrintProtocols(text, protocols, options.Json);
  } else if (const auto reference = SplitReference(options.Only)) {
    const std::string protocol = RequireProtocol(text, reference->Protocol, options.AppPath);
    const auto command = FindLearned(text, reference->Protocol, reference->Command);
    if (!command) throw Refused(RefusalText({Refusal::NoSuchCommand, reference->Command}));
    Print(protocol, *command, options.Json);
  } else {
    PrintProtocols(text, {RequireProtocol(text, options.Only, options.AppPath)}, options.Json);
  }
  return kDone;
}

/// The events that are bound to a command.
std::vector<clsKeploEvent> EventsOf(const OpenedMap& map, const CommandReference& command) {
  std::vector<clsKeploEvent> bound;
  for (const auto& event : map.Events) {
    if (event->IRCommand == command.Text()) bound.push_back(*event);
  }
  return bound;
}

std::string ListOf(const std::vector<clsKeploEvent>& events) {
  std::string names;
  for (const clsKeploEvent& event : events) names += (names.empty() ? "" : ", ") + event.EventID;
  return (events.size() == 1 ? "event " : "events ") + names;
}

/// Binds the events of a command to its new name.
/// @throws NotWritten, with the events that still have the old name and how to correct them
void RebindEvents(OpenedMap& map, std::vector<clsKeploEvent> events, const CommandReference& from,
                  const CommandReference& to, const std::string& appPathOption) {
  std::optional<NotConfirmedWritten> unsure;
  while (!events.empty()) {
    clsKeploEvent event = events.front();
    event.IRCommand = to.Text();
    try {
      map.Change([&](colclsKeploEvents& all) { return all.Update(std::make_shared<clsKeploEvent>(event)); });
    } catch (const NotConfirmedWritten& doubt) {
      unsure = doubt;
    } catch (const NotWritten& failure) {
      throw NotWritten(
          failure.Number(),
          std::string(failure.what()) + " The command has its new name, and the " + ListOf(events) +
              " still the old one, " + from.Text() + ", at which nothing fires. Bind each anew with: " +
              TypedCommand("events modify ID --command " + ShellQuoted(to.Text()), appPathOption));
    }
    events.erase(events.begin());
  }
  if (unsure) throw NotConfirmedWritten(*unsure);
}

int Rename(const RenameOptions& options) {
  const auto reference = SplitReference(options.Command);
  if (!reference) throw UsageError("COMMAND is a protocol and a command, as 'NEC&POWER'");
  OpenedConfig config(options.AppPath);
  OpenedMap map(options.AppPath);  // opened first, so that nothing is renamed if it cannot be read
  CommandReference from, to;
  config.Change([&](CfgStore& store) {
    from = AsStored(store.CfgText, *reference);
    Require(RenameCommand(store, from.Protocol, from.Command, options.NewName));
    to = AsStored(store.CfgText, {from.Protocol, options.NewName});
  });
  std::cout << Printable(from.Text()) << " is " << Printable(to.Text()) << " now\n";
  const std::vector<clsKeploEvent> bound = EventsOf(map, from);
  RebindEvents(map, bound, from, to, options.AppPath);
  if (!bound.empty())
    std::cout << bound.size() << (bound.size() == 1 ? " event goes" : " events go") << " with it\n";
  ReportMapUsers(options.AppPath);
  return kDone;
}

int Lookup(const ListOptions& options) {
  OpenedConfig config(options.AppPath);
  CfgStore& store = config.Mod.Store;
  const bool hasHead = options.Only[0] == 'G' || options.Only[0] == 'g';
  const std::string code = options.Only.substr(hasHead ? 1 : 0);
  if (code.empty() || code.find_first_not_of("01") != std::string::npos) {
    throw UsageError("CODE is of digits 0 and 1, as keplo decode tells them; " +
                     TypedCommand("commands", options.AppPath) + " shows the code of a command");
  }
  // A code of 14 digits may be RC5 with the toggle digit as received.
  const auto isFound = [&](Analysis readBy) {
    return LookupCommand(store, code, kNec, readBy) ||
           (code.size() == 14 && LookupCommand(store, code, kRc5, readBy));
  };
  // An exact match comes first; with the first analysis, a command that begins with the code will do, as in
  // the monitor.
  if (!isFound(Analysis::Second) && (AnalysisOf(config) == Analysis::Second || !isFound(Analysis::First)))
    throw Refused("the code G" + code + " belongs to no learned command");
  std::cout << Printable(CommandReference{store.CurProtocol, store.CurCommand}.Text()) << '\n';
  return kDone;
}

}  // namespace

void AddCommandsCommand(Command& root) {
  Command command = root.Sub("commands", "List the learned commands");
  const auto options = std::make_shared<ListOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Word("PROTOCOL", options->Only, "Only the commands of this protocol, or one as 'NEC&POWER'");
  command.Flag("--json", options->Json, "One JSON object a command");
  command.Runs([options] { return List(*options); });

  command.Examples({"keplo commands NEC", "keplo commands --json"});

  Command rename = command.OptionalSub("rename", "Give a command another name; its events go with it");
  const auto words = std::make_shared<RenameOptions>();
  AddAppPathOption(rename, words->AppPath);
  rename.Word("COMMAND", words->Command, "Protocol and command, as 'NEC&POWER'").Required();
  rename.Word("NAME", words->NewName, "The new name: letters, digits, - and _").Required();
  rename.Examples({"keplo commands rename 'NEC&TV_MUTE' SILENCE"});
  rename.Runs([words] { return Rename(*words); });
}

void AddLookupCommand(Command& root) {
  Command command = root.Sub("lookup", "Tell to which learned command a code belongs");
  const auto options = std::make_shared<ListOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Word("CODE", options->Only, "Code digits, with or without the leading G").Required();
  command.Examples({"keplo lookup G101010010000"});
  command.Runs([options] { return Lookup(*options); });
}

}  // namespace keplo::cli
