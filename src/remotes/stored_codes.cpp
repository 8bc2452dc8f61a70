#include "remotes/stored_codes.h"

#include "config/commands.h"
#include "config/protocols.h"

namespace keplo {

StoredCodes::StoredCodes(std::string_view text) {
  for (const std::string& protocol : ListProtocols(text)) {
    for (const LearnedCommand& command : ListCommands(text, protocol)) {
      if (command.Code + "," + command.Name == kPlaceholderLine || command.Code.size() < 2) continue;
      Insert(command.Code.substr(1), {protocol + "&" + std::string(Trimmed(command.Name)), std::nullopt});
    }
  }
}

void StoredCodes::Insert(const std::string& digits, Holder holder) {
  if (codes_.emplace(digits, std::move(holder)).second) lengths_.insert(digits.size());
}

std::optional<StoredCodes::Met> StoredCodes::Meets(const std::string& digits) const {
  const auto next = codes_.lower_bound(digits);
  if (next != codes_.end() && next->first == digits) return Met{Meeting::Equal, next->second};
  for (const std::size_t length : lengths_) {
    if (length >= digits.size()) break;
    const auto other = codes_.find(digits.substr(0, length));
    if (other != codes_.end()) return Met{Meeting::BeginsWithOther, other->second};
  }
  if (next == codes_.end() || next->first.compare(0, digits.size(), digits) != 0) return std::nullopt;
  return Met{Meeting::BeginsOther, next->second};
}

}  // namespace keplo
