#include "station/press_reasons.h"

#include "signal/stage_text.h"
#include "typed_command.h"

namespace keplo {

namespace {

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

}  // namespace

std::string AdviceFor(Stage stage, std::string_view appPath) {
  const auto typed = [&](std::string_view words) { return TypedCommand(words, appPath); };
  switch (stage) {
    case Stage::Empty:
      return "Point the remote at the receiver, and look whether the line changes at all: " +
             typed("ports --watch");
    case Stage::Short:
      return "Hold the key longer; if that is all that ever comes, it is a lamp and no remote.";
    case Stage::Doubtful:
      return "Hold the key longer and move closer. A key that sends a single frame is believed once it is "
             "learned: " +
             typed("learn FILE --name 'SECTION&NAME'");
    case Stage::EndsInMark:
      return "Let the key go sooner; if it ends so always, calibrate: " + typed("calibrate");
    case Stage::NoTiming:
    case Stage::NoFrame:
    case Stage::Unknown:
    case Stage::Length:
      return "Move closer, keep lamps and sunlight off the receiver, and record again; if other keys fail as "
             "well, calibrate: " +
             typed("calibrate");
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

}  // namespace keplo
