#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "cli/commands.h"
#include "cli/map_users.h"
#include "cli/open_install.h"
#include "cli/outcome.h"
#include "cli/reference.h"
#include "config/protocols.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct EventWords {
  std::string AppPath, EventID, Command;
  std::optional<std::string> Name, Description;
  std::optional<std::int16_t> Zone;
  bool Json = false, Each = false, Force = false;
  bool Enable = false, Disable = false;
};

/// Refuses a text that cannot be shown in one line.
void CheckText(const std::string& what, const std::string& text) {
  if (Printable(text) == text) return;
  throw UsageError("The " + what + " holds a line end, a tab or another control character. Leave it out.");
}

/// The learned command of a reference, spelled as in keplo.cfg.
std::optional<CommandReference> FindInConfig(const EventWords& words, const CommandReference& wanted) try {
  const OpenedConfig config(words.AppPath);
  const auto command = FindLearned(config.Text(), wanted.Protocol, wanted.Command);
  if (!command) return std::nullopt;
  return CommandReference{ProtocolAsStored(config.Text(), wanted.Protocol), command->Name};
} catch (const Failure& failure) {
  if (!words.Force) throw;
  Tell(failure.what());
  return std::nullopt;
}

/// The reference for an event. A command that is not learned yet requires --force.
std::string ReferenceToBind(const EventWords& words) {
  const auto wanted = SplitReference(words.Command);
  if (!wanted) throw UsageError("COMMAND is a protocol and a command, as 'NEC&POWER'");
  CheckText("command", words.Command);
  if (const auto known = FindInConfig(words, *wanted)) return known->Text();
  if (!words.Force) {
    throw Refused(words.Command + " is no learned command; " + TypedCommand("commands", words.AppPath) +
                  " lists those that are. --force takes it all the same");
  }
  Tell(words.Command + " is no learned command yet; the event fires only once it is. " +
       TypedCommand("commands", words.AppPath) + " lists those that are");
  return words.Command;
}

/// Changes an event as specified; everything else is kept.
void ApplyWords(const EventWords& words, clsKeploEvent& event) {
  CheckText("name", words.Name.value_or(""));
  CheckText("description", words.Description.value_or(""));
  event.EventName = words.Name.value_or(event.EventName);
  event.EventDescription = words.Description.value_or(event.EventDescription);
  event.Zone = words.Zone.value_or(event.Zone);
  if (words.Enable || words.Disable) event.Enabled = words.Enable;
}

int List(const EventWords& words) {
  const OpenedMap map(words.AppPath);
  for (const auto& event : map.Events) {
    if (words.Json) {
      nlohmann::ordered_json json;
      json["event_id"] = event->EventID;
      json["event_name"] = event->EventName;
      json["description"] = event->EventDescription;
      json["command"] = event->IRCommand;
      json["enabled"] = event->Enabled;
      json["zone"] = event->Zone;
      std::cout << JsonLine(json) << '\n';
    } else {
      std::cout << Printable(event->EventID) << '\t' << Printable(event->EventName) << '\t'
                << Printable(event->IRCommand) << "\tzone " << event->Zone
                << (event->Enabled ? "" : "\tdisabled") << '\t' << Printable(event->EventDescription) << '\n';
    }
  }
  return kDone;
}

void Add(OpenedMap& map, const clsKeploEvent& event) {
  map.Change([&](colclsKeploEvents& events) { return events.Add(std::make_shared<clsKeploEvent>(event)); });
}

/// Adds an event with an unused number, even if other programs are adding events at the same time.
/// @param map read again if another program has used the number
/// @return its EventID
std::string AddUnderFreeID(const std::string& appPath, std::optional<OpenedMap>& map, clsKeploEvent event) {
  for (;;) {
    event.EventID = std::to_string(map->FreeNumber());
    try {
      Add(*map, event);
      return event.EventID;
    } catch (const NotConfirmedWritten&) {
      throw;
    } catch (const NotWritten&) {
      map.emplace(appPath);
      if (map->Find(event.EventID) == nullptr) throw;
    }
  }
}

/// Warns of a conflict, since a press is only dispatched up to the first event with another zone.
void WarnOfOtherZone(const OpenedMap& map, const clsKeploEvent& event) {
  if (!event.Enabled) return;
  const auto other = std::find_if(map.Events.begin(), map.Events.end(), [&](const auto& each) {
    return each->Enabled && each->EventID != event.EventID && each->IRCommand == event.IRCommand &&
           each->Zone != 0 && each->Zone != event.Zone;
  });
  if (other == map.Events.end()) return;
  Tell("event " + (*other)->EventID + " has the same command with zone " + std::to_string((*other)->Zone) +
       ": with zones on, whichever of both comes first in the map ends a press of the other's zone. Learn a "
       "command of its own for each zone, or take one event with zone 0 for all");
}

int AddOne(const EventWords& words) {
  CheckText("EventID", words.EventID);
  clsKeploEvent event;
  event.EventID = words.EventID;
  event.IRCommand = ReferenceToBind(words);
  event.EventName = event.IRCommand.substr(event.IRCommand.find('&') + 1);
  event.Enabled = true;
  ApplyWords(words, event);
  std::optional<OpenedMap> map(std::in_place, words.AppPath);
  if (event.EventID.empty()) {
    event.EventID = AddUnderFreeID(words.AppPath, map, event);
  } else if (map->Find(event.EventID) != nullptr) {
    throw Refused("There is an event with the EventID " + event.EventID + " already. Choose another --id.");
  } else {
    Add(*map, event);
  }
  std::cout << event.EventID << '\n';
  WarnOfOtherZone(*map, event);
  ReportMapUsers(words.AppPath);
  return kDone;
}

bool IsBound(const OpenedMap& map, const std::string& reference) {
  return std::any_of(map.Events.begin(), map.Events.end(),
                     [&](const auto& event) { return event->IRCommand == reference; });
}

/// Adds an event for every learned command that has none.
int AddEach(const EventWords& words) {
  const OpenedConfig config(words.AppPath);
  std::optional<OpenedMap> map(std::in_place, words.AppPath);
  int added = 0, status = kDone;
  for (const std::string& protocol : ListProtocols(config.Text())) {
    for (const LearnedCommand& command : ListCommands(config.Text(), protocol)) {
      const std::string reference = CommandReference{protocol, command.Name}.Text();
      const std::string name(Trimmed(command.Name));
      if (name == kPlaceholderName || IsBound(*map, reference)) continue;
      if (Printable(reference) != reference) {
        Tell(reference + " holds control characters, so that it gets no event; give it another name");
        status = kNoResult;
        continue;
      }
      std::string description = name;
      description.append(" from ").append(protocol);
      AddUnderFreeID(words.AppPath, map, {"", name, std::move(description), reference, true, 0});
      ++added;
    }
  }
  std::cout << added << " events added\n";
  if (added > 0) ReportMapUsers(words.AppPath);
  return status;
}

std::shared_ptr<clsKeploEvent> Find(const OpenedMap& map, const EventWords& words) {
  auto event = map.Find(words.EventID);
  if (event != nullptr) return event;
  throw Refused("There is no event with the EventID " + words.EventID + ". " +
                TypedCommand("events list", words.AppPath) + " shows those that are there.");
}

int Modify(const EventWords& words) {
  OpenedMap map(words.AppPath);
  const auto event = std::make_shared<clsKeploEvent>(*Find(map, words));
  if (!words.Command.empty()) event->IRCommand = ReferenceToBind(words);
  ApplyWords(words, *event);
  map.Change([&](colclsKeploEvents& events) { return events.Update(event); });
  if (!words.Command.empty() || words.Zone || words.Enable) WarnOfOtherZone(map, *event);
  ReportMapUsers(words.AppPath);
  return kDone;
}

int Delete(const EventWords& words) {
  OpenedMap map(words.AppPath);
  Find(map, words);
  map.Change([&](colclsKeploEvents& events) { return events.Delete(words.EventID); });
  ReportMapUsers(words.AppPath);
  return kDone;
}

void AddAddCommand(Command add, const std::shared_ptr<EventWords>& words) {
  Argument reference = add.Word("COMMAND", words->Command, "Protocol and command, as 'NEC&POWER'");
  const Argument each = add.Flag("--each", words->Each, "An event for every learned command that has none");
  reference.Excludes(each);
  add.Word("--id", words->EventID, "EventID; without it the first number that is free and was not deleted")
      .Excludes(each);
  add.Text("--name", words->Name, "Friendly name; without it the command's").Excludes(each);
  add.Text("--description", words->Description, "Short description").Excludes(each);
  add.Number("--zone", words->Zone, "Zone, 0 for any", {0, 8}).Excludes(each);
  add.Flag("--disabled", words->Disable, "Add it switched off").Excludes(each);
  add.Flag("--force", words->Force, "Take a command that is not learned yet").Excludes(each);
  add.Examples({"keplo events add 'NEC&TV_POWER' --name 'TV on'", "keplo events add --each"});
  add.Runs([words] {
    if (!words->Each && words->Command.empty()) throw UsageError("COMMAND or --each is required");
    return words->Each ? AddEach(*words) : AddOne(*words);
  });
}

void AddModifyCommand(Command modify, const std::shared_ptr<EventWords>& words) {
  modify.Flag("--force", words->Force, "Take a command that is not learned yet");
  Command changes = modify.AtLeastOneOf("Changes");
  changes.Word("--command", words->Command, "Protocol and command, as 'NEC&POWER'");
  changes.Text("--name", words->Name, "Friendly name");
  changes.Text("--description", words->Description, "Short description");
  changes.Number("--zone", words->Zone, "Zone, 0 for any", {0, 8});
  const Argument enable = changes.Flag("--enable", words->Enable, "Switch it on");
  changes.Flag("--disable", words->Disable, "Switch it off").Excludes(enable);
  modify.Examples({"keplo events modify 1 --command 'NEC&TV_MUTE' --zone 3"});
  modify.Runs([words] { return Modify(*words); });
}

}  // namespace

void AddEventsCommand(Command& root) {
  Command events = root.Sub("events", "Show and change the event map");
  const auto words = std::make_shared<EventWords>();
  const auto sub = [&](const std::string& name, const char* about) {
    Command command = events.Sub(name, about);
    AddAppPathOption(command, words->AppPath);
    return command;
  };
  const auto subWithID = [&](const std::string& name, const char* about) {
    Command command = sub(name, about);
    command.Word("ID", words->EventID, "EventID of the event").Required();
    command.Examples({"keplo events " + name + " 1"});
    return command;
  };

  Command list = sub("list", "List the events");
  list.Flag("--json", words->Json, "One JSON object an event");
  list.Examples({"keplo events list --json"});
  list.Runs([words] { return List(*words); });
  AddAddCommand(sub("add", "Add an event for a learned command"), words);
  AddModifyCommand(subWithID("modify", "Change an event; what is not told stays"), words);
  subWithID("delete", "Delete an event").Runs([words] { return Delete(*words); });
  for (const bool enable : {true, false}) {
    subWithID(enable ? "enable" : "disable", enable ? "Switch an event on" : "Switch an event off")
        .Runs([words, enable] {
          words->Enable = enable;
          words->Disable = !enable;
          return Modify(*words);
        });
  }
  events.Examples({"keplo events add 'NEC&TV_POWER' --name 'TV on'", "keplo events list"});
}

}  // namespace keplo::cli
