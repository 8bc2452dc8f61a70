#include "station/press_words.h"

#include <array>

namespace keplo {

namespace {

/// In the order of the stages.
constexpr std::array<std::string_view, 9> kStageMeanings = {
    "there is no signal",
    "the capture is too short",
    "the frames contradict each other, or one alone proves too little: hold the key longer, or learn it",
    "no base time can be measured: marks and spaces have no common shortest length, or the longer is "
    "commoner",
    "the samples end inside a mark",
    "no whole frame stands between two long marks or spaces",
    "the signal fits neither pulse distance nor pulse width nor biphase",
    "the number of bits does not fit the protocol",
    "a code"};

}  // namespace

std::string DescribeStage(Stage stage) {
  const std::string_view meaning = kStageMeanings.at(static_cast<std::size_t>(stage));
  return std::string(StageName(stage)) + " (" + std::string(meaning) + ")";
}

std::string WhyNoEvent(const TickReport& tick) {
  if (tick.Reading.Ended != Stage::Code) return DescribeStage(tick.Reading.Ended);
  const DispatchReport& dispatched = tick.Dispatched;
  if (dispatched.Raised > 0) return {};
  switch (dispatched.Ended) {
    case DispatchEnd::NotStored:
      return "code G" + tick.Reading.Digits + " belongs to no learned command";
    case DispatchEnd::NoZoneAnswer:
      return dispatched.Reference + ": the zone hardware gave no answer";
    case DispatchEnd::NotReached:
      return "the press could not be handled";
    case DispatchEnd::OtherZone:
      return dispatched.Reference + " came from another zone";
    default:
      return "no activated event is bound to " + dispatched.Reference;
  }
}

}  // namespace keplo
