#include "signal/raw/raw_lesson.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "signal/raw/raw_compare.h"
#include "signal/raw/raw_mend.h"

namespace keplo {

namespace {

/// A digit that toggles makes a frame longer or shorter by this part at most.
constexpr double kAlikeLength = 0.12;
/// In biphase it makes two lengths of one, or one of two.
constexpr int kAlikeCount = 4;

std::span<const int> FirstFrame(const RawLengths& lengths) {
  const int gap = RawGapOf(lengths);
  std::size_t end = 1;
  while (end < lengths.size() && lengths[end] < gap) end += 2;
  return std::span(lengths).first(std::min(end, lengths.size()));
}

bool SendsFrameTwice(const HeardLengths& heard, const RawLengths& lengths) {
  const std::size_t frame = FirstFrameOf(heard);
  if (heard.Runs.size() < 2 * frame + 1) return false;
  const HeardLengths second = heard.Part(frame + 1, frame);
  return CompareRaw(second, std::span(lengths).first(frame)).Fits == RawFit::How::Exact;
}

/// What a held key repeats is worth three times at most: some devices want to hear as many.
constexpr std::size_t kMostRounds = 3;
/// Frames of a message, or of a key that sends two in turns, that may make a round.
constexpr std::size_t kMostInRound = 4;

bool BeginsWith(RunSpan frame, RunSpan piece, double sampleTime) {
  constexpr double kMostApart = 130;  // microseconds, and two samples: what edges stray by in both
  return piece.size() <= frame.size() &&
         std::equal(piece.begin(), piece.end(), frame.begin(), [&](int left, int right) {
           return std::abs(left - right) * sampleTime <= kMostApart + 2 * sampleTime;
         });
}

/// The frames of a signal, and how many of them tell something of it.
struct HeardFrames {
  explicit HeardFrames(const HeardLengths& heard) : Heard(heard) {
    for (std::size_t begin = 0; begin < heard.Runs.size(); begin = Ends.back() + 1) {
      Ends.push_back(begin + FirstFrameOf(heard.From(begin)));
    }
  }

  RunSpan Frame(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : Ends[i - 1] + 1;
    return Heard.Runs.subspan(begin, Ends[i] - begin);
  }
  /// Whether all frames are those of the first round again.
  bool Repeats(std::size_t first, std::size_t round) const {
    for (std::size_t i = first + round; i < Ends.size(); ++i) {
      const RunSpan before = Frame(i - round);
      if (before.size() != Frame(i).size() || !BeginsWith(before, Frame(i), Heard.SampleTime)) return false;
    }
    return true;
  }
  /// Whether the last frame is a piece of another one, which the end of the recording has cut off.
  bool EndsInPiece() const {
    const std::size_t last = Ends.size() - 1;
    for (std::size_t i = 0; i < last; ++i) {
      if (BeginsWith(Frame(i), Frame(last), Heard.SampleTime)) return Heard.Cut;
    }
    return false;
  }

  const HeardLengths& Heard;
  std::vector<std::size_t> Ends;  // in lengths
};

/// What of a press is worth storing: without the piece that the end of the recording has cut off, and with
/// few of the frames that a held key repeats, after one that may be its own.
HeardLengths TellingPart(const HeardLengths& heard) {
  if (heard.Runs.empty()) return heard;
  HeardFrames frames(heard);
  const bool endsInPiece = frames.EndsInPiece();
  if (endsInPiece) frames.Ends.pop_back();
  std::size_t kept = frames.Ends.size();
  for (const std::size_t first : {0, 1}) {
    for (std::size_t round = 1; round <= kMostInRound; ++round) {
      const std::size_t rounds = first + kMostRounds * round;
      if (rounds < kept && frames.Repeats(first, round)) kept = rounds;
    }
  }
  const bool whole = endsInPiece || kept < frames.Ends.size();
  return {heard.Runs.first(frames.Ends[kept - 1]), heard.Cut && !whole, heard.SampleTime, heard.Gap};
}

/// Whether what two presses have at a place, microseconds, may be one length: jitter and raster of both, or a
/// space between frames that is counted out less carefully.
bool IsSameLength(int stored, int press) {
  constexpr int kMostApart = 240;
  return std::abs(stored - press) <= kMostApart + stored / 25;
}

bool AreFramesAlike(const RawLengths& a, const RawLengths& b) {
  const std::span<const int> left = FirstFrame(a), right = FirstFrame(b);
  const double leftTime = std::accumulate(left.begin(), left.end(), 0.0);
  const double rightTime = std::accumulate(right.begin(), right.end(), 0.0);
  return std::abs(static_cast<int>(left.size()) - static_cast<int>(right.size())) <= kAlikeCount &&
         std::abs(leftTime - rightTime) <= kAlikeLength * leftTime;
}

bool IsForm(const HeardLengths& heard, const RawLengths& form) {
  const RawFit fit = CompareRaw(heard, form);
  return fit.Fits == RawFit::How::Exact && fit.MayBeOneKey;
}

/// Whether a press is a form that was tapped before and is held now, which sends other frames then.
bool Continues(const LeveledSignal& press, const RawLengths& form, const HeardLengths& heard) {
  std::vector<int> tap;
  double time = 0, samples = 0;
  for (const int length : form) {
    time += length;
    tap.push_back(static_cast<int>(std::lround(time / heard.SampleTime - samples)));
    samples += tap.back();
  }
  return tap.size() < press.Lengths.size() &&
         IsForm({tap, false, heard.SampleTime, heard.Gap}, press.Lengths);
}

}  // namespace

void RawLesson::TakeMean(Form& form, const RawLengths& press) {
  RawLengths& mean = form.Signal.Lengths;
  for (std::size_t i = 0; i < std::min(mean.size(), press.size()); ++i) {
    // A tap and a hold stand side by side as far as they have as many frames.
    if (i > 0 && !IsSameLength(mean[i], press[i])) return;
    const double sum = static_cast<double>(mean[i]) * form.Presses + press[i];
    // The first mark may have begun ahead of a recording.
    mean[i] = i == 0 ? std::max(mean[0], press[0]) : static_cast<int>(std::lround(sum / (form.Presses + 1)));
  }
}

bool RawLesson::Hear(const HeardLengths& press, const std::string& place) {
  if (const auto again = places_.find(place); again != places_.end()) {
    last_ = again->second;
    return true;
  }
  const SoundFrames sound(press);
  const HeardLengths heard = TellingPart(sound.Heard());
  std::optional<LeveledSignal> signal = FindLevels(heard);
  if (!signal) return false;
  auto known = std::find_if(forms_.begin(), forms_.end(),
                            [&](const Form& form) { return IsForm(heard, form.Signal.Lengths); });
  if (known == forms_.end()) {
    known = std::find_if(forms_.begin(), forms_.end(),
                         [&](const Form& form) { return Continues(*signal, form.Signal.Lengths, heard); });
    if (known != forms_.end()) std::swap(known->Signal, *signal);
  }
  last_ = static_cast<std::size_t>(known - forms_.begin());
  order_.push_back(last_);
  if (!place.empty()) places_[place] = last_;
  const bool repeats = SendsFrameTwice(heard, signal->Lengths);
  if (known == forms_.end()) {
    forms_.push_back({std::move(*signal)});
  } else {
    TakeMean(*known, signal->Lengths);
  }
  Form& form = forms_[last_];
  ++form.Presses;
  form.Repeats = form.Repeats || repeats;
  return true;
}

bool RawLesson::IsLastConfirmed() const {
  const std::size_t presses = order_.size();
  return Last().Repeats || (presses > 1 && order_[presses - 2] == order_.back() && last_ == order_.back());
}

bool RawLesson::TakesTurns() const {
  if (order_.size() < 4) return false;
  const auto last = order_.end() - 4;
  return last[0] == last[2] && last[1] == last[3] && last[0] != last[1] &&
         AreFramesAlike(forms_[last[0]].Signal.Lengths, forms_[last[1]].Signal.Lengths);
}

bool RawLesson::AreAlike() const {
  return std::all_of(forms_.begin(), forms_.end(), [&](const Form& form) {
    return AreFramesAlike(form.Signal.Lengths, forms_.front().Signal.Lengths);
  });
}

bool RawLesson::AreTurns() const {
  for (std::size_t i = 0; i < order_.size(); ++i) {
    if (order_[i] != i % forms_.size()) return false;
  }
  return order_.size() >= 2 * forms_.size() && AreAlike();
}

}  // namespace keplo
