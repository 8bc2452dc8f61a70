#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace keplo::broker {

/// Counts what was refused, and tells it once a minute: who floods a topic must not flood the log.
class RefusalTally {
 public:
  static constexpr std::chrono::seconds kToldEvery{60};

  /// @param one, many subjects of the sentence: "A request", "requests"
  RefusalTally(std::string one, std::string many, std::function<void(const std::string&)> tell)
      : one_(std::move(one)), many_(std::move(many)), tell_(std::move(tell)) {}

  /// @param number 0 to tell what waits for it, once its time has come
  void Count(const std::string& why, std::size_t number = 1);

 private:
  const std::string one_, many_;
  const std::function<void(const std::string&)> tell_;
  std::size_t refused_ = 0;  // since they were last told
  std::string why_;          // the last of them was
  std::chrono::steady_clock::time_point nextTold_;
};

}  // namespace keplo::broker
