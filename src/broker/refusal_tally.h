#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace keplo::broker {

/// Counts refusals and reports them once a minute, so that a flood of messages does not flood the log.
class RefusalTally {
 public:
  static constexpr std::chrono::seconds kReportPeriod{60};

  /// @param one, many the subject of the report: "A request", "requests"
  RefusalTally(std::string one, std::string many, std::function<void(const std::string&)> report)
      : one_(std::move(one)), many_(std::move(many)), report_(std::move(report)) {}

  /// @param number of refusals; 0 only reports earlier ones if it is time
  void Count(const std::string& reason, std::size_t number = 1);

 private:
  const std::string one_, many_;
  const std::function<void(const std::string&)> report_;
  std::size_t refused_ = 0;  // since the last report
  std::string lastReason_;
  std::chrono::steady_clock::time_point nextReport_;
};

}  // namespace keplo::broker
