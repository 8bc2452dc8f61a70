#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "line/device_line.h"
#include "line/shaping/shaper.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What a program asks of its line.
struct LineSpec {
  std::vector<std::string> ReplayFiles;          // recordings to play as key presses
  bool InRealTime = false;                       // at the clock of the recordings, not as fast as possible
  int HeldCaptures = 0;                          // captures for which the key of the last press stays pressed
  std::vector<std::int32_t> Ports;               // without hardware behind them; all if none of them is one
  std::optional<std::int32_t> Port;              // for this run in place of that of the settings
  const std::int32_t* PortOfSettings = nullptr;  // where they are read later; else the one asked for first
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
  /// What time it is on the line, which plays against a clock or at a pace of its own.
  virtual std::chrono::microseconds Now() const = 0;
};

/// A line that was made from a LineSpec.
struct OpenedLine {
  std::unique_ptr<Win32Ser> Line;
  PressSource* Presses = nullptr;  // the line itself where it plays recordings, else none
  DeviceLine* Device = nullptr;    // the line itself where it is one of devices, else none
  std::vector<std::string>
      Remarks;  // what its user should know: mistakes in ports.conf, a line that stands in
  /// What the line is and can do now, in a sentence for a person. The line has to be there still.
  std::function<std::string()> Describe;
};

/// The only place that knows the kinds of lines. Where recordings are to be played, or ports without hardware
/// are named, it is a line that plays; else the devices of this machine.
/// @param appPath its ports.conf names the devices behind the COM numbers
/// @param receiverKind 0 DCDStandard, 1 IRMouse; the settings own it, and a change there counts at once
/// @param tell is called from calls of the line
/// @throws Failure if a recording cannot be read
OpenedLine OpenLine(const LineSpec& spec, const std::filesystem::path& appPath,
                    const std::int16_t& receiverKind, TellUser tell = {});
OpenedLine OpenLine(const LineSpec& spec, const std::filesystem::path& appPath, std::int16_t&& passing,
                    TellUser tell = {}) = delete;

}  // namespace keplo
