#include "broker/announcement.h"

#include <unistd.h>

#include <array>
#include <nlohmann/json.hpp>

#include "broker/identity.h"

namespace keplo::broker {

namespace {

std::string Dump(const nlohmann::ordered_json& json) {
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// Includes the machine's name, to distinguish hosts on the devices page.
std::string DeviceName() {
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0 || name.front() == '\0') return "Keplo";
  return "Keplo " + std::string(name.data());
}

std::string NameOf(const AnnouncedEvent& event) {
  if (!event.Name.empty()) return event.Name;
  return event.Command.empty() ? "Event " + event.EventID : event.Command;
}

}  // namespace

Topics::Topics(const BrokerSettings& settings, const std::string& identity)
    : node_("keplo-" + identity),
      base_(settings.Prefix + "/" + identity),
      status_(base_ + "/status"),
      signal_(base_ + "/signal"),
      send_(base_ + "/send"),
      device_(settings.DiscoveryPrefix + "/device/" + node_ + "/config"),
      birth_(settings.DiscoveryPrefix + "/status"),
      check_(base_ + "/check"),
      deviceCheck_(settings.DiscoveryPrefix + "/device/" + node_ + "/check") {}

std::string Topics::Event(std::string_view eventID) const {
  return base_ + "/event/" + SafeForTopic(eventID);
}

std::string DeviceMessage(const Topics& topics, const BrokerSettings& settings,
                          const std::vector<AnnouncedEvent>& events) {
  nlohmann::ordered_json device;
  device["device"] = {{"identifiers", {topics.Node()}},
                      {"name", DeviceName()},
                      {"manufacturer", "Keplo"},
                      {"model", "Infrared input"},
                      {"sw_version", KEPLO_VERSION}};
  device["origin"] = {{"name", "Keplo"}, {"sw_version", KEPLO_VERSION}};
  device["availability_topic"] = topics.Status();
  device["qos"] = 1;
  auto& components = device["components"] = nlohmann::ordered_json::object();
  for (const AnnouncedEvent& event : events) {
    const std::string safe = SafeForTopic(event.EventID);
    components["event_" + safe] = {{"platform", "event"},
                                   {"unique_id", topics.Node() + "-event-" + safe},
                                   {"name", NameOf(event)},
                                   {"state_topic", topics.Event(event.EventID)},
                                   {"event_types", {"press", "hold", "release"}},
                                   {"device_class", "button"}};
  }
  if (settings.Signals) {
    components["receiver"] = {{"platform", "infrared"},
                              {"schema", "receiver"},
                              {"unique_id", topics.Node() + "-receiver"},
                              {"name", "Receiver"},
                              {"state_topic", topics.Signal()}};
  }
  if (settings.Send) {
    components["emitter"] = {{"platform", "infrared"},
                             {"schema", "emitter"},
                             {"unique_id", topics.Node() + "-emitter"},
                             {"name", "Emitter"},
                             {"command_topic", topics.Send()}};
  }
  return Dump(device);
}

std::optional<std::string> RemovalMessage(std::string_view earlier, std::string_view now) {
  const auto before = nlohmann::ordered_json::parse(earlier, nullptr, /*allow_exceptions=*/false);
  auto device = nlohmann::ordered_json::parse(now);
  if (!before.is_object()) return std::nullopt;
  const auto components = before.find("components");
  if (components == before.end() || !components->is_object()) return std::nullopt;
  bool gone = false;
  for (const auto& [key, component] : components->items()) {
    if (device["components"].contains(key) || !component.is_object()) continue;
    // Home Assistant splits the key at blanks when it removes a component.
    if (key.find(' ') != std::string::npos) continue;
    const auto platform = component.find("platform");
    if (platform == component.end() || !platform->is_string()) continue;
    device["components"][key] = {{"platform", *platform}};
    gone = true;
  }
  if (!gone) return std::nullopt;
  return Dump(device);
}

}  // namespace keplo::broker
