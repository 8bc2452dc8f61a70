#include "host_program/options.h"

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace keplo::host {

namespace {

constexpr int kWrongUse = 2;
constexpr int kLargestPort = 65535;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::filesystem::path UsualApplicationPath() {
  if (const std::string home = Environment("KEPLO_HOME"); !home.empty()) return home;
  if (const std::string data = Environment("XDG_DATA_HOME"); !data.empty()) {
    return std::filesystem::path(data) / "keplo";
  }
  return std::filesystem::path(Environment("HOME")) / ".local" / "share" / "keplo";
}

}  // namespace

std::optional<int> ReadOptions(int argc, char** argv, HostOptions& options) {
  CLI::App app(
      "Runs the infrared plug-in: watches the line, does what each input event asks for, shows pages.",
      "keplo-host");
  app.set_version_flag("--version", "keplo-host " KEPLO_VERSION);
  CreationContext& control = options.Control;
  app.add_option("--app-path", control.ApplicationPath,
                 "Folder of keplo.cfg and the event map (else $KEPLO_HOME, else the user's data folder)");
  app.add_option("--replay", control.ReplayFiles, "Recordings to play as key presses");
  app.add_flag("--once", options.Once,
               "End when the recordings have been played; the status is 1 if a press raised no event");
  app.add_flag("--real-time", control.ReplayInRealTime,
               "Play at the clock of the recordings, not as fast as possible");
  app.add_option("--sample-time", control.SampleTime, "Length of one sample, microseconds")
      ->check(CLI::Range(10, 1000));
  app.add_flag_callback(
      "--no-shape", [&] { control.ShapeReplay = false; }, "Play the receiver's edges as they are");
  app.add_option("--hold", control.HoldMs,
                 "How long the key of a single-frame recording is held, milliseconds")
      ->check(CLI::Range(0, 10000));
  app.add_flag("--headless", options.Headless, "Run without windows, for a machine with no display");
  app.add_flag("--json", options.Json, "One JSON object for each event and error on standard output");
  int port = kUsualHttpPort;
  auto* portOption = app.add_option("--http-port", port, "Port of the web pages; 0 for any free one")
                         ->check(CLI::Range(0, kLargestPort))
                         ->capture_default_str();
  bool noHttp = false;
  app.add_flag("--no-http", noHttp, "No web pages")->excludes(portOption);
  app.add_option("--http-address", options.HttpAddress,
                 "Address at which the pages are served; the loopback one unless told otherwise")
      ->capture_default_str();
  app.add_option("--http-name", options.HttpNames,
                 "Another name, with its port unless 80, by which a browser may ask for the pages");
  app.add_option("--host-file", options.HostFile,
                 "Where the host keeps what each event does (else host.json in the application path)");
  app.add_option("--component", options.ComponentFile,
                 "Component to load, in place of the registered one or the one beside the program");
  auto* registering = app.add_flag_callback(
      "--register", [&] { options.ToDo = Errand::Register; }, "Make the component known to hosts, and end");
  app.add_flag_callback(
         "--unregister", [&] { options.ToDo = Errand::Unregister; }, "Make it unknown again, and end")
      ->excludes(registering);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kWrongUse;
  }
  if (control.ApplicationPath.empty()) control.ApplicationPath = UsualApplicationPath();
  if (options.HostFile.empty()) {
    options.HostFile = std::filesystem::path(control.ApplicationPath) / "host.json";
  }
  options.HttpPort = noHttp ? std::nullopt : std::optional(static_cast<std::uint16_t>(port));
  return std::nullopt;
}

}  // namespace keplo::host
