#include "remotes/heard_code.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "config/generic_protocols.h"
#include "config/raw_lookup.h"
#include "signal/raw/raw_send.h"
#include "signal/raw/raw_signal.h"
#include "signal/rc6.h"
#include "signal/recorded_press.h"
#include "signal/sample_bits.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

constexpr int kPeriod = 107'000;                   // microseconds, of RC6
constexpr int kShortestGapSlots = 16;              // as a section has them
constexpr std::size_t kMostLengthsOfTurns = 1024;  // of a press; longer ones are of no two short frames
constexpr int kLeaderUnits = 8;                    // of RC6, mark and space

/// The first frame of a press and the silence after it.
struct FirstFrame {
  PulseTrain Lengths;
  int Gap = 0;  // 0 if nothing follows
};

FirstFrame FirstFrameIn(const PulseTrain& press) {
  for (std::size_t i = 1; i < press.size(); i += 2) {
    if (press[i] >= kRawGap)
      return {{press.begin(), press.begin() + static_cast<std::ptrdiff_t>(i)}, press[i]};
  }
  return {press, 0};
}

bool MayBeRc6(const FirstFrame& first) {
  const PulseTrain& lengths = first.Lengths;
  return lengths.size() > kFewestRawLengths && lengths[0] > 2 * lengths[1] && lengths[0] < 5 * lengths[1];
}

bool MayBeTurns(const PulseTrain& press, const FirstFrame& first) {
  return press.size() > 2 * first.Lengths.size() && press.size() <= kMostLengthsOfTurns;
}

/// What the record flow reads of a press.
RecordReading Hear(const PulseTrain& press) {
  SignalState state;
  return ReadRecordedCapture(CaptureOfLengths(press), state, Analysis::Second);
}

/// A press with enough frames for a code of two that alternate to be sure.
PulseTrain Held(PulseTrain press, int gap) {
  constexpr int kRepeats = 3;
  if (press.size() % 2 != 0) press.push_back(gap);
  const auto gaps = std::count_if(press.begin(), press.end(), [](int length) { return length >= kRawGap; });
  if (gaps >= kRepeats) return press;
  PulseTrain held;
  for (int i = 0; i < kRepeats; ++i) held.insert(held.end(), press.begin(), press.end());
  return held;
}

int TimeOf(const PulseTrain& frame) {
  int time = 0;
  for (const int length : frame) time = std::min(time + length, kLongestPulse);
  return time;
}

void SetGap(SectionSignal& section, int gap) {
  const double slots = static_cast<double>(gap) / section.Params.SENDPLS;
  section.Params.REPEAT = section.Params.GREPEAT = static_cast<std::int16_t>(
      std::clamp<double>(std::round(slots), kShortestGapSlots, std::numeric_limits<std::int16_t>::max()));
}

std::optional<SectionSignal> Rc6Section(const FirstFrame& first) {
  SectionSignal section;
  section.ProtoKind = kCustom;
  section.Params.SENDPLS = static_cast<std::int16_t>(
      std::lround(static_cast<double>(first.Lengths[0] + first.Lengths[1]) / kLeaderUnits));
  section.Params.BITG = kRc6Leader;
  section.Params.BIT0 = "01";
  section.Params.BIT1 = "10";
  SetGap(section, first.Gap > 0 ? first.Gap : kPeriod - TimeOf(first.Lengths));
  return section;
}

/// A section that sends the first of two frames.
std::optional<SectionSignal> TurnsSection(const FirstFrame& first, std::string_view code) {
  const std::optional<CodedSignal> frame = ReadDigits(Held(first.Lengths, first.Gap));
  if (!frame || 2 * frame->Digits.size() != code.size()) return std::nullopt;
  const bool isHalf = code.starts_with(frame->Digits) || code.ends_with(frame->Digits);
  std::optional<SectionSignal> section = isHalf ? SectionOf(*frame) : std::nullopt;
  if (section) SetGap(*section, first.Gap);
  return section;
}

}  // namespace

std::optional<HeardCode> HeardCodeOf(const PulseTrain& lengths) {
  const FirstFrame first = FirstFrameIn(lengths);
  if (!MayBeRc6(first) && !MayBeTurns(lengths, first)) return std::nullopt;
  const RecordReading heard =
      Hear(Held(lengths, first.Gap > 0 ? first.Gap : kPeriod - TimeOf(first.Lengths)));
  if (heard.Ended != RecordStage::Code || heard.SendAs.empty()) return std::nullopt;
  std::optional<SectionSignal> section =
      heard.SendAs == kSendAsRc6 ? Rc6Section(first) : TurnsSection(first, heard.Code);
  if (!section) return std::nullopt;
  // Whichever frame of a turn goes first, the keys of a remote stay in one section.
  section->Params.SENDAS = WayOfAll(heard.SendAs);
  if (Hear(SentPress(*section, heard.Code)).Code != heard.Code) return std::nullopt;
  return HeardCode{*std::move(section), heard.Code, heard.SendAs};
}

std::optional<std::int16_t> KindHeard(const SectionSignal& section, const std::string& digits) {
  SignalState state;
  const MonitorReading heard = MonitorReadingOf(SentPress(section, digits), state);
  const bool isRead = (heard.HasCode() || heard.Ended == Stage::Doubtful) && heard.Digits == digits;
  return isRead ? std::optional(state.Measured.ProtoKind) : std::nullopt;
}

}  // namespace keplo
