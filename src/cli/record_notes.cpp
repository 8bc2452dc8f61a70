#include "cli/record_notes.h"

namespace keplo::cli {

std::string WhyNoCode(const RecordReading& reading) {
  switch (reading.Ended) {
    case RecordStage::Empty:
      return "there is no signal";
    case RecordStage::Short:
      return "the signal is too short";
    case RecordStage::NoTiming:
      return "no base time can be measured, since marks and spaces have no common shortest length or the "
             "longer one is the commoner";
    case RecordStage::Unknown:
      return "the signal fits neither pulse distance nor pulse width nor biphase";
    case RecordStage::Fragment:
      return "a single frame of " + std::to_string(reading.Code.size()) + " bits is a fragment";
    case RecordStage::Code:
      break;
  }
  if (reading.Code.empty()) return "there are no bits between the long marks and spaces";
  if (reading.Code.find_first_of("xy") != std::string::npos) {
    return "some half bits cannot be paired; the code " + reading.Code + " has x and y in their place";
  }
  return {};
}

}  // namespace keplo::cli
