#pragma once

#include <functional>
#include <string>

#include "formats/remote.h"

namespace keplo {

/// A test for names of keys.
/// @param list of names with commas between them, in which * stands for any characters and ? for one; letter
/// case does not count
std::function<bool(const RemoteKey& key)> KeysNamed(const std::string& list);

}  // namespace keplo
