#include "host_program/options.h"

#include "program/app_path.h"
#include "program/arguments.h"
#include "program/book_numbers.h"
#include "program/line_options.h"

namespace keplo::host {

namespace {

constexpr int kLargestPort = 65535;

struct Choices {
  int Port = kUsualHttpPort;
  bool NoHttp = false;
  std::optional<std::int32_t> ComPort;
  bool Register = false, Unregister = false;
  std::string HostFile, ComponentFile;
};

void AddOptions(Command command, HostOptions& options, Choices& choices) {
  CreationContext& control = options.Control;
  AddAppPathOption(command, control.ApplicationPath);
  const Argument replay = command.Words("--replay", control.ReplayFiles, "Recordings to play as key presses");
  AddPortOption(command, choices.ComPort).Excludes(replay);
  command.Flag("--once", options.Once,
               "End when the recordings have been played; the status is 1 if a press raised no event");
  command.Flag("--real-time", control.ReplayInRealTime,
               "Play at the clock of the recordings, not as fast as possible");
  AddLineOptions(command, control.SampleTime, control.ShapeReplay, control.HoldMs);
  command.Flag("--headless", options.Headless, "Run without windows, for a machine with no display");
  command.Flag("--json", options.Json, "One JSON object for each event and error on standard output");
  command.Flag("--presses", options.Presses,
               "Print too when a key is pressed, held on with each further signal, and let go");
  const Argument port =
      command
          .Number("--http-port", choices.Port, "Port of the web pages; 0 for any free one", {0, kLargestPort})
          .ShowDefault();
  command.Flag("--no-http", choices.NoHttp, "No web pages").Excludes(port);
  command
      .Word("--http-address", options.HttpAddress,
            "Address at which the pages are served; the loopback one unless told otherwise")
      .ShowDefault();
  command.Words("--http-name", options.HttpNames,
                "Another name, with its port unless 80, by which a browser may ask for the pages");
  command.Word("--host-file", choices.HostFile,
               "Where the host keeps what each event does (else host.json in the application path)");
  command.Word("--component", choices.ComponentFile,
               "Component to load, in place of the registered one or the one beside the program");
  const Argument registering =
      command.Flag("--register", choices.Register, "Make the component known to hosts, and end");
  command.Flag("--unregister", choices.Unregister, "Make it unknown again, and end").Excludes(registering);
}

}  // namespace

std::optional<int> ReadOptions(int argc, char** argv, HostOptions& options) {
  CommandLine line(
      "keplo-host", KEPLO_VERSION,
      "Runs the infrared plug-in: watches the line, does what each input event asks for, shows pages.");
  Choices choices;
  AddOptions(line.Root(), options, choices);
  if (const auto status = line.Parse(argc, argv)) return status;
  options.ComponentFile = choices.ComponentFile;
  options.HttpPort = choices.NoHttp ? std::nullopt : std::optional(static_cast<std::uint16_t>(choices.Port));
  if (choices.Register) options.ToDo = Task::Register;
  if (choices.Unregister) options.ToDo = Task::Unregister;
  if (options.ToDo != Task::Run) return std::nullopt;
  CreationContext& control = options.Control;
  control.ApplicationPath = ResolveAppPath(control.ApplicationPath).string();
  control.Port = choices.ComPort.value_or(0);
  options.HostFile = choices.HostFile.empty()
                         ? std::filesystem::path(control.ApplicationPath) / kEventBookFile
                         : std::filesystem::path(choices.HostFile);
  return std::nullopt;
}

}  // namespace keplo::host
