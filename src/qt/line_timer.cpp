#include "qt/line_timer.h"

#include <algorithm>

namespace keplo::qt {

namespace {

/// Limits the delay until a port that was opened between two ticks is read.
constexpr std::chrono::milliseconds kLongestRest{1000};
constexpr std::chrono::seconds kCare{2};

}  // namespace

LineTimer::LineTimer(ui::Timer& model, LineRest* line, QObject* parent)
    : QtTimer(model, parent), line_(line), pace_(model.Interval) {
  if (line_ == nullptr) return;
  callOnTimeout(this, [this] { Pace(); });
  care_.callOnTimeout([this] {
    if (!isActive()) line_->LookAfterDevice();
  });
  care_.start(kCare);
}

void LineTimer::Pace() {
  if (!isActive()) return;
  const std::chrono::milliseconds mayRest = line_->MayRest();
  if (mayRest > pace_) return Rest(std::min(mayRest, kLongestRest));
  if (intervalAsDuration() != pace_) setInterval(pace_);
}

void LineTimer::Rest(std::chrono::milliseconds time) {
  const int descriptor = line_->WakeDescriptor();
  if (descriptor >= 0 && (wake_ == nullptr || wake_->socket() != descriptor)) {
    wake_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(wake_.get(), &QSocketNotifier::activated, this, [this] { Wake(); });
  }
  if (descriptor >= 0) wake_->setEnabled(true);
  setInterval(time);
}

/// The descriptor stays readable until a tick has read the line.
void LineTimer::Wake() {
  wake_->setEnabled(false);
  setInterval(0);
}

}  // namespace keplo::qt
