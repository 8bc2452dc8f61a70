#include <algorithm>
#include <bit>
#include <utility>

#include "config/raw_lookup.h"
#include "shell/keplo.h"
#include "signal/capture_trim.h"
#include "signal/held_signs.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

using std::chrono::microseconds;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""us;

/// Checks of the line that are not further apart, like those around a tick without an event, miss no frame.
constexpr microseconds kLongestBlink = 20ms;

/// Replaces kLongestPeriod after a NEC leader, where 124 ms is the longest that was measured.
constexpr microseconds kLongestNecPeriod = 137ms;
constexpr microseconds kNecLeader = 7500us;

microseconds TimeOfSamples(double samples, double sampleTime) {
  return microseconds(static_cast<std::int64_t>(samples * sampleTime));
}

/// From the beginning of a capture to its last mark.
microseconds LengthOfSignal(const std::string& capture, double sampleTime) {
  const std::size_t bytes = SignalBytes(capture);
  if (bytes == 0) return 0ms;
  const int silent = std::countr_zero(static_cast<unsigned char>(capture[bytes - 1]));
  return TimeOfSamples(static_cast<double>(bytes) * 8 - silent, sampleTime);
}

}  // namespace

void Keplo::NoteCheck() {
  const microseconds now = LineTime();
  if (std::exchange(watch_.LookedAway, false)) watch_.WatchedFrom = 0ms;
  if (now - watch_.LookedAt > kLongestBlink) {
    watch_.PausedUntil = now;
    // A line that knows when signals were on air has not missed any.
    if (line_.Origin() == nullptr) watch_.WatchedFrom = now;
  }
  watch_.LookedAt = now;
}

void Keplo::TimeCapture(microseconds begin) {
  const std::string& capture = mod_.Signal.RawCapture;
  const microseconds signal = LengthOfSignal(capture, mod_.Signal.SampleTime);
  watch_.LookedAt = LineTime();
  watch_.LookedAway = true;
  if (const SignalOrigin* const origin = line_.Origin()) {
    const bool mostInPause = watch_.PausedUntil - origin->Begin > origin->End - watch_.PausedUntil;
    watch_.Kept = origin->Place == 0 && mostInPause;
    watch_.OnAir = {origin->Begin, origin->End, 0ms, 0ms, origin->Place, origin->Zone};
    return;
  }
  watch_.Kept = false;
  watch_.OnAir = {begin, std::min(begin + signal, watch_.LookedAt),
                  TimeOfSamples(static_cast<double>(capture.size()) * 8, mod_.Signal.SampleTime) - signal,
                  watch_.WatchedFrom};
}

/// Recognises a capture of dittos, which mean that the key is still held, and reads it as the code of that
/// key.
bool Keplo::ReadAsDitto(MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second || !Key().IsContinuedAt(watch_.OnAir)) return false;
  const KeySignature& key = Key().Press()->Signature;
  SignalState& signal = mod_.Signal;
  if (key.ProtoKind != kNec ||
      !AreDittos(signal.Runs.Read(signal.Samples), key.BaseT, key.Leader, signal.SampleTime))
    return false;
  Key().HearDitto(watch_.OnAir);
  reading.Ended = Stage::Code;
  reading.ReadBy = key.ReadBy;
  reading.Digits = key.Digits;
  return true;
}

bool Keplo::HasOnlyDittos() {
  SignalState& signal = mod_.Signal;
  return AreDittos(signal.Runs.Read(signal.Samples), signal.Measured.BaseT, 0, signal.SampleTime);
}

/// The code of a key with two alternating frames consists of both. A capture during a hold may have only one
/// of them; it then gets the whole code.
void Keplo::ReadAsHeldPair(MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second || reading.Digits.empty() ||
      !Key().IsContinuedAt(watch_.OnAir))
    return;
  const std::string_view both = Key().Press()->Signature.Digits;
  const std::size_t half = both.size() / 2;
  if (both.size() % 2 != 0 || reading.Digits.size() != half) return;
  if (both.substr(0, half) != reading.Digits && both.substr(half) != reading.Digits) return;
  reading.Ended = Stage::Code;
  reading.ReadBy = Analysis::Second;
  reading.Digits = both;
}

/// A capture of a held raw key may begin with any frame of its press.
void Keplo::ReadAsHeldRawKey(MonitorReading& reading) {
  if (reading.Ended == Stage::Raw || !Key().IsContinuedAt(watch_.OnAir)) return;
  const KeySignature& key = Key().Press()->Signature;
  ReadAsHeldRaw(mod_.Store, mod_.Signal, key.Digits, key.Toggle, reading);
}

/// Index of the piece of a capture that begins a second tap of its key; 0 if there is none.
std::size_t Keplo::SecondTapIn(std::span<const TimedPiece> pieces, const MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second) return 0;
  if (reading.SecondTap > 0) {
    constexpr int kNear = 10;  // samples; the pieces still contain glitches
    const auto begins = [&](const TimedPiece& piece) { return piece.Begin + kNear >= reading.SecondTap; };
    const auto second = std::find_if(pieces.begin(), pieces.end(), begins);
    return second == pieces.end() ? 0 : static_cast<std::size_t>(second - pieces.begin());
  }
  if (reading.Toggle) return 0;
  const SignalState& signal = mod_.Signal;
  microseconds longest = kLongestPeriod;
  if (reading.Ended == Stage::Raw) {
    longest = LongestRawPeriod(mod_.Store, reading.Digits).value_or(longest);
  } else if (TimeOfSamples(reading.Leader, signal.SampleTime) >= kNecLeader) {
    longest = kLongestNecPeriod;
  }
  const bool goesOn = Key().IsContinuedAt(watch_.OnAir) && Key().Press()->Signature.Digits == reading.Digits;
  const microseconds heard = goesOn ? Key().Press()->Signature.Period : 0us;
  const auto samples = [&](microseconds time) {
    return static_cast<double>(time.count()) / signal.SampleTime;
  };
  const UsualRepeat usual{samples(longest), reading.Dittos, static_cast<int>(samples(heard))};
  return FindSecondTap(pieces, usual, signal.SampleTime);
}

std::vector<MonitoredTap> Keplo::TapsOf(const MonitorReading& reading) {
  SignalState& signal = mod_.Signal;
  const std::vector<TimedPiece> pieces = PiecesIn(signal.Runs.Read(signal.Samples), signal.SampleTime);
  const std::size_t second = SecondTapIn(pieces, reading);
  const auto at = [&](int samples) { return TimeOfSamples(samples, signal.SampleTime); };
  const auto tapOf = [&](std::span<const TimedPiece> tap) {
    MonitoredTap result{watch_.OnAir, at(FramePeriod(tap)), reading.Toggle};
    if (!tap.empty()) result.OnAir.LastFrame = at(tap.back().Begin - tap.front().Begin);
    return result;
  };
  if (second == 0) return {tapOf(pieces)};
  const std::span<const TimedPiece> all = pieces;
  MonitoredTap first = tapOf(all.first(second)), next = tapOf(all.subspan(second));
  const TimedPiece& last = pieces[second - 1];
  first.OnAir.End = watch_.OnAir.Begin + at(last.End());
  next.OnAir.Begin = watch_.OnAir.Begin + at(pieces[second].Begin);
  first.OnAir.SilenceAfter = next.OnAir.Begin - first.OnAir.End;
  first.IsOver = true;
  if (reading.SecondTap == 0 && !pieces[second].Whole) return {first};
  if (reading.SecondToggle) next.Toggle = reading.SecondToggle;
  return {first, next};
}

void Keplo::HearCode(const MonitorReading& reading, const MonitoredTap& tap) {
  const KeySignature signature = {reading.Digits,
                                  reading.ReadBy.value_or(Analysis::First),
                                  mod_.Signal.Measured.ProtoKind,
                                  mod_.Signal.Measured.BaseT,
                                  tap.Toggle,
                                  reading.Dittos,
                                  tap.Period,
                                  reading.Leader};
  watch_.OnAir = tap.OnAir;
  if (const auto ended = Key().Hear(signature, watch_.OnAir)) ReportReleased({*ended});
}

/// Whether a capture continues a press and was on air during the pause after the last event. An event for it
/// would be late, and later with every repeat. With the first analysis it only counts if a line without a
/// buffer would have missed it.
bool Keplo::WasHeldDuringPause() {
  if (!watch_.Kept || !Key().Press() || Key().Press()->Captures == 1) return false;
  return mod_.Settings.Analysis == Analysis::Second || watch_.OnAir.End < watch_.PausedUntil;
}

std::optional<microseconds> Keplo::TimeToRelease() const {
  const auto release = keys_.FirstReleaseTime(watch_.WatchedFrom);
  if (!release) return std::nullopt;
  return watch_.LookedAway ? microseconds(0) : std::max<microseconds>(*release - LineTime(), 0ms);
}

void Keplo::ReleaseDueKeys() {
  if (keys_.AnyPressed()) ReportReleased(keys_.ReleaseDue(LineTime(), watch_.WatchedFrom));
}

void Keplo::ReportReleased(const std::vector<KeyPress>& ended) {
  for (const KeyPress& press : ended) ReportKey(KeyChange::Released, press);
}

}  // namespace keplo
