#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "config/check_config.h"
#include "disk/posix_file_system.h"
#include "events/event_text.h"
#include "formats/recording.h"
#include "keplo_mod.h"
#include "line/replay_line.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/line_options.h"
#include "program/local_time.h"
#include "program/stop_signals.h"
#include "shell/event_list.h"
#include "shell/keplo.h"
#include "station/press_words.h"
#include "station/quiet_boxes.h"

namespace keplo::cli {

namespace {

struct MonitorOptions {
  std::string AppPath;
  std::vector<std::string> Replay;
  bool Json = false;
  bool Once = false;
  bool RealTime = false;
  LineOptions Line;
};

struct RaisedEvent {
  std::string Time, EventID, Name, Command, Zone;
};

RaisedEvent Describe(const HostInputEvent& event, const ui::ListView& list) {
  RaisedEvent raised{LocalTime(), event.EventID, "", std::get<std::string>(event.EventCommand), "0"};
  if (const int row = list.FindRow(kEventID, event.EventID); row != 0) {
    raised.Name = list.Text(row, kEventName);
    raised.Zone = list.Text(row, kZone);
  }
  return raised;
}

void Print(const RaisedEvent& event, bool json) {
  if (json) {
    nlohmann::ordered_json line;
    line["time"] = event.Time;
    line["event_id"] = event.EventID;
    line["event_name"] = event.Name;
    line["command"] = event.Command;
    line["zone"] = ZoneNumber(event.Zone);
    std::cout << JsonLine(line) << std::endl;
  } else {
    std::cout << event.Time << "  event " << event.EventID << "  " << event.Name << "  " << event.Command
              << "  zone " << event.Zone << std::endl;
  }
}

struct Tally {
  int Presses = 0, Events = 0, WithoutEvent = 0;
};

void TellPress(const TickReport& tick, const ReplayLine& line, Tally& tally) {
  ++tally.Presses;
  tally.Events += tick.Dispatched.Raised;
  const std::string reason = WhyNoEvent(tick);
  if (reason.empty()) return;
  ++tally.WithoutEvent;
  const PlayedPress* press = line.LastPress();
  std::cerr << (press == nullptr ? "a press" : press->Path + " press " + std::to_string(press->Number))
            << ": heard, but no event: " << reason << '\n';
}

/// Runs ticks until a signal comes or, with --once, until the recording has been played.
void RunTicks(Keplo& control, ReplayLine& line, const MonitorOptions& options, const StopSignals& stop) {
  while (!(options.Once && line.Done())) {
    const bool hurry = !options.RealTime && !line.Done();
    if (stop.WaitFor(hurry ? 0 : control.Timer1.Interval)) return;
    control.Timer1.Tick();
  }
}

int Monitor(const MonitorOptions& options) {
  PosixFileSystem files;
  KeploMod mod(RequireInstall(options.AppPath), files);
  std::vector<Recording> recordings;
  for (const std::string& file : options.Replay) recordings.push_back(LoadRecording(file));
  ReplayLine line(std::move(recordings), mod.Settings.ReceiverKind, options.Line);
  SteadyLineClock lineClock;
  if (options.RealTime) line.PlayAgainst(lineClock);
  QuietBoxes boxes;
  NoEventDialog dialog;
  const ui::SystemClock clock;
  Keplo control(mod, line, {boxes, dialog}, clock);
  control.TriggerInputEvent = [&](HostInputEvent& event) {
    Print(Describe(event, control.ListView1), options.Json);
  };
  control.TriggerInputErrorCondition = [](HostErrorRecord& record, bool&) {
    std::cerr << "keplo: " << record.ErrorSource << " " << record.ErrorProcedure << ": "
              << record.ErrorDescription << '\n';
  };
  if (const std::string damage = CheckConfig(mod.Store); !damage.empty())
    std::cerr << "keplo: " << damage << '\n';
  if (control.InputInitialise(nullptr) != 1) {
    throw Failure(1, "The event map cannot be loaded: " + control.WhyNotInitialised());
  }

  const StopSignals stop;
  control.InputStartMonitoring();
  Tally tally;
  control.OnPress = [&](const TickReport& tick) { TellPress(tick, line, tally); };
  RunTicks(control, line, options, stop);
  control.InputStopMonitoring();
  control.InputTerminate();
  (options.Json ? std::cerr : std::cout)
      << tally.Presses << " presses heard, " << tally.Events << " events raised, " << tally.WithoutEvent
      << " presses without an event" << std::endl;
  return tally.WithoutEvent == 0 ? kDone : kNoResult;
}

}  // namespace

void AddMonitorCommand(Command& root) {
  Command command = root.Sub("monitor", "Watch the line and print each input event that is raised");
  const auto options = std::make_shared<MonitorOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Words("--replay", options->Replay, "Recordings to play as key presses");
  command.Flag("--json", options->Json, "One JSON object an event");
  command.Flag("--once", options->Once, "End when the recordings have been played");
  command.Flag("--real-time", options->RealTime,
               "Play at the clock of the recordings, not as fast as possible");
  AddLineOptions(command, options->Line.SampleTime, options->Line.Shape, options->Line.HoldMs);
  command.Runs([options] { return Monitor(*options); });
}

}  // namespace keplo::cli
