#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/broker_reporter.h"
#include "cli/commands.h"
#include "cli/live_line.h"
#include "keplo_mod.h"
#include "program/app_path.h"
#include "program/counted.h"
#include "program/line_options.h"
#include "program/local_time.h"
#include "program/press_line.h"
#include "program/printable.h"
#include "program/raised_event.h"
#include "program/stop_signals.h"
#include "signal/stage_text.h"
#include "station/changes_watch.h"
#include "station/silent_boxes.h"
#include "station/station.h"

namespace keplo::cli {

namespace {

struct MonitorOptions {
  std::string AppPath;
  bool Json = false;
  bool Once = false;
  bool Presses = false;
  bool Broker = false;
  LineSpec Line;
};

RaisedEvent Describe(const HostInputEvent& event, const Station& station) {
  RaisedEvent raised;
  raised.Time = LocalTime();
  raised.EventID = event.EventID;
  raised.Command = std::get<std::string>(event.EventCommand);
  EventDetails details;
  if (station.DescribeEvent(event.EventID, details)) {
    raised.EventName = details.EventName;
    raised.Zone = details.Zone;
  }
  return raised;
}

void Print(const RaisedEvent& event, bool json) {
  std::cout << (json ? EventJsonLine(event) : EventLine(event)) << std::endl;
}

void PrintKey(KeyChange change, const KeyPress& key, bool json) {
  static constexpr std::array<std::string_view, 3> kWhat = {"press", "hold", "release"};
  const auto held = std::chrono::duration_cast<std::chrono::milliseconds>(key.Held);
  std::cout << TextOf({kWhat.at(static_cast<std::size_t>(change)), key.Command, "G" + key.Signature.Digits,
                       key.Captures, static_cast<int>(held.count())},
                      json)
            << std::endl;
}

/// Prints log lines to standard error; only warnings and errors are prefixed with the program's name.
void WriteLogLine(LogLevel level, const std::string& text) {
  std::cerr << (level <= LogLevel::Warning ? "keplo: " : "") << Printable(text) << '\n';
}

/// @return whether a signal has arrived
bool WaitForTick(Station& station, const MonitorOptions& options, const StopSignals& stop,
                 const ChangesWatch& changes, const BrokerReporter* broker) {
  const bool hurry = !options.Line.InRealTime && !station.Played();
  if (hurry) return stop.WaitFor(0);
  LineRest* const rest = station.Rest();
  const std::chrono::milliseconds interval(station.Control().Timer1.Interval);
  const auto mayRest = rest == nullptr ? interval : rest->MayRest();
  if (mayRest <= interval) return stop.WaitFor(static_cast<int>(interval.count()));
  const auto wait = std::min(mayRest, changes.TimeToNextCheck());
  const int requests = broker == nullptr ? -1 : broker->WakeDescriptor();
  return stop.WaitFor(static_cast<int>(wait.count()),
                      {rest->WakeDescriptor(), changes.Descriptor(), requests});
}

/// Runs ticks until a signal arrives or, with --once, until the recordings have been played.
void RunTicks(Station& station, const MonitorOptions& options, const StopSignals& stop, ChangesWatch& changes,
              BrokerReporter* broker) {
  while (!(options.Once && station.Played())) {
    if (WaitForTick(station, options, stop, changes, broker)) return;
    if (broker != nullptr) broker->Serve();
    station.Control().Timer1.Tick();
    if (changes.IsDue()) station.Control().ApplyExternalChanges();
    if (station.Control().NeedsAnotherCheck()) changes.CheckSoon();
  }
}

/// Prints the numbers of presses, and the stages at which their reading ended.
void PrintTally(const PressTally& tally, std::ostream& out) {
  out << Counted(tally.Presses, "press") << " heard, " << Counted(tally.Events, "event") << " raised, "
      << Counted(tally.WithoutEvent, "press") << " without an event\n";
  for (std::size_t i = 0; i < tally.AtStage.size(); ++i) {
    if (tally.AtStage[i] == 0) continue;
    out << "  " << DescribeStage(static_cast<Stage>(i)) << ": " << tally.AtStage[i] << '\n';
  }
  out.flush();
}

/// Prints, and publishes to the broker, what the control reports.
/// @param broker may be null; must exist as long as the handlers, as must the options
void SetHandlers(Station& station, const MonitorOptions& options, BrokerReporter* broker) {
  Keplo& control = station.Control();
  control.TriggerInputEvent = [&station, &options, broker](HostInputEvent& event) {
    const RaisedEvent raised = Describe(event, station);
    Print(raised, options.Json);
    if (broker != nullptr) broker->Publish(raised);
  };
  control.OnKey = [&options, broker](KeyChange change, const KeyPress& key) {
    if (options.Presses) PrintKey(change, key, options.Json);
    if (broker != nullptr) broker->Publish(change, key);
  };
  if (broker != nullptr) {
    control.OnHeard = [broker](const TickReport& tick) { broker->Publish(tick); };
  }
  control.TriggerInputErrorCondition = [](HostErrorRecord& record, bool&) {
    Tell(record.ErrorSource + " " + record.ErrorProcedure + ": " + record.ErrorDescription);
  };
}

int Monitor(const MonitorOptions& options) {
  const std::filesystem::path appPath = RequireInstall(options.AppPath);
  ChangesWatch changes(appPath);
  KeploMod mod(appPath);
  const Log log(WriteLogLine);
  LoggedBoxes boxes(log);
  CancelledEventDialog dialog(log);
  const ui::SystemClock clock;
  // Signals must not end the monitor before the settings of the port are restored, but may end it while
  // recordings are read.
  std::optional<StopSignals> stop;
  if (options.Line.ReplayFiles.empty()) stop.emplace(EndingSignals());
  Station station(mod, options.Line, {boxes, dialog}, clock, log);
  // Already reported. A missing device may be plugged in later, but another program will not release the
  // port.
  if (station.IsPortInUse()) return kNoResult;
  std::optional<BrokerReporter> broker;
  if (options.Broker) broker.emplace(mod, station, log);
  SetHandlers(station, options, broker ? &*broker : nullptr);
  Keplo& control = station.Control();
  if (control.InputInitialise(nullptr) != 1) throw Failure(1, station.EventMapFailure());

  if (broker && !options.Line.ReplayFiles.empty()) broker->WaitUntilUp();
  if (LineRest* const line = station.Rest()) line->Forget();
  if (!stop) stop.emplace(EndingSignals());
  control.InputStartMonitoring();
  RunTicks(station, options, *stop, changes, broker ? &*broker : nullptr);
  control.InputStopMonitoring();
  control.InputTerminate();
  const PressTally& tally = station.Tally();
  PrintTally(tally, options.Json ? std::cerr : std::cout);
  return tally.WithoutEvent == 0 && station.WasOpen() ? kDone : kNoResult;
}

}  // namespace

void AddMonitorCommand(Command& root) {
  Command command = root.Sub("monitor", "Watch the line and print each input event that is raised");
  const auto options = std::make_shared<MonitorOptions>();
  AddAppPathOption(command, options->AppPath);
  const Argument replay =
      command.Words("--replay", options->Line.ReplayFiles, "Recordings to play as key presses");
  AddPortOption(command, options->Line.Port).Excludes(replay);
  command.Examples({"keplo monitor", "keplo monitor --replay samples/*.mode2 --once"});
  command.Flag("--json", options->Json, "One JSON object an event");
  command.Flag("--presses", options->Presses,
               "Print too when a key is pressed, held on with each further signal, and let go");
  command.Flag("--broker", options->Broker,
               "Tell the broker of keplo broker set too, as a host does, and send what it asks for");
  command.Flag("--once", options->Once, "End when the recordings have been played");
  command.Flag("--real-time", options->Line.InRealTime,
               "Play at the clock of the recordings, not as fast as possible");
  AddLineOptions(command, options->Line.Options.SampleTime, options->Line.Options.Shape,
                 options->Line.Options.HoldMs);
  command.Runs([options] { return Monitor(*options); });
}

}  // namespace keplo::cli
