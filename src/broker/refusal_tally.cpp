#include "broker/refusal_tally.h"

#include <utility>

namespace keplo::broker {

void RefusalTally::Count(const std::string& reason, std::size_t number) {
  refused_ += number;
  if (number > 0) lastReason_ = reason;
  const auto now = std::chrono::steady_clock::now();
  if (refused_ == 0 || now < nextReport_) return;
  nextReport_ = now + kReportPeriod;
  report_((refused_ == 1 ? one_ : std::to_string(refused_) + " " + many_) +
          " refused; the last one: " + lastReason_ + ".");
  refused_ = 0;
}

}  // namespace keplo::broker
