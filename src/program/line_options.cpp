#include "program/line_options.h"

namespace keplo {

void AddLineOptions(CLI::App& command, LineOptions& options) {
  command.add_option("--sample-time", options.SampleTime, "Length of one sample, microseconds")
      ->check(CLI::Range(10.0, 1000.0))
      ->capture_default_str();
  command.add_flag_callback(
      "--no-shape", [&options] { options.Shape = false; },
      "Hand the receiver's edges on as they are, with its mark excess and cut frames");
  command
      .add_option(
          "--hold", options.HoldMs,
          "How long the key of a single-frame recording is held, milliseconds; 0 plays it as recorded")
      ->check(CLI::Range(0, 10000))
      ->capture_default_str();
}

}  // namespace keplo
