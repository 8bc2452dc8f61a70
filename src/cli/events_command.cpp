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

void AddEventsCommand(CLI::App& app, int& status) {
  auto* events = app.add_subcommand("events", "Show and change the event map");
  events->require_subcommand(1);
  const auto options = std::make_shared<EventOptions>();
  const auto add = [&](const char* name, const char* what) {
    auto* command = events->add_subcommand(name, what);
    AddAppPathOption(*command, options->AppPath);
    return command;
  };
  const auto addWithID = [&](const char* name, const char* what) {
    auto* command = add(name, what);
    command->add_option("ID", options->Event.EventID, "EventID of the event")->required();
    return command;
  };

  auto* list = add("list", "List the events");
  list->add_flag("--json", options->Json, "One JSON object an event");
  list->callback([options, &status] { status = List(*options); });

  auto* adding = add("add", "Add an event for a learned command");
  auto* reference =
      adding->add_option("COMMAND", options->Event.IRCommand, "Protocol and command, as 'NEC&POWER'");
  auto* each = adding->add_flag("--each", options->Each, "An event for every learned command that has none");
  reference->excludes(each);
  adding->add_option("--id", options->Event.EventID, "EventID; without it the first free number")
      ->excludes(each);
  adding->add_option("--name", options->Event.EventName, "Friendly name; without it the command's")
      ->excludes(each);
  adding->add_option("--description", options->Event.EventDescription, "Short description")->excludes(each);
  adding->add_option("--zone", options->Event.Zone, "Zone, 0 for any")
      ->check(CLI::Range(0, 8))
      ->excludes(each);
  adding->add_flag("--disabled", options->Disabled, "Add it switched off")->excludes(each);
  adding->callback([options, &status] {
    if (!options->Each && options->Event.IRCommand.empty()) throw CLI::RequiredError("COMMAND or --each");
    status = options->Each ? AddEach(*options) : AddOne(*options);
  });

  addWithID("delete", "Delete an event")->callback([options, &status] { status = Delete(*options); });
  addWithID("enable", "Switch an event on")->callback([options, &status] {
    status = Switch(*options, true);
  });
  addWithID("disable", "Switch an event off")->callback([options, &status] {
    status = Switch(*options, false);
  });
}

}  // namespace keplo::cli
