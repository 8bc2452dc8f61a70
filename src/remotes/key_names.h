#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace keplo {

/// A text with A to Z as a to z.
std::string InLowerCase(std::string_view text);

/// A name with _ for each character that a name in keplo.cfg cannot have, without blanks around it.
std::string CleanName(std::string_view name);

/// Whether a clean name is left with nothing to tell keys apart by: letters of an alphabet of which a name
/// can have none are all alike in it.
bool SaysNothing(std::string_view name);

/// Gives the keys of a section names that hold: a search from the header on, which looks into every word and
/// digit, finds each first on its own line, once the lines stand in the order of LinesInOrder.
class KeyNames {
 public:
  /// @param words all that the section will hold beside the lines of these keys, and the codes of these
  explicit KeyNames(std::string_view words) : words_(InLowerCase(words)) {}

  /// The name for the next key, which is the wanted one if that holds.
  /// @param number of the key in its remote, from 1, which names a key without a name
  std::string Next(const std::optional<std::string>& wanted, std::size_t number);

 private:
  bool Stands(const std::string& name) const;
  bool IsTaken(const std::string& name) const { return taken_.count(InLowerCase(name)) > 0; }

  std::string words_;
  std::set<std::string> taken_;                // in lower case
  std::map<std::string, std::size_t> counts_;  // of the numbers after names that occur again
};

/// The order in which names hold: as they are, but for those that lie within an earlier one, which go ahead
/// of it.
/// @param names of which no two are equal in lower case
/// @return the places of the names
std::vector<std::size_t> LinesInOrder(const std::vector<std::string>& names);

/// Gives new sections their names.
class SectionNames {
 public:
  /// @param text of a configuration, whose names are taken
  explicit SectionNames(std::string_view text);

  /// A name of 3 to 12 letters, digits, - and _ after the one of a remote.
  std::string Next(std::string_view remote);

 private:
  bool IsFree(const std::string& name) const;

  std::string_view text_;
  std::set<std::string> taken_;  // in lower case
  std::map<std::string, std::size_t> counts_;
};

}  // namespace keplo
