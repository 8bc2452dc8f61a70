#include "signal/raw/raw_index.h"

#include <algorithm>
#include <optional>

namespace keplo {

namespace {

/// A space that may be heard as one that parts frames, or as none.
constexpr int kPerhapsGap = kRawGap - 700, kSurelyGap = kRawGap + 700;

/// Looks at the line are 2 ms apart, in which up to two marks with their spaces may have passed.
constexpr std::size_t kMostLost = 4;

}  // namespace

struct RawIndex::Search {
  const HeardLengths& Heard;
  std::optional<std::size_t> Exact = {}, Scaled = {};  // signals
  bool TwoExact = false, TwoScaled = false;

  void Take(std::size_t signal, RawFit fit) {
    if (fit == RawFit::None) return;
    std::optional<std::size_t>& found = fit == RawFit::Exact ? Exact : Scaled;
    bool& two = fit == RawFit::Exact ? TwoExact : TwoScaled;
    if (found && *found != signal) two = true;
    found = signal;
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
    const std::size_t number = forms_.size();
    forms_.push_back({signals_.size() - 1, form});
    std::size_t i = 1;
    for (; i < form.size() && form[i] < kSurelyGap; i += 2) {
      if (form[i] >= kPerhapsGap) byCount_[i].push_back(number);
    }
    byCount_[std::min(i, form.size())].push_back(number);
  }
}

void RawIndex::Compare(std::size_t count, std::size_t lost, Search& search) const {
  const auto forms = byCount_.find(count);
  if (forms == byCount_.end()) return;
  for (const std::size_t number : forms->second) {
    const Form& form = forms_[number];
    search.Take(form.Signal, CompareRaw(search.Heard, form.Lengths, lost));
  }
}

RawMatch RawIndex::Find(const HeardLengths& heard) const {
  if (Empty() || heard.Runs.size() < kFewestRawLengths) return {};
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
  const bool exact = search.Exact.has_value();
  const std::optional<std::size_t>& found = exact ? search.Exact : search.Scaled;
  if (!found) return {};
  return {signals_[*found], exact ? !search.TwoExact : !search.TwoScaled};
}

}  // namespace keplo
