#include "config/raw_lookup.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "config/lookup.h"
#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_frames.h"
#include "signal/raw/raw_send.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

/// The command of a reading, raw commands aside.
std::optional<FoundCommand> CommandOf(std::string_view text, const MonitorReading& reading) {
  if (reading.Digits.empty()) return std::nullopt;
  const bool whole = reading.Ended == Stage::Doubtful;  // proved only by exactly this code being learned
  if (reading.Ended != Stage::Code && !whole) return std::nullopt;
  return FindCommand(text, reading.Digits, 0, whole ? Analysis::Second : *reading.ReadBy);
}

/// What the monitor would capture of lengths.
std::string MonitorCaptureOf(const RawLengths& lengths) {
  constexpr auto kCaptureTime =
      static_cast<std::int64_t>(kMonitorCaptureBytes * kBitsPerByte) * kNominalSampleTime;
  std::size_t count = 0;
  for (std::int64_t time = 0; count < lengths.size() && time <= kCaptureTime; ++count) time += lengths[count];
  std::string capture = CaptureOfLengths(std::span(lengths).first(count));
  capture.resize(kMonitorCaptureBytes);
  return capture;
}

/// Matches lengths, as the monitor would capture them, against an index.
RawMatch MatchOf(const RawIndex& index, const RawLengths& lengths) {
  SignalState heard;
  heard.Samples.Read(MonitorCaptureOf(lengths));
  return index.Find(HeardIn(heard));
}

/// The command of a raw signal that another one is the same as; none if it is of none.
std::optional<FoundCommand> SimilarCommand(const CfgStore& store, const RawMatch& similar) {
  return similar.IsSame ? FindCommand(store.CfgText, similar.Digits, 0, Analysis::Second) : std::nullopt;
}

/// What to tell of two keys that the monitor cannot tell apart.
constexpr std::string_view kDifferAfterCapture =
    " The signals of the two keys differ only after the first 0.22 seconds, and the monitor hears no "
    "more.";

/// Whether two signals that are alike in what the monitor captures are of two keys.
bool DifferAfterCapture(const RawSignal& one, const RawSignal& other) {
  return std::none_of(one.Forms.begin(), one.Forms.end(), [&](const RawLengths& form) {
    return std::any_of(other.Forms.begin(), other.Forms.end(), [&](const RawLengths& known) {
      return CompareRaw({form, false, 1, RawGapOf(form)}, known).Fits != RawFit::How::None;
    });
  });
}

void ReadAsRaw(std::string_view digits, std::optional<bool> toggle, MonitorReading& reading) {
  reading.Ended = Stage::Raw;
  // Discards what the second look has read.
  reading.Dittos = false;
  reading.Leader = 0;
  reading.SecondTap = 0;
  reading.SecondToggle.reset();
  reading.Digits = digits;
  reading.ReadBy = Analysis::Second;
  reading.Toggle = toggle;
}

/// From the beginning of the frame before a pause to that of the frame after it, microseconds.
double TimeBetweenFrames(const HeardLengths& heard, std::size_t pause) {
  double distance = heard.Us(pause);
  for (std::size_t i = pause; i > 0 && !heard.IsGap(i - 1); --i) distance += heard.Us(i - 1);
  return distance;
}

/// Decides whether a frame begins a second tap of a raw command, by the time since the previous one.
struct TapTimes {
  explicit TapTimes(int period) : Period(period) {}

  int Period;  // of a held key, microseconds; 0 where its press is a single frame

  /// With some tolerance, as the silences of remotes vary.
  double Longest() const { return Period == 0 ? kLongestPeriod : 1.25 * Period + 5000; }
  bool IsLate(double time) const { return time > Longest(); }
  /// Whether a held key cannot have sent the frame.
  bool IsOffPeriod(double time) const { return std::abs(time - Period) > Period / 8.0; }

 private:
  static constexpr double kLongestPeriod = 155'000;  // 138 ms is the longest that was measured
};

/// Recognises two taps of a raw command in one capture. The second must be of the same command, unless the
/// capture cuts it off, and must not come when a repeat is due.
void ReadAsRawTaps(const CfgStore& store, SignalState& signal, MonitorReading& reading) {
  constexpr double kLeastPause = 60'000;  // microseconds; longer than any within a message
  const RunSpan runs = signal.Runs.Read(signal.Samples);
  const HeardLengths heard = HeardIn(runs, signal.SampleTime);
  std::size_t pause = 0;
  for (std::size_t i = 1; i < heard.Runs.size(); i += 2) {
    if (heard.Us(i) >= kLeastPause && (pause == 0 || heard.Runs[i] > heard.Runs[pause])) pause = i;
  }
  if (pause == 0) return;
  const RawMatch first = store.Raw.Index.Find(heard.Part(0, pause));
  const RawSignal* const raw = first.Alone ? FindRawSignal(store, "G" + std::string(first.Digits)) : nullptr;
  if (raw == nullptr) return;
  const HeardLengths rest = heard.From(pause + 1);
  const RawMatch second = store.Raw.Index.Find(rest);
  const bool isSame = second.Alone && second.Digits == first.Digits;
  const TapTimes times(LongestPeriodOf(raw->Forms.front()));
  const double time = TimeBetweenFrames(heard, pause);
  // If another key is very similar, only a close match is certain about the form.
  const bool flips = isSame && first.Toggle != second.Toggle &&
                     (times.Period > 0 ? times.IsOffPeriod(time) : first.IsClose && second.IsClose);
  if (!flips && !(times.IsLate(time) && (isSame || rest.Cut))) return;
  ReadAsRaw(first.Digits, first.Toggle, reading);
  if (!isSame) return;
  reading.SecondTap = std::accumulate(runs.data(), rest.Runs.data(), 0);
  reading.SecondToggle = second.Toggle;
}

}  // namespace

MonitorReading MonitorReadingOf(const RawLengths& lengths, SignalState& heard) {
  return ReadCapture(MonitorCaptureOf(lengths), heard, Analysis::Second);
}

std::optional<FoundCommand> FindCommandDecodedFrom(std::string_view text,
                                                   const std::vector<RawLengths>& forms) {
  SignalState heard;
  for (const RawLengths& form : forms) {
    if (auto found = CommandOf(text, MonitorReadingOf(form, heard))) return found;
  }
  return std::nullopt;
}

RawMatch FindSimilarRaw(const RawIndex& index, const std::vector<RawLengths>& forms) {
  for (const RawLengths& form : forms) {
    if (const RawMatch match = MatchOf(index, form); match.IsSame) return match;
  }
  return {};
}

bool IsHeardAsRaw(const RawIndex& index, const RawSignal& signal) {
  return std::all_of(signal.Forms.begin(), signal.Forms.end(), [&](const RawLengths& form) {
    const RawMatch match = MatchOf(index, form);
    return match.Alone && match.Digits == signal.Digits;
  });
}

HeardLengths HeardIn(SignalState& signal) {
  return HeardIn(signal.Runs.Read(signal.Samples), signal.SampleTime);
}

std::optional<FoundCommand> FindRawCommand(const CfgStore& store, SignalState& signal) {
  const RawMatch match = store.Raw.Index.Find(HeardIn(signal));
  return match.Alone ? FindCommand(store.CfgText, match.Digits, 0, Analysis::Second) : std::nullopt;
}

std::string AmbiguousRawText(const CfgStore& store, SignalState& signal) {
  const RawMatch match = store.Raw.Index.Find(HeardIn(signal));
  if (!match.IsClose || match.Alone) return {};
  const auto nameOf = [&](std::string_view digits) {
    const auto found = FindCommand(store.CfgText, digits, 0, Analysis::Second);
    return found ? found->Reference() : "G" + std::string(digits);
  };
  return "fits " + nameOf(match.Digits) + " and " + nameOf(match.Other) +
         " alike, so that it is neither: press again, and if it stays so, delete one of the two";
}

void ProveByLearning(const CfgStore& store, MonitorReading& reading) {
  if (reading.Ended != Stage::Doubtful || reading.Digits.empty()) return;
  if (FindCommand(store.CfgText, reading.Digits, 0, Analysis::Second)) reading.Ended = Stage::Code;
}

void MatchRawCommands(const CfgStore& store, SignalState& signal, MonitorReading& reading) {
  if (store.Raw.Index.Empty() || CommandOf(store.CfgText, reading)) return;
  const RawMatch match = store.Raw.Index.Find(HeardIn(signal));
  if (!match.Alone) return ReadAsRawTaps(store, signal, reading);
  ReadAsRaw(match.Digits, match.Toggle, reading);
}

void ReadAsHeldRaw(const CfgStore& store, SignalState& signal, std::string_view held,
                   std::optional<bool> toggle, MonitorReading& reading) {
  if (!AreRawDigits(held) || CommandOf(store.CfgText, reading)) return;
  const RawSignal* raw = FindRawSignal(store, "G" + std::string(held));
  const std::size_t form = toggle.value_or(false) ? 1 : 0;
  if (raw == nullptr || form >= raw->Forms.size()) return;
  if (GoesOnWithRaw(HeardIn(signal), raw->Forms[form])) ReadAsRaw(held, toggle, reading);
}

std::optional<std::chrono::microseconds> LongestRawPeriod(const CfgStore& store, std::string_view digits) {
  const RawSignal* raw = FindRawSignal(store, "G" + std::string(digits));
  if (raw == nullptr) return std::nullopt;
  return std::chrono::microseconds(std::lround(TapTimes(LongestPeriodOf(raw->Forms.front())).Longest()));
}

RawSignal MakeRawSignal(std::string_view text, const std::vector<RawLesson::Form>& forms) {
  RawSignal signal;
  for (const RawLesson::Form& form : forms) signal.Forms.push_back(form.Signal.Lengths);
  signal.Digits = DrawRawDigits(forms.front().Signal.Levels, [&](std::string_view digits) {
    return FindNoCase("G" + std::string(digits), text, 1) != kNowhere;
  });
  return signal;
}

std::optional<FoundCommand> FindSimilarRawCommand(const CfgStore& store, const RawSignal& signal) {
  return SimilarCommand(store, FindSimilarRaw(store.Raw.Index, signal.Forms));
}

LearnResult CheckRawCode(const CfgStore& store, std::string_view code) {
  if (code.empty() || !AreRawDigits(code.substr(1))) return {};
  const RawSignal* signal = FindRawSignal(store, code);
  if (signal == nullptr) {
    return {Refusal::InvalidCode, std::string(code),
            "These are the digits of a raw command without lengths."};
  }
  const RawMatch similar = FindSimilarRaw(store.Raw.Index, signal->Forms);
  auto like = SimilarCommand(store, similar);
  const RawSignal* known = like ? FindRawSignal(store, "G" + std::string(similar.Digits)) : nullptr;
  if (!like) like = FindCommandDecodedFrom(store.CfgText, signal->Forms);
  const bool differ = known != nullptr && DifferAfterCapture(*signal, *known);
  if (!like) return {};
  return {Refusal::CodeExists, like->Command,
          "It is a command of the protocol " + like->Protocol + "." +
              std::string(differ ? kDifferAfterCapture : "")};
}

LearnResult AddRawCommand(CfgStore& store, std::string_view protocol, const RawSignal& signal,
                          std::string_view name) {
  store.Raw.Known.insert_or_assign(signal.Digits, signal);
  LearnResult like = CheckRawCode(store, "G" + signal.Digits);
  if (!like.Done()) return like;
  return AddCommand(store, protocol, "G" + signal.Digits, name, Analysis::Second);
}

}  // namespace keplo
