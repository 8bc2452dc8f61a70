#include "signal/raw/raw_lesson.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "signal/raw/raw_compare.h"

namespace keplo {

namespace {

/// A digit that toggles makes a frame longer or shorter by this part at most.
constexpr double kAlikeLength = 0.12;
/// In biphase it makes two lengths of one, or one of two.
constexpr int kAlikeCount = 4;

std::span<const int> FirstFrame(const RawLengths& lengths) {
  std::size_t end = 1;
  while (end < lengths.size() && lengths[end] < kRawGap) end += 2;
  return std::span(lengths).first(std::min(end, lengths.size()));
}

bool SendsFrameTwice(const HeardLengths& heard, const RawLengths& lengths) {
  const std::size_t frame = FirstFrameOf(heard);
  if (heard.Runs.size() < 2 * frame + 1) return false;
  const HeardLengths second{heard.Runs.subspan(frame + 1, frame), false, heard.SampleTime};
  return CompareRaw(second, std::span(lengths).first(frame)).Fits == RawFit::How::Exact;
}

bool AreFramesAlike(const RawLengths& a, const RawLengths& b) {
  const std::span<const int> left = FirstFrame(a), right = FirstFrame(b);
  const double leftTime = std::accumulate(left.begin(), left.end(), 0.0);
  const double rightTime = std::accumulate(right.begin(), right.end(), 0.0);
  return std::abs(static_cast<int>(left.size()) - static_cast<int>(right.size())) <= kAlikeCount &&
         std::abs(leftTime - rightTime) <= kAlikeLength * leftTime;
}

}  // namespace

bool RawLesson::Hear(const HeardLengths& heard, const std::string& place) {
  if (const auto again = places_.find(place); again != places_.end()) {
    last_ = again->second;
    return true;
  }
  std::optional<LeveledSignal> signal = FindLevels(heard);
  if (!signal) return false;
  const auto known = std::find_if(forms_.begin(), forms_.end(), [&](const Form& form) {
    return CompareRaw(heard, form.Signal.Lengths).Fits == RawFit::How::Exact;
  });
  last_ = static_cast<std::size_t>(known - forms_.begin());
  order_.push_back(last_);
  if (!place.empty()) places_[place] = last_;
  const bool repeats = SendsFrameTwice(heard, signal->Lengths);
  if (known == forms_.end()) forms_.push_back({std::move(*signal)});
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
