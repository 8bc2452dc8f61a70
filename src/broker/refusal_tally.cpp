#include "broker/refusal_tally.h"

#include <utility>

namespace keplo::broker {

void RefusalTally::Count(const std::string& why, std::size_t number) {
  refused_ += number;
  if (number > 0) why_ = why;
  const auto now = std::chrono::steady_clock::now();
  if (refused_ == 0 || now < nextTold_) return;
  nextTold_ = now + kToldEvery;
  tell_((refused_ == 1 ? one_ : std::to_string(refused_) + " " + many_) + " refused; the last one: " + why_ +
        ".");
  refused_ = 0;
}

}  // namespace keplo::broker
