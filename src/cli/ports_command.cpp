#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "cli/commands.h"
#include "cli/line_watch.h"
#include "line/port_check.h"
#include "line/real_time.h"
#include "line/rooms/broker_messages.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

struct PortsOptions {
  std::string AppPath;
  bool Json = false;
  std::optional<std::int32_t> Watch;
};

std::string DeviceOf(const MappedPort& port) {
  if (port.Type != MappedPort::Kind::Replay) return port.Device;
  std::string files;
  for (const std::string& file : port.Files) files += (files.empty() ? "" : " ") + file;
  return files;
}

void PrintJson(const MappedPort& port, const PortCheck& check) {
  nlohmann::ordered_json json;
  json["port"] = port.Port;
  json["kind"] = KindName(port.Type);
  json["device"] = DeviceOf(port);
  json["driver"] = check.Driver;
  json["open"] = check.Opens;
  json["receive"] = check.Receives;
  json["send"] = check.Sends;
  json["why"] = check.Why.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(check.Why);
  std::cout << JsonLine(json) << '\n';
}

std::string AbilityText(const PortCheck& check) {
  if (!check.Opens) return "does not open";
  if (check.Receives && check.Sends) return "receives and sends";
  if (check.Receives) return "receives";
  return check.Sends ? "sends" : "opens";
}

void PrintText(const MappedPort& port, const PortCheck& check) {
  std::cout << "COM " << std::left << std::setw(3) << port.Port << std::setw(7) << KindName(port.Type)
            << Printable(DeviceOf(port));
  if (!check.Driver.empty()) std::cout << " (" << Printable(check.Driver) << ")";
  std::cout << ": " << AbilityText(check) << '\n';
  if (!check.Why.empty()) std::cout << "        " << Printable(check.Why) << '\n';
}

int ListPorts(const PortsOptions& options) {
  KernelCalls calls;
  const auto appPath = ResolveAppPath(options.AppPath);
  const PortMap map = LoadPortMap(appPath);
  for (const std::string& mistake : map.Mistakes) Tell(mistake);
  for (const MappedPort& port : map.Ports) {
    const PortCheck check = CheckPort(calls, port, {}, BrokerMessagesOf(appPath));
    if (options.Json) {
      PrintJson(port, check);
    } else {
      PrintText(port, check);
    }
  }
  for (const std::string& why : map.LeftOut) Tell(why);
  if (map.LeftOut.empty() && !map.WhyEmpty.empty()) Tell(map.WhyEmpty);
  if (!options.Json && map.IsFound && !map.Ports.empty()) {
    const MappedPort& first = map.Ports.front();
    std::cout << "The numbers are counted anew when a device comes or goes. A line such as \"" << first.Port
              << " = " << KindName(first.Type) << ":" << Printable(first.Device) << "\" for each in "
              << Printable((appPath / "ports.conf").string()) << " keeps them.\n";
  }
  if (!options.Json) std::cout << DescribeRealTime() << '\n' << DescribeMemory() << '\n';
  return map.Mistakes.empty() ? kDone : kUsageError;
}

}  // namespace

void AddPortsCommand(Command& root) {
  Command command = root.Sub("ports", "List what stands behind the COM numbers, and what it can do");
  const auto options = std::make_shared<PortsOptions>();
  const Argument json = command.Flag("--json", options->Json, "One JSON object a port");
  command
      .Number("--watch", options->Watch,
              "Show the line of this port as it changes, and each press as its lengths",
              {kFirstPort, kLastPort})
      .Excludes(json);
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo ports", "keplo ports --watch 1"});
  command.Runs([options] {
    return options->Watch ? WatchLine(options->AppPath, *options->Watch) : ListPorts(*options);
  });
}

}  // namespace keplo::cli
