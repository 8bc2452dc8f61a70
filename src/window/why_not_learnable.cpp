#include "window/why_not_learnable.h"

#include "signal/stage_text.h"

namespace keplo {

namespace {

constexpr const char* kComeCloser =
    "Move closer, shade the receiver from lamps; if other keys fail as well, choose AutoCalibrate.";

/// The note has no space for the longer reasons.
std::string ShortReason(const RecordReading& reading) {
  switch (reading.Ended) {
    case RecordStage::Empty:
    case RecordStage::Short:
    case RecordStage::Fragment:
      return WhyNoCode(reading) + ". Hold the key longer.";
    case RecordStage::NoTiming:
      return std::string("cannot find the pulse unit. ") + kComeCloser;
    case RecordStage::Unknown:
      if (reading.HasOddLength) return WhyNoCode(reading) + ". Try another key of this remote.";
      if (reading.IsDoubtful) return WhyNoCode(reading) + ".";
      return std::string("it fits no line code. ") + kComeCloser;
    case RecordStage::Code:
      break;
  }
  return WhyNoCode(reading) + ". Move closer and record again.";
}

}  // namespace

std::string WhyNotLearnable(const RecordReading& reading) {
  return WhyNoCode(reading).empty() ? std::string() : "No code: " + ShortReason(reading);
}

}  // namespace keplo
