#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/commands.h"
#include "config/protocols.h"
#include "program/app_path.h"
#include "program/json_line.h"

namespace keplo::cli {

namespace {

struct EventOptions {
  std::string AppPath;
  bool Json = false;
  bool Each = false;
  bool Disabled = false;
  clsKeploEvent Event;
};

void RequireChange(bool changed, const OpenMap& map) {
  if (changed) return;
  const std::string& reason =
      map.FailureText().empty() ? map.Database.ErrorDetails().ErrorDescription : map.FailureText();
  throw Failure(1, "The event map was not changed: " + reason);
}

/// The first whole number from a given one on that is no EventID of the map.
std::string FirstFreeID(const OpenMap& map, std::int64_t& number) {
  while (map.Events.Item(EventKey(std::to_string(number))) != nullptr) ++number;
  return std::to_string(number);
}

/// Refuses what no list could show in one line.
void CheckText(const std::string& what, const std::string& text) {
  const bool control =
      std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
  if (!control) return;
  throw Failure(1, "The " + what + " holds a line end, a tab or another control character. Leave it out.");
}

int List(const EventOptions& options) {
  const OpenMap map(options.AppPath);
  for (const auto& event : map.Events) {
    if (options.Json) {
      nlohmann::ordered_json json;
      json["event_id"] = event->EventID;
      json["event_name"] = event->EventName;
      json["description"] = event->EventDescription;
      json["command"] = event->IRCommand;
      json["enabled"] = event->Enabled;
      json["zone"] = event->Zone;
      std::cout << JsonLine(json) << '\n';
    } else {
      std::cout << event->EventID << '\t' << event->EventName << '\t' << event->IRCommand << "\tzone "
                << event->Zone << (event->Enabled ? "" : "\tdisabled") << '\t' << event->EventDescription
                << '\n';
    }
  }
  return kDone;
}

void Add(OpenMap& map, const clsKeploEvent& event) {
  if (map.Events.Item(EventKey(event.EventID)) != nullptr) {
    throw Failure(1,
                  "There is an event with the EventID " + event.EventID + " already. Choose another --id.");
  }
  RequireChange(map.Events.Add(std::make_shared<clsKeploEvent>(event)), map);
}

/// An event for a command that is not learned never fires; it may be learned later.
void WarnOfUnknownCommand(const EventOptions& options, const std::string& reference) try {
  const OpenConfig config(options.AppPath);
  const std::string& text = config.Mod.Store.CfgText;
  for (const std::string& protocol : ListProtocols(text)) {
    for (const LearnedCommand& command : ListCommands(text, protocol)) {
      if (protocol + "&" + command.Name == reference) return;
    }
  }
  std::cerr << "keplo: " << reference << " is no learned command yet; the event fires only once it is. "
            << "keplo commands lists those that are\n";
} catch (const Failure& failure) {
  std::cerr << "keplo: " << failure.what() << '\n';
}

int AddOne(const EventOptions& options) {
  OpenMap map(options.AppPath);
  clsKeploEvent event = options.Event;
  event.Enabled = !options.Disabled;
  std::int64_t number = 1;
  if (event.EventID.empty()) event.EventID = FirstFreeID(map, number);
  if (event.EventName.empty()) event.EventName = event.IRCommand.substr(event.IRCommand.find('&') + 1);
  CheckText("EventID", event.EventID);
  CheckText("name", event.EventName);
  CheckText("description", event.EventDescription);
  Add(map, event);
  WarnOfUnknownCommand(options, event.IRCommand);
  std::cout << event.EventID << '\n';
  return kDone;
}

/// An event for every learned command that has none.
int AddEach(const EventOptions& options) {
  OpenConfig config(options.AppPath);
  OpenMap map(options.AppPath);
  std::set<std::string> bound;
  for (const auto& event : map.Events) bound.insert(event->IRCommand);

  std::int64_t number = 1;
  int added = 0;
  for (const std::string& protocol : ListProtocols(config.Mod.Store.CfgText)) {
    for (const LearnedCommand& command : ListCommands(config.Mod.Store.CfgText, protocol)) {
      const std::string reference = protocol + "&" + command.Name;
      if (command.Name == "EMPTY" || bound.count(reference) > 0) continue;
      Add(map,
          {FirstFreeID(map, number), command.Name, command.Name + " from " + protocol, reference, true, 0});
      ++added;
    }
  }
  std::cout << added << " events added\n";
  return kDone;
}

std::shared_ptr<clsKeploEvent> Find(const OpenMap& map, const std::string& id) {
  auto event = map.Events.Item(EventKey(id));
  if (event == nullptr) {
    throw Failure(
        1, "There is no event with the EventID " + id + ". keplo events list shows those that are there.");
  }
  return event;
}

int Switch(const EventOptions& options, bool enabled) {
  OpenMap map(options.AppPath);
  const auto event = Find(map, options.Event.EventID);
  event->Enabled = enabled;
  RequireChange(map.Events.Update(event), map);
  return kDone;
}

int Delete(const EventOptions& options) {
  OpenMap map(options.AppPath);
  Find(map, options.Event.EventID);
  RequireChange(map.Events.Delete(options.Event.EventID), map);
  return kDone;
}

}  // namespace

void AddEventsCommand(Command& root) {
  Command events = root.Sub("events", "Show and change the event map");
  const auto options = std::make_shared<EventOptions>();
  const auto add = [&](const char* name, const char* about) {
    Command command = events.Sub(name, about);
    AddAppPathOption(command, options->AppPath);
    return command;
  };
  const auto addWithID = [&](const char* name, const char* about, int (*work)(const EventOptions&)) {
    Command command = add(name, about);
    command.Word("ID", options->Event.EventID, "EventID of the event").Required();
    command.Runs([options, work] { return work(*options); });
  };

  Command list = add("list", "List the events");
  list.Flag("--json", options->Json, "One JSON object an event");
  list.Runs([options] { return List(*options); });

  Command adding = add("add", "Add an event for a learned command");
  Argument reference =
      adding.Word("COMMAND", options->Event.IRCommand, "Protocol and command, as 'NEC&POWER'");
  const Argument each =
      adding.Flag("--each", options->Each, "An event for every learned command that has none");
  reference.Excludes(each);
  adding.Word("--id", options->Event.EventID, "EventID; without it the first free number").Excludes(each);
  adding.Word("--name", options->Event.EventName, "Friendly name; without it the command's").Excludes(each);
  adding.Text("--description", options->Event.EventDescription, "Short description").Excludes(each);
  adding.Number("--zone", options->Event.Zone, "Zone, 0 for any", {0, 8}).Excludes(each);
  adding.Flag("--disabled", options->Disabled, "Add it switched off").Excludes(each);
  adding.Runs([options] {
    if (!options->Each && options->Event.IRCommand.empty()) throw WrongUse("COMMAND or --each is required");
    return options->Each ? AddEach(*options) : AddOne(*options);
  });

  addWithID("delete", "Delete an event", Delete);
  addWithID("enable", "Switch an event on", [](const EventOptions& chosen) { return Switch(chosen, true); });
  addWithID("disable", "Switch an event off",
            [](const EventOptions& chosen) { return Switch(chosen, false); });
}

}  // namespace keplo::cli
