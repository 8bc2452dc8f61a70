#pragma once

#include <cstdint>
#include <string_view>

namespace keplo {

/// How a signal is read.
enum class Analysis : std::uint8_t {
  First,  // AnalyseTiming, from the first 25 pairs of runs
  Second  // SecondLook, frame by frame; the first for clean signals that it cannot read, and no code from
          // what it refuses
};

/// Name of an analysis as the command line takes and prints it: "first", "second".
constexpr std::string_view AnalysisName(Analysis analysis) {
  return analysis == Analysis::First ? "first" : "second";
}

}  // namespace keplo
