#include "signal/raw/raw_compare.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "signal/raw/raw_edges.h"
#include "signal/raw/raw_frames.h"
#include "signal/raw/raw_periods.h"

namespace keplo {

namespace {

/// What a length may differ by beside two samples where two hearings are close, microseconds.
constexpr float kCloseLength = 55;
/// What is added for the length itself, as a part of it: the scale is measured on the others.
constexpr float kOwnTolerance = 0.015F;
/// Mean of all differences, microseconds: what jitter of 25 makes, and beside it the raster, in samples.
constexpr float kMeanTolerance = 70, kCloseMean = 50, kRasterMean = 0.9F;
/// Remotes keep their period rather than the space after a frame, and count it out less carefully.
constexpr float kGapTolerance = 0.04F;
/// Two receivers lengthen marks by up to 120 us each.
constexpr float kMostExcess = 260;
constexpr float kSameScale = 0.035F;
/// What the edges of one key step aside in two hearings of it, mostly and once in many thousands, see
/// RawEdges.
constexpr float kOneKeyStep = 5.2F, kMostStep = 8;
/// What a length of one key is off by at the most: the edges behind it may be anywhere where its remote's
/// clock wanders.
constexpr float kOneKeyLength = 3;
/// What of two keys that differ at all a length is off by.
constexpr float kOtherKeyLength = 2.5F;
/// What keeps two commands apart when they are heard: two edges that are 120 us aside; square microseconds.
constexpr float kTellingSquares = 2 * 120 * 120;

/// How the heard lengths relate to the stored ones.
struct RawMeasure {
  float Scale = 1;
  float Excess = 0;  // of marks, microseconds
};

/// What the lengths that were compared differ by.
struct RawDifference {
  float Squares = 0, Most = 0;  // Most less what its length allows for
  std::size_t Lengths = 0;
  RawEdges Edges = {};

  void Add(float length, float off, float allowed) {
    Squares += off * off;
    Most = std::max(Most, std::abs(off) - allowed);
    ++Lengths;
    Edges.Add(length, off);
  }
  void Add(const RawDifference& other) {
    Squares += other.Squares;
    Most = std::max(Most, other.Most);
    Lengths += other.Lengths;
    Edges.Add(other.Edges);
  }
  bool IsWithin(float mean, float raster) const {
    const float squared = mean * mean + kRasterMean * kRasterMean * raster * raster;
    return Squares <= squared * static_cast<float>(Lengths);
  }
};

/// Lengths of the two that stand beside each other, a mark first.
struct RawPair {
  HeardLengths Heard;
  std::span<const int> Stored;  // microseconds

  std::size_t Size() const { return std::min(Heard.Runs.size(), Stored.size()); }
  float Sample() const { return static_cast<float>(Heard.SampleTime); }
  float HeardUs(std::size_t i) const { return static_cast<float>(Heard.Runs[i]) * Sample(); }
  float StoredUs(std::size_t i) const { return static_cast<float>(Stored[i]); }
  bool IsGap(std::size_t i) const { return i % 2 == 1 && Stored[i] >= Heard.Gap; }
  float Tolerance() const { return RawTolerance(Heard.SampleTime); }
};

/// Most signals end here after a few lengths.
bool IsNear(const RawPair& pair, std::size_t space) {
  return IsNearPeriod(pair.HeardUs(space) + pair.HeardUs(space + 1),
                      pair.StoredUs(space) + pair.StoredUs(space + 1), pair.Heard.SampleTime);
}

/// The periods, which excess leaves as they are, give the scale; what is left of the marks is the excess.
std::optional<RawMeasure> Measure(const RawPair& pair) {
  float heard = 0;
  float stored = 0;
  float heardMarks = 0;
  float storedMarks = 0;
  int periods = 0;
  for (std::size_t i = 1; i + 1 < pair.Size(); i += 2) {
    if (!IsNear(pair, i)) return std::nullopt;
    if (pair.IsGap(i)) continue;
    heard += pair.HeardUs(i) + pair.HeardUs(i + 1);
    stored += pair.StoredUs(i) + pair.StoredUs(i + 1);
    heardMarks += pair.HeardUs(i + 1);
    storedMarks += pair.StoredUs(i + 1);
    ++periods;
  }
  if (periods == 0) return std::nullopt;
  const RawMeasure measure{heard / stored,
                           (heardMarks - heard / stored * storedMarks) / static_cast<float>(periods)};
  if (std::abs(measure.Scale - 1) > kMostRawScale || std::abs(measure.Excess) > kMostExcess)
    return std::nullopt;
  return measure;
}

/// @param wholeFirst whether the first mark was heard from its beginning
/// @return nothing if the lengths are not the same
std::optional<RawDifference> Differ(const RawPair& pair, const RawMeasure& measure, bool wholeFirst) {
  RawDifference differ;
  if (wholeFirst) differ.Edges.BeginFrame();
  for (std::size_t i = 0; i < pair.Size(); ++i) {
    const float stored = measure.Scale * pair.StoredUs(i);
    const float off = pair.HeardUs(i) - stored - (i % 2 == 0 ? measure.Excess : -measure.Excess);
    const bool gap = pair.IsGap(i);
    const float allowed = (gap ? kGapTolerance : kOwnTolerance) * stored;
    if (i == 0 && !wholeFirst) {
      if (off > pair.Tolerance() + allowed) return std::nullopt;
      differ.Edges.BeginFrame();
      continue;
    }
    if (std::abs(off) > pair.Tolerance() + allowed) return std::nullopt;
    if (gap) {
      differ.Edges.BeginFrame();
    } else {
      differ.Add(stored, off, allowed);
    }
  }
  if (!differ.IsWithin(kMeanTolerance, pair.Sample())) return std::nullopt;
  return differ;
}

/// Whether a press may end before a stored length: where a frame ends.
bool EndsFrameAt(const RawPair& pair, std::size_t i) { return i >= pair.Stored.size() || pair.IsGap(i); }

bool IsDitto(const HeardLengths& frame) {
  return frame.Runs.size() <= kLongestDitto &&
         std::none_of(frame.Runs.begin(), frame.Runs.end(),
                      [&](int run) { return run * frame.SampleTime > 2 * kRawGap; });
}

/// How many heard lengths a part of the stored ones covers; 0 if they are not the same.
/// @param differ takes what these differ by
std::size_t CoveredFrom(const HeardLengths& part, std::span<const int> stored, const RawMeasure& measure,
                        RawDifference& differ) {
  const RawPair pair{part, stored};
  const bool ends = part.Runs.size() <= stored.size();
  if (ends && !part.Cut && !EndsFrameAt(pair, part.Runs.size())) return 0;
  const auto covered = Differ(pair, measure, true);
  if (!covered) return 0;
  differ.Add(*covered);
  return pair.Size();
}

/// Whether what was heard after the stored lengths repeats frames of them. All of it counts, or a signal of
/// fewer frames would seem to be nearer than one of more.
bool GoesOn(HeardLengths rest, std::span<const int> stored, const RawMeasure& measure,
            RawDifference& differ) {
  while (!rest.Runs.empty()) {
    std::size_t covered = CoveredFrom(rest, stored, measure, differ);
    for (std::size_t i = 1; covered == 0 && i + 1 < stored.size(); i += 2) {
      if (stored[i] >= rest.Gap) covered = CoveredFrom(rest, stored.subspan(i + 1), measure, differ);
    }
    const HeardLengths frame = rest.Part(0, FirstFrameOf(rest));
    if (covered == 0 && IsDitto(frame)) covered = frame.Runs.size();
    if (covered == 0) return false;
    if (covered == rest.Runs.size()) return true;
    if (!rest.IsGap(covered)) return false;
    rest = rest.From(covered + 1);
  }
  return true;
}

RawFit FitOf(const RawMeasure& measure, const RawDifference& differ, double sampleTime) {
  const bool exact = std::abs(measure.Scale - 1) <= kSameScale;
  const auto sample = static_cast<float>(sampleTime);
  const float step = differ.Edges.Step(RawEdges::Pace::OfAll);
  const bool close = differ.Most <= kCloseLength + 2 * sample && differ.IsWithin(kCloseMean, sample);
  const float squares = differ.Edges.Squares();
  return {exact ? RawFit::How::Exact : RawFit::How::Scaled,
          {squares, differ.Squares},
          close,
          close && (step <= kOneKeyStep || squares < kTellingSquares ||
                    differ.Edges.Furthest() <= kOtherKeyLength),
          step <= kMostStep || differ.Edges.Step(RawEdges::Pace::OfEachFrame) <= kMostStep ||
              differ.Edges.Furthest() <= kOneKeyLength};
}

/// Whether nothing is missing that the capture would hold.
bool MayEndWith(const HeardLengths& heard, const RawFrames& frames, std::size_t step) {
  const double time = heard.SampleTime * std::accumulate(heard.Runs.begin(), heard.Runs.end(), 0.0);
  return heard.Cut || frames.MayEndWith(step, time);
}

/// Compares place by place, as far as the shorter of the two goes.
/// @param stored all lengths, of which the pair's are the end
RawFit CompareInPlace(const RawPair& pair, std::span<const int> stored) {
  const HeardLengths& heard = pair.Heard;
  const std::size_t size = pair.Size();
  const std::optional<RawMeasure> measure = Measure(pair);
  if (!measure) return {};
  std::optional<RawDifference> differ = Differ(pair, *measure, false);
  if (!differ) return {};
  if (size < heard.Runs.size()) {
    if (!heard.IsGap(size) || !GoesOn(heard.From(size + 1), stored, *measure, *differ)) return {};
  } else if (size < pair.Stored.size() && !heard.Cut) {
    if (!pair.IsGap(size)) return {};
    const RawFrames frames(stored, heard.Gap);
    if (!MayEndWith(heard, frames, frames.StepUpTo(stored.size() - pair.Stored.size() + size))) return {};
  }
  return FitOf(*measure, *differ, heard.SampleTime);
}

/// The way of a press through the frames of a stored one, some of which a held key repeats.
struct RawWay {
  const RawFrames& Frames;
  const RawMeasure& Measure;
  RawDifference Differ;
  std::size_t Step;
  std::size_t Furthest = Step;
  bool Repeats = Frames.TellsOfRepeat(Step);

  /// @param pause ahead of the frame, microseconds
  /// @return false if no stored frame that may follow is as this one
  bool Take(const HeardLengths& frame, double pause) {
    for (const RawFrames::Frame& known : Frames.All()) {
      if (!Frames.MayFollow(Step, known.Step)) continue;
      if (known.Step == Step + 1 && !IsAsLong(pause, Frames.GapAhead(known.Step), frame)) continue;
      const RawPair pair{frame, Frames.Lengths(known)};
      if (frame.Cut ? frame.Runs.size() > pair.Stored.size() : frame.Runs.size() != pair.Stored.size())
        continue;
      const auto differ = keplo::Differ(pair, Measure, true);
      if (!differ) continue;
      Differ.Add(*differ);
      Step = known.Step;
      Furthest = std::max(Furthest, Step);
      Repeats = Repeats || Frames.TellsOfRepeat(Step);
      return true;
    }
    return IsDitto(frame);
  }
  bool IsAsLong(double pause, int stored, const HeardLengths& frame) const {
    const double wanted = Measure.Scale * static_cast<float>(stored);
    return std::abs(pause - wanted) <=
           RawPair{frame, {}}.Tolerance() + std::abs(Measure.Excess) + kGapTolerance * wanted;
  }
};

/// Follows a press from a length on, in front of which its way has come.
/// @return false where a frame stands that may not
bool Follow(const HeardLengths& heard, std::size_t taken, RawWay& way) {
  while (taken < heard.Runs.size()) {
    const HeardLengths rest = heard.From(taken + 1);
    const std::size_t size = FirstFrameOf(rest);
    HeardLengths frame = rest.Part(0, size);
    frame.Cut = rest.Cut && size == rest.Runs.size();
    if (!way.Take(frame, heard.Us(taken))) return false;
    taken += 1 + size;
  }
  return true;
}

/// Compares frame by frame where both have several, but for the lengths in place.
RawFit CompareByFrames(const RawPair& pair, std::span<const int> stored) {
  const HeardLengths& heard = pair.Heard;
  const std::size_t taken = LengthsInPlace(heard);
  if (taken >= pair.Size() || !pair.IsGap(taken)) return {};
  const RawPair head{heard.Part(0, taken), pair.Stored};
  const std::optional<RawMeasure> measure = Measure(head);
  if (!measure) return {};
  const std::optional<RawDifference> differ = Differ(head, *measure, false);
  if (!differ) return {};
  const RawFrames frames(stored, heard.Gap);
  RawWay way{frames, *measure, *differ, frames.StepUpTo(stored.size() - pair.Stored.size() + taken)};
  if (!Follow(heard, taken, way) || way.Furthest == 0 || !MayEndWith(heard, frames, way.Furthest)) return {};
  return FitOf(*measure, way.Differ, heard.SampleTime);
}

/// Whether a signal begins with a stored frame, of which the capture may have missed some lengths, and goes
/// on with the press.
bool GoesOnFrom(const HeardLengths& heard, const RawFrames& frames, const RawFrames::Frame& known,
                std::size_t lost) {
  const std::size_t first = FirstFrameOf(heard);
  const RawPair head{heard.Part(0, first), frames.Lengths(known).subspan(lost)};
  if (first != head.Stored.size()) return false;
  const std::optional<RawMeasure> measure = Measure(head);
  if (!measure) return false;
  const std::optional<RawDifference> differ = Differ(head, *measure, false);
  if (!differ) return false;
  RawWay way{frames, *measure, *differ, known.Step};
  return Follow(heard, first, way) && way.Repeats;
}

}  // namespace

RawFit CompareRaw(const HeardLengths& heard, std::span<const int> stored, std::size_t lost) {
  if (lost >= stored.size()) return {};
  const RawPair pair{heard, stored.subspan(lost)};
  if (pair.Size() < kFewestRawLengths) return {};
  const RawFit fit = CompareInPlace(pair, stored);
  return fit.Fits != RawFit::How::None ? fit : CompareByFrames(pair, stored);
}

bool GoesOnWithRaw(const HeardLengths& heard, std::span<const int> stored) {
  constexpr std::size_t kFewestLengths = 9;  // of a frame whose key is known
  constexpr std::size_t kMostLost = 4;       // before the line was looked at
  const RawFrames frames(stored, heard.Gap);
  for (const RawFrames::Frame& known : frames.All()) {
    for (std::size_t lost = 0; lost <= kMostLost && lost + kFewestLengths <= known.End - known.Begin;
         lost += 2) {
      if (GoesOnFrom(heard, frames, known, lost)) return true;
    }
  }
  return false;
}

}  // namespace keplo
