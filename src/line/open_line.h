#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "line/shaping/shaper.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What a program asks of its line.
struct LineSpec {
  std::vector<std::string> ReplayFiles;  // recordings to play as key presses
  bool InRealTime = false;               // at the clock of the recordings, not as fast as possible
  int HeldCaptures = 0;                  // captures for which the key of the last press stays pressed
  std::vector<std::int32_t> Ports;       // the only ports that are there; all if there is none among them
  LineOptions Options;
};

/// A recorded press by its place.
struct PlayedPress {
  std::string Path;
  std::size_t Number = 0;  // in its file, from 1
};

/// Beside Win32Ser: a line that knows where its presses come from.
class PressSource {
 public:
  virtual ~PressSource() = default;
  /// Whether every press was played.
  virtual bool Done() const = 0;
  /// The press that the last capture took; none before the first capture.
  virtual const PlayedPress* LastPress() const = 0;
};

/// A line that was made from a LineSpec.
struct OpenedLine {
  std::unique_ptr<Win32Ser> Line;
  PressSource* Presses = nullptr;  // the line itself where it plays recordings, else none
};

/// The only place that knows the kinds of lines.
/// @param receiverKind 0 DCDStandard, 1 IRMouse; the settings own it, and a change there counts at once
/// @throws Failure if a recording cannot be read
OpenedLine OpenLine(const LineSpec& spec, const std::int16_t& receiverKind);
OpenedLine OpenLine(const LineSpec& spec, std::int16_t&& passing) = delete;

}  // namespace keplo
