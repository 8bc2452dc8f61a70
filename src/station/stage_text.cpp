#include "station/stage_text.h"

#include <string_view>

namespace keplo {

namespace {

constexpr std::string_view kNoSignal = "there is no signal";
constexpr std::string_view kNoPulseUnit =
    "cannot find the pulse unit: marks and spaces share no shortest length, or the longer one is more "
    "frequent";
constexpr std::string_view kNoLineCode = "the signal fits neither pulse distance nor pulse width nor biphase";

constexpr std::string_view kNoWholeFrame =
    "its frames differ, or are not whole: hold the key longer, and point straight at the receiver";

std::string_view MeaningOf(Stage stage) {
  switch (stage) {
    case Stage::Empty:
      return kNoSignal;
    case Stage::Short:
      return "the capture is too short";
    case Stage::Doubtful:
      return "the repeats differ, or there was only one: hold the key longer, or learn the code";
    case Stage::NoTiming:
      return kNoPulseUnit;
    case Stage::EndsInMark:
      return "the samples end inside a mark";
    case Stage::NoFrame:
      return "no whole frame stands between two long marks or spaces";
    case Stage::Unknown:
      return kNoLineCode;
    case Stage::Length:
      return "the number of bits does not fit the protocol";
    case Stage::Raw:
      return "the lengths of a raw command";
    case Stage::Code:
      break;
  }
  return "a code";
}

std::string WhyNotDispatched(const DispatchReport& dispatched, const std::string& digits) {
  switch (dispatched.Ended) {
    case DispatchEnd::NotStored:
      return "code G" + digits + " belongs to no learned command";
    case DispatchEnd::NoZoneAnswer:
      return dispatched.Reference +
             ": nobody tells its zone; the zone hardware gave no answer, or its room has no number in "
             "ports.conf";
    case DispatchEnd::NotReached:
      return "the press could not be handled";
    case DispatchEnd::OtherZone:
      return dispatched.Reference + " came from another zone";
    case DispatchEnd::Walked:
      break;
  }
  return "no activated event is bound to " + dispatched.Reference;
}

std::string WhyNoDigits(const RecordReading& reading) {
  switch (reading.Ended) {
    case RecordStage::Empty:
      return std::string(kNoSignal);
    case RecordStage::Short:
      return "the signal is too short";
    case RecordStage::NoTiming:
      return std::string(kNoPulseUnit);
    case RecordStage::Unknown:
      return std::string(reading.IsDoubtful ? kNoWholeFrame : kNoLineCode);
    case RecordStage::Fragment:
      return "a single frame of " + std::to_string(reading.Code.size()) + " bits is a fragment";
    case RecordStage::Code:
      break;
  }
  return {};
}

}  // namespace

std::string DescribeStage(Stage stage) {
  return std::string(StageName(stage)) + " (" + std::string(MeaningOf(stage)) + ")";
}

std::string WhatToDo(Stage stage) {
  switch (stage) {
    case Stage::Empty:
      return "Point the remote at the receiver, and look with keplo ports --watch whether the line changes "
             "at all.";
    case Stage::Short:
      return "Hold the key longer; if that is all that ever comes, it is a lamp and no remote.";
    case Stage::Doubtful:
      return "Hold the key longer and move closer. A key that sends a single frame is believed once it is "
             "learned: "
             "keplo learn FILE --name SECTION&NAME.";
    case Stage::EndsInMark:
      return "Let the key go sooner; if it ends so always, calibrate with keplo calibrate.";
    case Stage::NoTiming:
    case Stage::NoFrame:
    case Stage::Unknown:
    case Stage::Length:
      return "Move closer, keep lamps and sunlight off the receiver, and record again; if other keys fail as "
             "well, "
             "calibrate with keplo calibrate.";
    case Stage::Code:
    case Stage::Raw:
      break;
  }
  return {};
}

std::string WhyNoEvent(const TickReport& tick) {
  if (!tick.Reading.HasCode()) return DescribeStage(tick.Reading.Ended);
  if (tick.Dispatched.Raised > 0) return {};
  return WhyNotDispatched(tick.Dispatched, tick.Reading.Digits);
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
