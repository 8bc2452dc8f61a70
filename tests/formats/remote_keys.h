#pragma once

#include <string>
#include <vector>

#include "formats/remote.h"

namespace keplo {

/// The keys of all remotes of a file.
inline std::vector<RemoteKey> KeysOf(const RemoteFile& file) {
  std::vector<RemoteKey> keys;
  for (const Remote& remote : file.Remotes) keys.insert(keys.end(), remote.Keys.begin(), remote.Keys.end());
  return keys;
}

inline std::string Digits(const RemoteKey& key) { return key.Coded ? key.Coded->Digits : ""; }
inline std::string RepeatOf(const RemoteKey& key) {
  return key.Coded ? std::string(NameOf(key.Coded->Again.Kind)) : "";
}

}  // namespace keplo
