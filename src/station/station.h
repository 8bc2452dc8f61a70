#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "line/open_line.h"
#include "shell/event_details.h"
#include "shell/keplo.h"
#include "signal/monitored_press.h"
#include "station/log.h"
#include "station/rest_between_presses.h"

namespace keplo {

/// Numbers of key presses so far.
struct PressTally {
  int Presses = 0;                     // received
  int Events = 0;                      // raised by them
  int WithoutEvent = 0;                // presses that raised none
  std::array<int, kStages> AtStage{};  // presses by the Stage at which their reading ended
};

/// A control on a line, with a log: what the plug-in and the command line have in common.
class Station {
 public:
  /// Opens the line and creates the control. Logs what is wrong with keplo.cfg.
  /// @param mod, windows, clock, log must outlive the station
  /// @throws Failure if a recording or keplo.cfg cannot be read
  Station(KeploMod& mod, const LineSpec& spec, const KeploWindows& windows, const ui::Clock& clock,
          const Log& log);
  /// As above, with an existing line.
  Station(KeploMod& mod, OpenedLine line, const KeploWindows& windows, const ui::Clock& clock,
          const Log& log);

  /// Why the control's InputInitialise returned 0, for the user.
  std::string EventMapFailure() const;
  Keplo& Control() { return control_; }
  const Keplo& Control() const { return control_; }
  const PressTally& Tally() const { return tally_; }
  /// @return false if the list has no such event; details are then unchanged
  bool DescribeEvent(const std::string& eventID, EventDetails& details) const {
    return keplo::DescribeEvent(control_.ListView1, eventID, details);
  }
  /// The EventID of the highlighted row; empty if there is none.
  std::string HighlightedEvent() const { return keplo::HighlightedEvent(control_.ListView1); }
  Win32Ser& Line() { return *line_.Line; }
  /// Why the last transmission was not sent; empty if it was.
  std::string WhyNotSent() const;
  /// Describes the line in a sentence for the user.
  std::string DescribeLine() const { return line_.Describe ? line_.Describe() : std::string(); }
  /// Shows a message of the line in the open window; empty while no window is open.
  std::function<void(const std::string&)> OnLineMessage;
  /// Knows how long ticks may be skipped; null if they may not.
  LineRest* Rest() { return rest_ ? &*rest_ : nullptr; }
  /// Whether the line was ever usable: it plays recordings, or its port was open.
  bool WasOpen() const { return line_.Device == nullptr || opened_; }
  /// Whether the port did not open because another program uses it.
  bool IsPortInUse() const { return line_.Device != nullptr && line_.Device->IsInUse(); }
  /// Whether all recordings, if any, have been played.
  bool Played() const { return line_.Presses == nullptr || line_.Presses->Done(); }

 private:
  void ReportPortFailure();
  void HandleLineMessage(const std::string& text);
  bool IsLightContinuing() const;
  bool IsLamp(const TickReport& tick);
  void ReportLosses(const TickReport& tick);
  void CountPress(const TickReport& tick);

  const Log& log_;
  OpenedLine line_;
  PressTally tally_;
  std::chrono::microseconds lastHeard_{0};
  int codeless_ = 0;   // consecutive captures without a code
  LineLosses losses_;  // at the last press
  bool lossesReported_ = false;
  std::string reportedPortFailure_;  // the last one
  bool opened_ = false;
  Keplo control_;
  std::optional<RestBetweenPresses> rest_;
};

}  // namespace keplo
