#include "signal/raw/raw_compare.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace keplo {

namespace {

/// What a length may differ by, microseconds: three samples. A sample more or less at each end of it is the
/// raster, and the rest is jitter.
constexpr float kLengthTolerance = 3 * kNominalSampleTime;
/// What is added for the length itself, as a part of it: the scale is measured on the others.
constexpr float kOwnTolerance = 0.015F;
/// Mean of all differences, microseconds: the raster gives 22 to 32, and jitter of 25 makes up to 50 of it.
constexpr float kMeanTolerance = 70;
/// Remotes keep their period rather than the space behind a frame, and count it out less carefully.
constexpr float kGapTolerance = 0.04F;
/// Two receivers lengthen marks by up to 120 us each.
constexpr float kMostExcess = 260;
/// Sample times of 50 to 60 us, and a remote that is a little off.
constexpr float kMostScale = 0.13F, kSameScale = 0.035F;
/// A frame of a held key without digits: a leader, a space and a mark, or little more.
constexpr std::size_t kLongestDitto = 5;

bool IsGap(int length) { return length >= kRawGap; }

/// How the heard lengths relate to the stored ones.
struct RawMeasure {
  float Scale = 1;
  float Excess = 0;  // of marks, microseconds
};

/// Lengths of the two that stand beside each other, a mark first.
struct RawPair {
  RunSpan Heard;                // samples
  std::span<const int> Stored;  // microseconds

  std::size_t Size() const { return std::min(Heard.size(), Stored.size()); }
  float HeardUs(std::size_t i) const { return static_cast<float>(Heard[i] * kNominalSampleTime); }
  float StoredUs(std::size_t i) const { return static_cast<float>(Stored[i]); }
};

/// Whether a length could be the same with any scale and excess; most signals end here after a few lengths.
bool IsNear(const RawPair& pair, std::size_t i) {
  const float stored = pair.StoredUs(i);
  return std::abs(pair.HeardUs(i) - stored) <= kLengthTolerance + kMostExcess + kMostScale * stored;
}

/// The periods, which excess leaves as they are, give the scale; what is left of the marks is the excess.
std::optional<RawMeasure> Measure(const RawPair& pair) {
  float heard = 0;
  float stored = 0;
  float heardMarks = 0;
  float storedMarks = 0;
  int periods = 0;
  for (std::size_t i = 1; i + 1 < pair.Size(); i += 2) {
    if (!IsNear(pair, i) || !IsNear(pair, i + 1)) return std::nullopt;
    if (IsGap(pair.Stored[i])) continue;
    heard += pair.HeardUs(i) + pair.HeardUs(i + 1);
    stored += pair.StoredUs(i) + pair.StoredUs(i + 1);
    heardMarks += pair.HeardUs(i + 1);
    storedMarks += pair.StoredUs(i + 1);
    ++periods;
  }
  if (periods == 0) return std::nullopt;
  const RawMeasure measure{heard / stored,
                           (heardMarks - heard / stored * storedMarks) / static_cast<float>(periods)};
  if (std::abs(measure.Scale - 1) > kMostScale || std::abs(measure.Excess) > kMostExcess) return std::nullopt;
  return measure;
}

/// @param wholeFirst whether the first mark was heard from its beginning
bool IsSame(const RawPair& pair, const RawMeasure& measure, bool wholeFirst) {
  float squares = 0;
  for (std::size_t i = 0; i < pair.Size(); ++i) {
    const float stored = measure.Scale * pair.StoredUs(i);
    const float off = pair.HeardUs(i) - stored - (i % 2 == 0 ? measure.Excess : -measure.Excess);
    const bool gap = i % 2 == 1 && IsGap(pair.Stored[i]);
    const float tolerance = kLengthTolerance + (gap ? kGapTolerance : kOwnTolerance) * stored;
    if (i == 0 && !wholeFirst) {
      if (off > tolerance) return false;
      continue;
    }
    if (std::abs(off) > tolerance) return false;
    if (!gap) squares += off * off;
  }
  return squares <= kMeanTolerance * kMeanTolerance * static_cast<float>(pair.Size());
}

/// Whether a press may end ahead of a stored length: where a frame ends.
bool EndsFrameAt(std::span<const int> stored, std::size_t i) {
  return i >= stored.size() || (i % 2 == 1 && IsGap(stored[i]));
}

bool IsDitto(RunSpan frame) {
  return frame.size() <= kLongestDitto && std::none_of(frame.begin(), frame.end(), [](int run) {
           return run > 2 * kRawGap / kNominalSampleTime;
         });
}

/// Lengths of the frame that a part of a press begins with.
std::size_t FrameSize(RunSpan part) { return FirstFrameOf({part, false}); }

/// How many heard lengths a part of the stored ones covers; 0 if they are not the same.
std::size_t CoveredFrom(RunSpan part, bool cut, std::span<const int> stored, const RawMeasure& measure) {
  const RawPair pair{part, stored};
  const bool ends = part.size() <= stored.size();
  if (ends && !cut && !EndsFrameAt(stored, part.size())) return 0;
  return IsSame(pair, measure, true) ? pair.Size() : 0;
}

/// Whether what was heard behind the stored lengths repeats frames of them.
bool GoesOn(HeardLengths rest, std::span<const int> stored, const RawMeasure& measure) {
  while (!rest.Runs.empty()) {
    std::size_t covered = CoveredFrom(rest.Runs, rest.Cut, stored, measure);
    for (std::size_t i = 1; covered == 0 && i + 1 < stored.size(); i += 2) {
      if (IsGap(stored[i])) covered = CoveredFrom(rest.Runs, rest.Cut, stored.subspan(i + 1), measure);
    }
    if (const std::size_t frame = FrameSize(rest.Runs); covered == 0 && IsDitto(rest.Runs.first(frame))) {
      covered = frame;
    }
    if (covered == 0) return false;
    if (covered == rest.Runs.size()) return true;
    if (!IsGap(rest.Runs[covered] * kNominalSampleTime)) return false;
    rest.Runs = rest.Runs.subspan(covered + 1);
  }
  return true;
}

}  // namespace

RawFit CompareRaw(const HeardLengths& heard, std::span<const int> stored, std::size_t lost) {
  if (lost >= stored.size()) return RawFit::None;
  const RawPair pair{heard.Runs, stored.subspan(lost)};
  const std::size_t size = pair.Size();
  if (size < kFewestRawLengths) return RawFit::None;
  const std::optional<RawMeasure> measure = Measure(pair);
  if (!measure || !IsSame(pair, *measure, false)) return RawFit::None;
  if (size < heard.Runs.size()) {
    if (!IsGap(heard.Runs[size] * kNominalSampleTime)) return RawFit::None;
    if (!GoesOn({heard.Runs.subspan(size + 1), heard.Cut}, stored, *measure)) return RawFit::None;
  } else if (!heard.Cut && !EndsFrameAt(pair.Stored, size)) {
    return RawFit::None;
  }
  return std::abs(measure->Scale - 1) <= kSameScale ? RawFit::Exact : RawFit::Scaled;
}

}  // namespace keplo
