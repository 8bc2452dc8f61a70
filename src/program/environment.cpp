#include "program/environment.h"

#include <cstdlib>

namespace keplo {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::optional<std::filesystem::path> UserDataFolder() {
  const std::filesystem::path data = Environment("XDG_DATA_HOME"), home = Environment("HOME");
  if (data.is_absolute()) return data;
  if (home.is_absolute()) return home / ".local" / "share";
  return std::nullopt;
}

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (!Environment(name).empty()) return true;
  }
  return false;
}

}  // namespace keplo
