#include "signal/stage_text.h"

namespace keplo {

namespace {

constexpr std::string_view kNoSignal = "there is no signal";
constexpr std::string_view kNoPulseUnit =
    "cannot find the pulse unit: there are too few marks and spaces, they share no shortest length, or the "
    "longer one is more frequent";
constexpr std::string_view kNoLineCode = "the signal fits neither pulse distance nor pulse width nor biphase";

constexpr std::string_view kOddLength = "the number of bits does not fit the protocol";
constexpr std::string_view kNoWholeFrame =
    "its frames differ, or are not whole: hold the key longer, and point straight at the receiver";

std::string WhyNoDigits(const RecordReading& reading) {
  switch (reading.Ended) {
    case RecordStage::Empty:
      return std::string(kNoSignal);
    case RecordStage::Short:
      return "the signal is too short";
    case RecordStage::NoTiming:
      return std::string(kNoPulseUnit);
    case RecordStage::Unknown:
      if (reading.HasOddLength) return std::string(kOddLength);
      return std::string(reading.IsDoubtful ? kNoWholeFrame : kNoLineCode);
    case RecordStage::Fragment:
      return "a single frame of " + std::to_string(reading.Code.size()) + " bits is a fragment";
    case RecordStage::Code:
      break;
  }
  return {};
}

}  // namespace

std::string_view MeaningOf(Stage stage) {
  switch (stage) {
    case Stage::Empty:
      return kNoSignal;
    case Stage::Short:
      return "the capture is too short";
    case Stage::Doubtful:
      return "its frames differ or are not whole, or there is only one: hold the key longer, or learn the "
             "code";
    case Stage::NoTiming:
      return kNoPulseUnit;
    case Stage::EndsInMark:
      return "the samples end inside a mark";
    case Stage::NoFrame:
      return "no whole frame stands between two long marks or spaces";
    case Stage::Unknown:
      return kNoLineCode;
    case Stage::Length:
      return kOddLength;
    case Stage::Raw:
      return "the lengths of a raw command";
    case Stage::Code:
      break;
  }
  return {};
}

std::string DescribeStage(Stage stage) {
  std::string text(StageName(stage));
  if (const std::string_view meaning = MeaningOf(stage); !meaning.empty()) {
    text.append(" (").append(meaning).append(")");
  }
  return text;
}

std::string WhyNoCode(const RecordReading& reading) {
  if (reading.Ended != RecordStage::Code) return WhyNoDigits(reading);
  if (reading.Code.empty()) return "there are no bits between the long marks and spaces";
  if (reading.Code.find_first_of("xy") != std::string::npos) {
    return "some half bits cannot be paired; the code " + reading.Code + " has x and y in their place";
  }
  return {};
}

}  // namespace keplo
