#include "ui/clock.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace keplo::ui {

std::string RecordDate(std::chrono::system_clock::time_point when) {
  static constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  std::tm local{};
  localtime_r(&seconds, &local);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d-%s-%04d %02d:%02d:%02d", local.tm_mday,
                kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_year + 1900, local.tm_hour,
                local.tm_min, local.tm_sec);
  return text.data();
}

}  // namespace keplo::ui
