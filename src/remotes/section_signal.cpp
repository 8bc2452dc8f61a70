#include "remotes/section_signal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

#include "config/generic_protocols.h"
#include "config/transmission.h"
#include "signal/decode.h"
#include "signal/first_analysis.h"
#include "signal/send_as.h"
#include "signal/send_bits.h"

namespace keplo {

namespace {

constexpr int kUsualGap = 40'000;  // microseconds, where a file tells none
constexpr int kShortestGap = 16;   // slots that a section may have between two frames
constexpr int kCloseParts = 20;    // one of so many parts is 5 %, by which a silence may be off
constexpr std::size_t kRc5Digits = 14;
constexpr std::size_t kMostDigits = 512;  // of a code; longer signals are no key presses
constexpr Pulse kShortSync = {16, 4};     // slots, of the only short repeat that a section sends
constexpr int kLongestNumber = std::numeric_limits<std::int16_t>::max();

std::int16_t KindOf(const CodedSignal& signal) {
  switch (signal.Code.Line) {
    case LineCode::Distance:
      return kNec;
    case LineCode::Width:
      return kSony;
    case LineCode::Biphase:
      break;
  }
  // What the monitor reads as RC5 is sent as RC5.
  return signal.Digits.size() == kRc5Digits && !signal.Code.HasSync() ? kRc5 : kCustom;
}

PulseTrain LengthsOf(const std::string& slots, int slot) {
  PulseTrain lengths;
  const std::size_t end = slots.find_last_of('1') + 1;
  for (std::size_t at = std::min(slots.find('1'), end); at < end;) {
    const std::size_t next = std::min(slots.find(slots[at] == '1' ? '0' : '1', at), end);
    lengths.push_back(static_cast<int>(next - at) * slot);
    at = next;
  }
  return lengths;
}

std::string SentSlots(ProtocolParams params, std::int16_t protoKind, std::string digits) {
  bool toggle = true;  // so that the next transmission has a 0
  return SlotsToSend(std::move(digits), protoKind, params, toggle);
}

bool IsWithin(int length, int wanted, int slot) { return 2 * std::abs(length - wanted) <= slot + 1; }

/// The way to repeat that a section of this slot has; a short repeat of another shape is none of its own.
RepeatKind KindInSlots(const Repeat& again, int slot) {
  if (again.Kind != RepeatKind::Short || again.ShortSync.Mark == 0) return again.Kind;
  const bool fits = IsWithin(again.ShortSync.Mark, kShortSync.Mark * slot, slot) &&
                    IsWithin(again.ShortSync.Space, kShortSync.Space * slot, slot);
  return fits ? RepeatKind::Short : RepeatKind::None;
}

bool Agree(const std::optional<int>& carrier, const std::optional<int>& other) {
  return !carrier || !other || 100 * std::abs(*carrier - *other) <= std::max(*carrier, *other);
}

int ZerosBefore(const std::string& slots) {
  return static_cast<int>(std::min(slots.find('1'), slots.size()));
}

int ZerosAfter(const std::string& slots) {
  return static_cast<int>(slots.size() - (slots.find_last_of('1') + 1));
}

/// Slots of silence that a section has to put between two frames, which may begin and end in silence
/// themselves.
int GapSlots(const SectionSignal& section, const CodedSignal& signal, RepeatKind kind) {
  ProtocolParams params = section.Params;
  const std::string frame = SentSlots(params, section.ProtoKind, signal.Digits);
  if (kind == RepeatKind::Body) params.BITG.clear();
  const int ahead =
      kind == RepeatKind::Short ? 0 : ZerosBefore(SentSlots(params, section.ProtoKind, signal.Digits));
  const double slots = static_cast<double>(SilenceAfter(signal)) / params.SENDPLS;
  return static_cast<int>(std::lround(std::min(slots, double{kLongestNumber}))) - ahead - ZerosAfter(frame);
}

/// A run of a pattern from a place on.
int TakeRun(const std::string& pattern, char level, std::size_t& at) {
  const std::size_t begin = at;
  while (at < pattern.size() && pattern[at] == level) ++at;
  return static_cast<int>(at - begin);
}

/// A pattern of one mark and one space at most.
std::optional<Pulse> PulseOf(const std::string& pattern, bool spaceFirst) {
  Pulse pulse;
  std::size_t at = 0;
  if (spaceFirst) pulse.Space = TakeRun(pattern, '0', at);
  pulse.Mark = TakeRun(pattern, '1', at);
  if (!spaceFirst) pulse.Space = TakeRun(pattern, '0', at);
  if (at != pattern.size() || pulse.Mark == 0 || pulse.Space == 0) return std::nullopt;
  return pulse;
}

Pulse InSlots(Pulse pulse, int slot) { return {pulse.Mark * slot, pulse.Space * slot}; }

std::optional<LineCode> LineOf(const ProtocolParams& params) {
  if (params.BIT0.empty() || params.BIT1.empty()) return std::nullopt;
  const bool markFirst0 = params.BIT0.front() == '1', markFirst1 = params.BIT1.front() == '1';
  if (markFirst0 != markFirst1) return LineCode::Biphase;
  return markFirst0 ? LineCode::Distance : LineCode::Width;
}

std::optional<Coding> CodingOf(const SectionSignal& section) {
  const ProtocolParams& params = section.Params;
  const std::optional<LineCode> line = LineOf(params);
  if (!line || params.SENDPLS < 1) return std::nullopt;
  const bool spaceFirst = *line == LineCode::Width;
  const auto zero = PulseOf(params.BIT0, spaceFirst || params.BIT0.front() == '0');
  const auto one = PulseOf(params.BIT1, spaceFirst || params.BIT1.front() == '0');
  if (!zero || !one) return std::nullopt;
  const int slot = params.SENDPLS;
  Coding coding{
      .Line = *line, .Unit = slot, .Sync = {}, .Zero = InSlots(*zero, slot), .One = InSlots(*one, slot)};
  if (section.ProtoKind == kNec) coding.Tail = slot;
  if (params.BITG.find('1') == std::string::npos) return coding;
  std::size_t at = 0;
  Pulse sync{TakeRun(params.BITG, '1', at), TakeRun(params.BITG, '0', at)};
  // The space of the first digit belongs to the sync.
  if (spaceFirst) sync.Space += zero->Space;
  if (at != params.BITG.size() || sync.Mark == 0) return std::nullopt;
  coding.Sync = InSlots(sync, slot);
  return coding;
}

Repeat RepeatOf(const SectionSignal& section, const CodedSignal& signal) {
  const ProtocolParams& params = section.Params;
  Repeat again;
  if (params.REPEAT == 0 && params.GREPEAT <= 1) {
    again.Kind = RepeatKind::None;
    return again;
  }
  const bool isShort = params.REPEAT == 0;
  const bool sameSync = params.GREPEAT > 1 || !signal.Code.HasSync();
  again.Kind = isShort ? RepeatKind::Short : sameSync ? RepeatKind::Frame : RepeatKind::Body;
  if (isShort) again.ShortSync = InSlots(kShortSync, params.SENDPLS);
  const PulseTrain frame = SentFrame(section, signal.Digits), press = SentPress(section, signal.Digits);
  if (press.size() > frame.size()) again.Gap = press[frame.size()];
  if (PeriodOf(params.SENDAS) > 0 && again.Gap > 0) {
    again.Gap += FrameTime(signal);
    again.FromStart = true;
  }
  return again;
}

/// The section whose slot is a unit, or a part of it.
std::optional<SectionSignal> SectionInUnits(const CodedSignal& signal, int unit, int longestSlot) {
  Coding coding = signal.Code;
  coding.Unit = unit;
  const std::optional<SlotPatterns> patterns = PatternsOf(coding, longestSlot);
  if (!patterns || patterns->Slot > kLongestNumber || signal.Digits.size() > kMostDigits) return std::nullopt;
  SectionSignal section;
  section.ProtoKind = KindOf(signal);
  section.Params.SENDPLS = static_cast<std::int16_t>(patterns->Slot);
  section.Params.BIT0 = patterns->Zero;
  section.Params.BIT1 = patterns->One;
  // A section without a sync says so by a slot of silence.
  section.Params.BITG = patterns->Sync.empty() ? "0" : patterns->Sync;
  section.Params.BitTail = BitTailOf(section.ProtoKind);
  return SendsFrame(section, signal) ? std::optional(section) : std::nullopt;
}

/// Whether a section sends each length of a frame within 15 %.
bool SendsNearly(const SectionSignal& section, const CodedSignal& signal) {
  const PulseTrain sent = SentFrame(section, signal.Digits), wanted = FrameLengths(signal);
  return std::equal(sent.begin(), sent.end(), wanted.begin(), wanted.end(),
                    [](int length, int meant) { return 20 * std::abs(length - meant) <= 3 * meant; });
}

std::optional<SectionSignal> SectionAt(const CodedSignal& signal, int longestSlot) {
  const Coding& code = signal.Code;
  std::optional<SectionSignal> section = SectionInUnits(signal, code.Unit, longestSlot);
  // The closing mark is one slot, where a unit that divides the digits best may make it two.
  for (const int unit : {code.Zero.Mark, (code.Zero.Mark + code.Zero.Space) / 2}) {
    if (section) break;
    section = SectionInUnits(signal, unit, longestSlot);
    // A remote that sends other lengths would not be heard as what this section sends.
    if (section && !SendsNearly(*section, signal)) section.reset();
  }
  return section;
}

}  // namespace

std::optional<SectionSignal> SectionOf(const CodedSignal& signal) {
  // One slot more, which a section without a sync has before its frame.
  const int silence = SilenceAfter(signal);
  std::optional<SectionSignal> section;
  if (silence > 0) section = SectionAt(signal, silence / (kShortestGap + 1));
  return section ? section : SectionAt(signal, kLongestPulse);
}

PulseTrain SentFrame(const SectionSignal& section, const std::string& digits) {
  ProtocolParams once = section.Params;
  once.REPEAT = once.GREPEAT = 0;
  return LengthsOf(SentSlots(once, section.ProtoKind, digits), SlotOf(digits, section.ProtoKind, once));
}

PulseTrain SentPress(const SectionSignal& section, const std::string& digits) {
  return LengthsOf(SentSlots(section.Params, section.ProtoKind, digits),
                   SlotOf(digits, section.ProtoKind, section.Params));
}

bool SendsFrame(const SectionSignal& section, const CodedSignal& signal) {
  if (KindOf(signal) == kRc5 && section.ProtoKind != kRc5) return false;
  if (section.ProtoKind == kRc5 && KindOf(signal) != kRc5) return false;
  if (signal.Digits.size() > kMostDigits) return false;
  const PulseTrain sent = SentFrame(section, signal.Digits), wanted = FrameLengths(signal);
  return std::equal(sent.begin(), sent.end(), wanted.begin(), wanted.end(),
                    [&](int length, int meant) { return IsWithin(length, meant, section.Params.SENDPLS); });
}

SectionGroup SectionGroup::OfLengths(const std::optional<int>& carrier) {
  const GenericProtocol& custom = GenericProtocolAt(kCustom);
  SectionSignal section;
  section.ProtoKind = kCustom;
  section.Params.SENDPLS = custom.SENDPLS;
  section.Params.BITG = custom.Patterns.BITG;
  section.Params.BIT0 = custom.Patterns.BIT0;
  section.Params.BIT1 = custom.Patterns.BIT1;
  SectionGroup group(section);
  group.carrier_ = carrier;
  group.isFixed_ = true;
  return group;
}

SectionGroup SectionGroup::OfSendAs(SectionSignal section, const std::optional<int>& carrier) {
  SectionGroup group(std::move(section));
  group.carrier_ = carrier;
  group.isFixed_ = true;
  return group;
}

bool SectionGroup::SendsAs(const SectionSignal& section, const std::optional<int>& carrier) const {
  const ProtocolParams &own = section_.Params, &other = section.Params;
  constexpr int kSlotsApart = 33;  // one slot of so many is 3 %
  return own.SENDAS == other.SENDAS && own.BITG == other.BITG && own.BIT0 == other.BIT0 &&
         own.BIT1 == other.BIT1 && kSlotsApart * std::abs(own.SENDPLS - other.SENDPLS) <= own.SENDPLS &&
         HasCarrier(carrier);
}

bool SectionGroup::HasCarrier(const std::optional<int>& carrier) const { return Agree(carrier, carrier_); }

void SectionGroup::TakeCarrier(const std::optional<int>& carrier) {
  if (!carrier_) carrier_ = carrier;
}

bool SectionGroup::Takes(const CodedSignal& signal, const std::optional<int>& carrier) const {
  const RepeatKind kind = KindInSlots(signal.Again, section_.Params.SENDPLS);
  const bool sameKind = kind == kind_ || kind == RepeatKind::Unknown || kind_ == RepeatKind::Unknown;
  return !isFixed_ && sameKind && HasCarrier(carrier) && SendsFrame(section_, signal) &&
         HasGap(signal, kind_ == RepeatKind::Unknown ? kind : kind_);
}

void SectionGroup::Span::Take(int length) {
  Least = Count == 0 ? length : std::min(Least, length);
  Most = Count == 0 ? length : std::max(Most, length);
  Sum += length;
  ++Count;
}

int SectionGroup::Span::Farthest() const { return std::max(Mean() - Least, Most - Mean()); }

bool SectionGroup::Rhythm::IsClose(const Span& lengths) const {
  return kCloseParts * lengths.Farthest() <= std::max(Silences.Least, kCloseParts);
}

SectionGroup::Rhythm SectionGroup::RhythmWith(const CodedSignal& signal, RepeatKind kind) const {
  Rhythm rhythm = rhythm_;
  if (SilenceAfter(signal) <= 0) return rhythm;
  const int silence = GapSlots(section_, signal, kind);
  const auto frame = SentSlots(section_.Params, section_.ProtoKind, signal.Digits).size();
  rhythm.Silences.Take(silence);
  rhythm.Periods.Take(silence + static_cast<int>(frame));
  return rhythm;
}

bool SectionGroup::HasGap(const CodedSignal& signal, RepeatKind kind) const {
  if (rhythm_.IsEmpty() || SilenceAfter(signal) <= 0) return true;
  const Rhythm rhythm = RhythmWith(signal, kind);
  // Those that are too short to be sent are all lengthened to the same.
  const bool isLengthened = GapSlots(section_, signal, kind) < kShortestGap;
  if (isLengthened != (rhythm_.Silences.Least < kShortestGap)) return false;
  return isLengthened || rhythm.HasOneSilence() || rhythm.HasOnePeriod();
}

void SectionGroup::Add(const CodedSignal& signal, const std::optional<int>& carrier) {
  const RepeatKind kind = KindInSlots(signal.Again, section_.Params.SENDPLS);
  if (kind_ == RepeatKind::Unknown) kind_ = kind;
  TakeCarrier(carrier);
  rhythm_ = RhythmWith(signal, kind_);
}

int SectionGroup::LengthenedSilence(const CodedSignal& signal) const {
  const bool isShort = SilenceAfter(signal) > 0 && GapSlots(section_, signal, kind_) < kShortestGap;
  return isShort && kind_ != RepeatKind::None ? kShortestGap * section_.Params.SENDPLS : 0;
}

bool SectionGroup::LosesShortRepeat(const CodedSignal& signal) const {
  return signal.Again.Kind == RepeatKind::Short &&
         KindInSlots(signal.Again, section_.Params.SENDPLS) == RepeatKind::None;
}

SectionSignal SectionGroup::Section() const {
  SectionSignal section = section_;
  section.Params.Carrier = carrier_.value_or(kUsualCarrier);
  if (isFixed_ && !section.Params.SENDAS.empty()) return section;
  const int slots = rhythm_.IsEmpty() ? kUsualGap / section.Params.SENDPLS : rhythm_.Silences.Mean();
  const auto gap = static_cast<std::int16_t>(std::clamp(slots, kShortestGap, kLongestNumber));
  const bool hasPeriod = kind_ != RepeatKind::None && !rhythm_.IsEmpty() && !rhythm_.HasOneSilence() &&
                         rhythm_.HasOnePeriod() && rhythm_.Periods.Mean() <= kLongestNumber;
  if (hasPeriod) section.Params.SENDAS = SendEvery(rhythm_.Periods.Mean());
  switch (kind_) {
    case RepeatKind::None:
      section.Params.GREPEAT = 1;
      break;
    case RepeatKind::Short:
      section.Params.GREPEAT = gap;
      break;
    case RepeatKind::Body:
      section.Params.REPEAT = gap;
      break;
    case RepeatKind::Frame:
    case RepeatKind::Unknown:
      section.Params.REPEAT = section.Params.GREPEAT = gap;
  }
  return section;
}

RemoteKey KeyOfCode(const SectionSignal& section, const std::string& digits) {
  RemoteKey key;
  key.Carrier = section.Params.Carrier;
  if (std::optional<Coding> coding = CodingOf(section)) {
    CodedSignal signal{.Code = *coding, .Again = {}, .Digits = digits, .Toggle = std::nullopt};
    if (section.ProtoKind == kRc5) signal.Toggle = kToggleBitOffset;
    if (FrameLengths(signal) == SentFrame(section, digits)) {
      signal.Again = RepeatOf(section, signal);
      key.Coded = std::move(signal);
    }
  }
  if (!key.Coded) key.Lengths = SentPress(section, digits);
  return key;
}

}  // namespace keplo
