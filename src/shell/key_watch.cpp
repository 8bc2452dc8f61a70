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

/// No frame slips by between two looks that are no further apart, as those before and after a tick without an
/// event are.
constexpr microseconds kBlink = 20ms;

/// The same behind the leader of NEC, where 124 ms is the longest that was measured.
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

void Keplo::LookAgain() {
  const microseconds now = LineTime();
  if (std::exchange(watch_.LookedAway, false)) watch_.WatchedFrom = 0ms;
  if (now - watch_.LookedAt > kBlink) {
    watch_.PausedUntil = now;
    // A line that knows when signals were on air has missed none.
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

/// Whether a capture without digits says that the key is still held; it reads as the code of the key then.
bool Keplo::RepeatsHeldKey(MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second || !Key().FollowsOn(watch_.OnAir)) return false;
  const KeySign& sign = Key().Pressed()->Sign;
  SignalState& signal = mod_.Signal;
  if (sign.ProtoKind != kNec || !AreDittos(signal.Runs.Read(signal.Samples), sign.BaseT, sign.Leader))
    return false;
  Key().HearDitto(watch_.OnAir);
  reading.Ended = Stage::Code;
  reading.ReadBy = sign.ReadBy;
  reading.Digits = sign.Digits;
  return true;
}

bool Keplo::HeardHeldSigns() {
  SignalState& signal = mod_.Signal;
  return AreDittos(signal.Runs.Read(signal.Samples), signal.Measured.BaseT, 0);
}

/// A capture of a held key with two alternating frames may hold a single one, which is no code then.
void Keplo::CompleteTurn(MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second || reading.Digits.empty() || !Key().FollowsOn(watch_.OnAir))
    return;
  const std::string_view both = Key().Pressed()->Sign.Digits;
  const std::size_t half = both.size() / 2;
  if (both.size() % 2 != 0 || reading.Digits.size() != half) return;
  if (both.substr(0, half) != reading.Digits && both.substr(half) != reading.Digits) return;
  reading.Ended = Stage::Code;
  reading.ReadBy = Analysis::Second;
  reading.Digits = both;
}

/// A capture of a held key whose command is raw may begin with any frame of its press.
void Keplo::TakeHeldRawKey(MonitorReading& reading) {
  if (reading.Ended == Stage::Raw || !Key().FollowsOn(watch_.OnAir)) return;
  const KeySign& sign = Key().Pressed()->Sign;
  TakeHeldRaw(mod_.Store, mod_.Signal, sign.Digits, sign.Toggle, reading);
}

/// Which piece of a capture begins a second tap of its key; 0 if none does.
std::size_t Keplo::SecondTapIn(std::span<const TimedPiece> pieces, const MonitorReading& reading) {
  if (mod_.Settings.Analysis != Analysis::Second) return 0;
  if (reading.SecondTap > 0) {
    constexpr int kNear = 10;  // samples; glitches are told apart from the signal in the one place only
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
  const bool goesOn = Key().FollowsOn(watch_.OnAir) && Key().Pressed()->Sign.Digits == reading.Digits;
  const microseconds heard = goesOn ? Key().Pressed()->Sign.Period : 0us;
  const auto samples = [&](microseconds time) {
    return static_cast<double>(time.count()) / signal.SampleTime;
  };
  return FindSecondTap(pieces, {samples(longest), reading.Dittos, static_cast<int>(samples(heard))});
}

std::vector<MonitoredTap> Keplo::TapsOf(const MonitorReading& reading) {
  SignalState& signal = mod_.Signal;
  const std::vector<TimedPiece> pieces = PiecesIn(signal.Runs.Read(signal.Samples));
  const std::size_t second = SecondTapIn(pieces, reading);
  const auto at = [&](int samples) { return TimeOfSamples(samples, signal.SampleTime); };
  const auto tapOf = [&](std::span<const TimedPiece> tap) {
    MonitoredTap told{watch_.OnAir, at(FramePeriod(tap)), reading.Toggle};
    if (!tap.empty()) told.OnAir.LastFrame = at(tap.back().Begin - tap.front().Begin);
    return told;
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
  const KeySign sign = {reading.Digits,
                        reading.ReadBy.value_or(Analysis::First),
                        mod_.Signal.Measured.ProtoKind,
                        mod_.Signal.Measured.BaseT,
                        tap.Toggle,
                        reading.Dittos,
                        tap.Period,
                        reading.Leader};
  watch_.OnAir = tap.OnAir;
  if (const auto ended = Key().Hear(sign, watch_.OnAir)) TellReleased({*ended});
}

/// Whether a capture goes on with a press and was on air during the pause after its last event, in which no
/// tick can raise one. Its event would come later and later, and long after the key was let go. The first
/// analysis raises one for each capture that a line without memory would have met too.
bool Keplo::WasHeldInThePause() {
  if (!watch_.Kept || !Key().Pressed() || Key().Pressed()->Captures == 1) return false;
  return mod_.Settings.Analysis == Analysis::Second || watch_.OnAir.End < watch_.PausedUntil;
}

std::optional<microseconds> Keplo::MayHold() const {
  const auto letGo = keys_.FirstLetGo(watch_.WatchedFrom);
  if (!letGo) return std::nullopt;
  return watch_.LookedAway ? microseconds(0) : std::max<microseconds>(*letGo - LineTime(), 0ms);
}

void Keplo::LetGoIfOver() {
  if (keys_.AnyPressed()) TellReleased(keys_.LetGo(LineTime(), watch_.WatchedFrom));
}

void Keplo::TellReleased(const std::vector<KeyPress>& ended) {
  for (const KeyPress& press : ended) TellKey(KeyChange::Released, press);
}

}  // namespace keplo
