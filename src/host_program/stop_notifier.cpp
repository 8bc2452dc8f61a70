#include "host_program/stop_notifier.h"

namespace keplo::host {

StopNotifier::StopNotifier() : notifier_(signals_.Descriptor(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] {
    if (signals_.Take() != 0 && stop_) stop_();
  });
}

}  // namespace keplo::host
