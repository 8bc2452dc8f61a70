#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "formats/remote.h"
#include "formats/train_writer.h"

namespace keplo {

namespace {

constexpr int kShortestSlot = 20;       // microseconds; finer ones no sender keeps
constexpr int kFinestDivision = 8;      // of a coding's unit
constexpr int kMostSlotsOfLength = 64;  // of one mark or space

void WriteDigits(const CodedSignal& signal, TrainWriter& train) {
  const Coding& code = signal.Code;
  for (const char digit : signal.Digits) {
    const Pulse& pulse = digit == '1' ? code.One : code.Zero;
    const bool spaceFirst = code.Line == LineCode::Biphase && digit == '1';
    if (spaceFirst) train.Space(pulse.Space);
    train.Mark(pulse.Mark);
    if (!spaceFirst) train.Space(pulse.Space);
  }
  train.Mark(code.Tail);
}

PulseTrain BodyLengths(const CodedSignal& signal) {
  TrainWriter train;
  WriteDigits(signal, train);
  return train.TakeMarkLast();
}

PulseTrain ShortRepeat(const CodedSignal& signal) {
  const Coding& code = signal.Code;
  return {signal.Again.ShortSync.Mark, signal.Again.ShortSync.Space,
          code.Tail > 0 ? code.Tail : code.Zero.Mark};
}

int TimeOf(const PulseTrain& train) {
  int time = 0;
  for (const int length : train) time = std::min(time + length, kLongestPulse);
  return time;
}

std::string Slots(int length, int slot, char level) {
  const auto count = std::lround(static_cast<double>(length) / slot);
  return std::string(static_cast<std::size_t>(std::clamp<long>(count, 0, kMostSlotsOfLength)), level);
}

std::string SlotsOf(const Pulse& pulse, int slot) {
  return Slots(pulse.Mark, slot, '1') + Slots(pulse.Space, slot, '0');
}

bool Keeps(int length, int slot) {
  if (length == 0) return true;
  const long count = std::lround(static_cast<double>(length) / slot);
  return count >= 1 && count <= kMostSlotsOfLength && 2 * std::abs(length - count * slot) <= slot;
}

SlotPatterns PatternsAt(const Coding& code, int slot) {
  SlotPatterns patterns;
  patterns.Slot = slot;
  patterns.Sync = SlotsOf(code.Sync, slot);
  patterns.Zero = SlotsOf(code.Zero, slot);
  patterns.One = SlotsOf(code.One, slot);
  patterns.Tail = Slots(code.Tail, slot, '1');
  if (code.Line == LineCode::Biphase) {
    patterns.One = Slots(code.One.Space, slot, '0') + Slots(code.One.Mark, slot, '1');
  }
  if (code.Line == LineCode::Width) {
    // The sync's space is that of the first digit, and what it has more.
    patterns.Sync = Slots(code.Sync.Mark, slot, '1');
    if (code.HasSync()) patterns.Sync += Slots(code.Sync.Space - code.Zero.Space, slot, '0');
    patterns.Zero = Slots(code.Zero.Space, slot, '0') + Slots(code.Zero.Mark, slot, '1');
    patterns.One = Slots(code.One.Space, slot, '0') + Slots(code.One.Mark, slot, '1');
  }
  return patterns;
}

}  // namespace

std::string_view NameOf(RepeatKind kind) {
  constexpr std::array<std::string_view, 5> kNames = {"short", "frame", "body", "none", "unknown"};
  return kNames.at(static_cast<std::size_t>(kind));
}

int UnitOf(const Coding& coding) {
  const double pair = coding.Zero.Mark + std::min(coding.Zero.Space, coding.One.Space);
  const auto fits = [&](double unit, double most) {
    const std::array lengths = {coding.Zero.Mark, coding.Zero.Space, coding.One.Mark, coding.One.Space};
    return std::lround(coding.Zero.Mark / unit) > 0 &&
           std::all_of(lengths.begin(), lengths.end(), [&](int length) {
             return std::abs(length - std::round(length / unit) * unit) < most * unit + 0.03 * length;
           });
  };
  struct Try {
    int MostParts;
    double MostOff;  // of a unit
  };
  // Three units of 400 are nearly four of 300: what fits well goes before what is larger.
  for (const Try& wish :
       {Try{4, 0.12}, Try{4, 0.2}, Try{kFinestDivision, 0.12}, Try{kFinestDivision, 0.25}}) {
    for (int parts = 2; parts <= wish.MostParts; ++parts) {
      if (fits(pair / parts, wish.MostOff)) return static_cast<int>(std::lround(pair / parts));
    }
  }
  return std::min({coding.Zero.Mark, coding.Zero.Space, coding.One.Space});
}

std::optional<SlotPatterns> PatternsOf(const Coding& coding, int longestSlot) {
  const std::array lengths = {coding.Sync.Mark, coding.Sync.Space, coding.Zero.Mark, coding.Zero.Space,
                              coding.One.Mark,  coding.One.Space,  coding.Tail};
  for (int division = 1; division <= kFinestDivision; ++division) {
    const int slot = static_cast<int>(std::lround(static_cast<double>(coding.Unit) / division));
    if (slot < kShortestSlot) break;
    if (slot > longestSlot) continue;
    if (!std::all_of(lengths.begin(), lengths.end(), [&](int length) { return Keeps(length, slot); }))
      continue;
    SlotPatterns patterns = PatternsAt(coding, slot);
    if (patterns.Zero != patterns.One) return patterns;
  }
  return std::nullopt;
}

PulseTrain FrameLengths(const CodedSignal& signal) {
  TrainWriter train;
  train.Mark(signal.Code.Sync.Mark);
  train.Space(signal.Code.Sync.Space);
  WriteDigits(signal, train);
  return train.TakeMarkLast();
}

int FrameTime(const CodedSignal& signal) { return TimeOf(FrameLengths(signal)); }

int SilenceAfter(const CodedSignal& signal) {
  const Repeat& again = signal.Again;
  return again.FromStart ? std::max(again.Gap - FrameTime(signal), 0) : again.Gap;
}

PulseTrain PressLengths(const CodedSignal& signal, int repeats) {
  constexpr int kUsualGap = 40'000;  // microseconds, where the file tells none
  const PulseTrain frame = FrameLengths(signal);
  PulseTrain press = frame;
  const Repeat& again = signal.Again;
  if (again.Kind == RepeatKind::None) return press;
  const PulseTrain repeat = again.Kind == RepeatKind::Short  ? ShortRepeat(signal)
                            : again.Kind == RepeatKind::Body ? BodyLengths(signal)
                                                             : frame;
  int silence = SilenceAfter(signal);
  for (int i = 0; i < repeats; ++i) {
    press.push_back(silence > 0 ? silence : kUsualGap);
    press.insert(press.end(), repeat.begin(), repeat.end());
    if (again.FromStart && again.Kind != RepeatKind::Body) silence = std::max(again.Gap - TimeOf(repeat), 0);
  }
  return press;
}

}  // namespace keplo
