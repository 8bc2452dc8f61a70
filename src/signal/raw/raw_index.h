#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "signal/raw/raw_compare.h"
#include "signal/raw/raw_periods.h"

namespace keplo {

/// What a search found.
struct RawMatch {
  std::string_view Digits;  // of the command that fits best; empty if there is none
  std::string_view Other;   // of one that fits nearly as well; empty if there is none
  bool Alone = false;       // there is a command that fits, and no other one nearly as well
  bool IsClose = false;     // it fits as near as two hearings without jitter are
  bool IsSame = false;      // what was heard could be no command beside it
  /// Whether it was the second form of a command that is sent in two forms in turn; nothing of any other.
  std::optional<bool> Toggle = {};
};

/// The raw commands, found by the number of their lengths.
class RawIndex {
 public:
  void Clear();
  void Add(const RawSignal& signal);
  std::size_t Size() const { return signals_.size(); }
  bool Empty() const { return signals_.empty(); }

  /// The command that fits what was heard. Those that fit without a change of scale go first.
  RawMatch Find(const HeardLengths& heard) const;

 private:
  struct Form {
    std::size_t Signal;
    RawLengths Lengths;
  };
  /// A form among those of so many lengths, by what is looked at first.
  struct Entry {
    RawPeriods Periods;
    std::size_t Form;
  };
  struct Search;

  RawMatch FindWhole(const HeardLengths& heard) const;
  std::optional<bool> ToggleOf(std::size_t form) const;
  void Compare(std::size_t count, std::size_t lost, Search& search) const;

  std::vector<std::string> signals_;  // digits
  std::vector<Form> forms_;
  std::unordered_map<std::size_t, std::vector<Entry>> byCount_;  // forms by lengths of the first frame
};

}  // namespace keplo
