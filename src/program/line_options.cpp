#include "program/line_options.h"

namespace keplo {

namespace {

constexpr Between<std::int32_t> kPorts = {1, 30};  // COM numbers that the system asks for

}  // namespace

void AddLineOptions(Command& command, double& sampleTime, bool& shape, int& holdMs) {
  Argument time =
      command.Number("--sample-time", sampleTime, "Length of one sample, microseconds", {10.0, 1000.0});
  if (sampleTime > 0) time.ShowDefault();
  command.Flag("--no-shape", shape,
               "Hand the receiver's edges on as they are, with its mark excess and cut frames; for the "
               "second look that leaves glitches in alone",
               /*whenGiven=*/false);
  Argument hold = command.Number("--hold", holdMs,
                                 "How long the key of a single-frame recording is held for the first "
                                 "analysis, milliseconds; 0 plays it as "
                                 "recorded, as the second look wants it",
                                 {0, 10000});
  if (holdMs >= 0) hold.ShowDefault();
}

Argument AddPortOption(Command& command, std::optional<std::int32_t>& port) {
  return command.Number("--port", port, "Use this COM number, not that of the settings", kPorts);
}

}  // namespace keplo
