#include "remotes/keys_named.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "config/cfg_text.h"
#include "remotes/key_names.h"

namespace keplo {

namespace {

/// Whether a name fits a pattern with * and ?, both in lower case.
bool Matches(std::string_view pattern, std::string_view name) {
  std::size_t at = 0, star = std::string_view::npos, retry = 0;
  for (std::size_t place = 0; place < name.size();) {
    if (at < pattern.size() && pattern[at] == '*') {
      star = at++;
      retry = place;
    } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[place])) {
      ++at;
      ++place;
    } else if (star != std::string_view::npos) {
      at = star + 1;
      place = ++retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

}  // namespace

std::function<bool(const RemoteKey& key)> KeysNamed(const std::string& list) {
  std::vector<std::string> patterns;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    patterns.push_back(InLowerCase(Trimmed(std::string_view(list).substr(begin, end - begin))));
    begin = end + 1;
  }
  return [patterns](const RemoteKey& key) {
    const std::string name = InLowerCase(Trimmed(key.Name.value_or("")));
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
      return !pattern.empty() && Matches(pattern, name);
    });
  };
}

}  // namespace keplo
