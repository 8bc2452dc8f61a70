#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace keplo {

/// The codes of a store and of what is about to go into it.
class StoredCodes {
 public:
  /// A command that has a code: one of the store by its reference, a new one by its place among them.
  struct Holder {
    std::string Reference;
    std::optional<std::size_t> New;
  };
  /// How a code meets one that is there.
  enum class Meeting { Equal, BeginsOther, BeginsWithOther };
  struct Met {
    Meeting How;
    Holder With;
  };

  /// @param text of a configuration
  explicit StoredCodes(std::string_view text);

  /// @param digits without the leading G
  std::optional<Met> Meets(const std::string& digits) const;
  void Add(const std::string& digits, std::size_t place) { Insert(digits, {{}, place}); }

 private:
  void Insert(const std::string& digits, Holder holder);

  std::map<std::string, Holder> codes_;
  std::set<std::size_t> lengths_;
};

}  // namespace keplo
