#include "signal/raw/raw_index.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "signal/raw/raw_levels.h"
#include "signal/raw/raw_mend.h"

namespace keplo {

namespace {

/// A space that is so much longer or shorter than one that parts frames may be heard as none, or as one.
constexpr int kPerhapsGap = 700;

/// By how much the sum of squared differences of the next signal is larger, square microseconds: one length
/// that is off by 120 us more.
constexpr float kFarBehind = 120 * 120;
/// The same, in mean squares of what the lengths are off by: jitter alone makes so much once in 30,000 times.
constexpr float kFarInMeans = 16;

/// Looks at the line are 2 ms apart, in which up to two marks with their spaces may have passed.
constexpr std::size_t kMostLost = 4;

}  // namespace

struct RawIndex::Search {
  static constexpr float kFurthest = std::numeric_limits<float>::max();

  /// What fits of a signal.
  struct Candidate {
    std::size_t Signal, Form;  // the form that fits best
    RawFit Fit;
    float Lengths;  // the least squares of all its forms
  };

  /// The signals that fit, the best first.
  struct Candidates {
    std::vector<Candidate> All = {};

    void Take(std::size_t signal, std::size_t form, const RawFit& fit) {
      const auto known =
          std::find_if(All.begin(), All.end(), [&](const Candidate& each) { return each.Signal == signal; });
      if (known == All.end()) return All.push_back({signal, form, fit, fit.Squares.Lengths});
      known->Lengths = std::min(known->Lengths, fit.Squares.Lengths);
      if (fit.Squares.Edges >= known->Fit.Squares.Edges) return;
      known->Form = form;
      known->Fit = fit;
    }
    void Sort() {
      std::sort(All.begin(), All.end(), [](const Candidate& one, const Candidate& other) {
        return one.Fit.Squares.Edges < other.Fit.Squares.Edges;
      });
    }
    /// @param lengths that were compared
    bool IsFirstAlone(std::size_t lengths) const {
      RawSquares next = {kFurthest, kFurthest};
      for (std::size_t i = 1; i < All.size(); ++i) {
        next.Edges = std::min(next.Edges, All[i].Fit.Squares.Edges);
        next.Lengths = std::min(next.Lengths, All[i].Lengths);
      }
      const auto isFar = [&](float other, float best) {
        return other - best >= std::max(kFarBehind, kFarInMeans * best / static_cast<float>(lengths));
      };
      const RawSquares& best = All.front().Fit.Squares;
      return isFar(next.Edges, best.Edges) || isFar(next.Lengths, best.Lengths);
    }
  };

  const HeardLengths& Heard;
  const RawPeriods::Heard Periods{Heard};
  Candidates Exact = {}, Scaled = {};

  void Take(std::size_t signal, std::size_t form, const RawFit& fit) {
    if (fit.Fits == RawFit::How::None) return;
    (fit.Fits == RawFit::How::Exact ? Exact : Scaled).Take(signal, form, fit);
  }
};

void RawIndex::Clear() {
  signals_.clear();
  forms_.clear();
  byCount_.clear();
}

void RawIndex::Add(const RawSignal& signal) {
  signals_.push_back(signal.Digits);
  for (const RawLengths& form : signal.Forms) {
    const Entry entry{RawPeriods(form), forms_.size()};
    forms_.push_back({signals_.size() - 1, form});
    const int gap = RawGapOf(form);
    std::size_t i = 1;
    for (; i < form.size() && form[i] < gap + kPerhapsGap; i += 2) {
      if (form[i] >= gap - kPerhapsGap) byCount_[i].push_back(entry);
    }
    byCount_[std::min(i, form.size())].push_back(entry);
  }
}

void RawIndex::Compare(std::size_t count, std::size_t lost, Search& search) const {
  const auto forms = byCount_.find(count);
  if (forms == byCount_.end()) return;
  for (const Entry& entry : forms->second) {
    if (!entry.Periods.MayBe(search.Periods, lost)) continue;
    const Form& form = forms_[entry.Form];
    search.Take(form.Signal, entry.Form, CompareRaw(search.Heard, form.Lengths, lost));
  }
}

std::optional<bool> RawIndex::ToggleOf(std::size_t form) const {
  const auto isSibling = [&](std::size_t other) {
    return other < forms_.size() && forms_[other].Signal == forms_[form].Signal;
  };
  const bool second = isSibling(form - 1), first = isSibling(form + 1);  // wraps in front of the first
  const bool areMore = (first && second) || isSibling(form - 2) || isSibling(form + 2);
  return first != second && !areMore ? std::optional(second) : std::nullopt;
}

RawMatch RawIndex::Find(const HeardLengths& heard) const {
  if (Empty() || heard.Runs.size() < kFewestRawLengths || IsNoise(heard)) return {};
  const RawMatch match = FindWhole(heard);
  if (!match.Digits.empty()) return match;
  const SoundFrames sound(heard);
  return sound.IsMended() ? FindWhole(sound.Heard()) : match;
}

RawMatch RawIndex::FindWhole(const HeardLengths& heard) const {
  Search search{heard};
  const std::size_t count = FirstFrameOf(heard);
  const bool cutInFirst = heard.Cut && count == heard.Runs.size();
  for (std::size_t lost = 0; lost <= kMostLost; lost += 2) {
    if (!cutInFirst) {
      Compare(count + lost, lost, search);
      continue;
    }
    for (const auto& [longer, forms] : byCount_) {
      if (longer >= count + lost) Compare(longer, lost, search);
    }
  }
  Search::Candidates& candidates = search.Exact.All.empty() ? search.Scaled : search.Exact;
  if (candidates.All.empty()) return {};
  candidates.Sort();
  const Search::Candidate& best = candidates.All.front();
  RawMatch match{signals_[best.Signal],
                 {},
                 candidates.IsFirstAlone(heard.Runs.size()),
                 best.Fit.IsClose,
                 best.Fit.IsSame,
                 ToggleOf(best.Form)};
  if (!match.Alone) match.Other = signals_[candidates.All[1].Signal];
  return match;
}

}  // namespace keplo
