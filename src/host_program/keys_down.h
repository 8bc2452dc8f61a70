#pragma once

#include <map>
#include <set>
#include <vector>

namespace keplo::host {

/// Which keys of a keyboard are down, and which places hold them. A key goes up when no place holds it any
/// more.
class KeysDown {
 public:
  /// @param place of the remote's key that holds it
  /// @return whether the key was up
  bool Press(unsigned code, int place) {
    std::set<int>& places = places_[code];
    const bool wasUp = places.empty();
    places.insert(place);
    return wasUp;
  }

  /// @return the keys that only this place held
  std::vector<unsigned> Release(int place) {
    std::vector<unsigned> up;
    for (auto& [code, places] : places_) {
      if (places.erase(place) > 0 && places.empty()) up.push_back(code);
    }
    return up;
  }

 private:
  std::map<unsigned, std::set<int>> places_;  // by code
};

}  // namespace keplo::host
