#include "host_program/key_name.h"

#include <libevdev/libevdev.h>

#include <string_view>

namespace keplo::host {

namespace {

constexpr std::string_view kKeyPrefix = "KEY_";  // BTN_ names are buttons of mice and joysticks

}  // namespace

bool IsKeyName(const char* name) {
  return name != nullptr && std::string_view(name).substr(0, kKeyPrefix.size()) == kKeyPrefix;
}

std::optional<unsigned> KeyCodeOf(const std::string& name) {
  if (!IsKeyName(name.c_str())) return std::nullopt;
  const int code = libevdev_event_code_from_name(EV_KEY, name.c_str());
  return code > 0 && code < KEY_MAX ? std::optional(static_cast<unsigned>(code)) : std::nullopt;
}

}  // namespace keplo::host
