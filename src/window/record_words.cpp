#include "window/record_words.h"

#include <string_view>

#include "signal/stage_text.h"

namespace keplo {

namespace {

std::string_view WayOut(const RecordReading& reading) {
  switch (reading.Ended) {
    case RecordStage::Empty:
      return "Point the remote at the receiver.";
    case RecordStage::Short:
    case RecordStage::Fragment:
      return "Hold the key longer.";
    case RecordStage::NoTiming:
    case RecordStage::Unknown:
      // The reason says it already where the frames differ.
      if (reading.IsDoubtful && !reading.HasOddLength) return {};
      return "Move closer and keep lamps and sunlight off the receiver; if other keys fail as well, choose "
             "AutoCalibrate.";
    case RecordStage::Code:
      break;
  }
  return "Move closer and record again.";
}

}  // namespace

std::string WhyNotLearnable(const RecordReading& reading) {
  const std::string why = WhyNoCode(reading);
  if (why.empty()) return {};
  const std::string_view wayOut = WayOut(reading);
  return std::string("No code: ").append(why).append(wayOut.empty() ? "." : ". ").append(wayOut);
}

}  // namespace keplo
