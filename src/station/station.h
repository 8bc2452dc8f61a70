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

/// What has become of the key presses so far.
struct PressTally {
  int Presses = 0;                     // heard
  int Events = 0;                      // raised
  int WithoutEvent = 0;                // presses that raised none
  std::array<int, kStages> AtStage{};  // where their reading ended, in the order of Stage
};

/// A control on a line, told to someone: what the plug-in and the command line have in common.
class Station {
 public:
  /// Opens the line and starts the control up; tells what is wrong with keplo.cfg.
  /// @param mod, clock, log outlive the station, as what the windows refer to does
  /// @throws Failure if a recording or keplo.cfg cannot be read
  Station(KeploMod& mod, const LineSpec& spec, const KeploWindows& windows, const ui::Clock& clock,
          const Log& log);
  /// The same on a line that is there already.
  Station(KeploMod& mod, OpenedLine line, const KeploWindows& windows, const ui::Clock& clock,
          const Log& log);

  /// Why the control's InputInitialise gave 0, for a person.
  std::string WhyNoEventMap() const;
  Keplo& Control() { return control_; }
  const Keplo& Control() const { return control_; }
  const PressTally& Tally() const { return tally_; }
  /// @return false if the list has no such event; details stay as they are then
  bool DescribeEvent(const std::string& eventID, EventDetails& details) const {
    return keplo::DescribeEvent(control_.ListView1, eventID, details);
  }
  /// The EventID of the highlighted row; empty if none is.
  std::string HighlightedEvent() const { return keplo::HighlightedEvent(control_.ListView1); }
  Win32Ser& Line() { return *line_.Line; }
  /// Why what was sent last did not go out; empty if it did.
  std::string WhyNotSent() const;
  /// What the line is, in a sentence for a person.
  std::string DescribeLine() const { return line_.Describe ? line_.Describe() : std::string(); }
  /// Shows what the line tells in the line of text of a window; none while no window is open.
  std::function<void(const std::string&)> OnLineTold;
  /// Tells how long ticks may be left out; none where every tick counts.
  LineRest* Rest() { return rest_ ? &*rest_ : nullptr; }
  /// Whether there was ever something to listen to: recordings, or a port that opened.
  bool WasOpen() const { return line_.Device == nullptr || opened_; }
  /// Whether the port did not open since another program has it.
  bool IsPortInUse() const { return line_.Device != nullptr && line_.Device->IsInUse(); }
  /// Whether every recording has been played; a line without recordings has none to wait for.
  bool Played() const { return line_.Presses == nullptr || line_.Presses->Done(); }

 private:
  void TellWhyNotOpen();
  void TellOfLine(const std::string& text);
  bool LightGoesOn() const;
  bool IsLamp(const TickReport& tick);
  void TellLosses(const TickReport& tick);
  void CountPress(const TickReport& tick);

  const Log& log_;
  OpenedLine line_;
  PressTally tally_;
  std::chrono::microseconds lastHeard_{0};
  int codeless_ = 0;   // captures one after the other
  LineLosses losses_;  // when they were looked at last
  bool lossesTold_ = false;
  std::string toldWhy_;  // the port did not open, told last
  bool opened_ = false;
  Keplo control_;
  std::optional<RestBetweenPresses> rest_;  // of a line that may be left alone
};

}  // namespace keplo
