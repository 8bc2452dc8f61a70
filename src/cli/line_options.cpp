#include "cli/line_options.h"

#include <array>

namespace keplo::cli {

void AddLineOptions(CLI::App& command, LineOptions& options) {
  command.add_option("--sample-time", options.SampleTime, "Length of one sample, microseconds")
      ->check(CLI::Range(10, 1000))
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

std::string DescribeStage(Stage stage) {
  static constexpr std::array<std::string_view, 8> kMeanings = {
      "there is no signal",
      "the capture is too short",
      "no base time can be measured, since marks and spaces have no common shortest length or the longer one "
      "is the "
      "commoner",
      "the samples end inside a mark",
      "no whole frame stands between two long marks or spaces",
      "the signal fits neither pulse distance nor pulse width nor biphase",
      "the number of bits does not fit the protocol",
      "a code"};
  return std::string(StageName(stage)) + " (" + std::string(kMeanings.at(static_cast<std::size_t>(stage))) +
         ")";
}

}  // namespace keplo::cli
