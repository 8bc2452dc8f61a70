#pragma once

#include <string>

#include "host/component_entry.h"
#include "host/host_records.h"
#include "program/raised_event.h"

namespace keplo::host {

/// What has become of a key.
enum class PressStage { Pressed, Held, Released };

/// Where the host tells what a plug-in tells it. Each output takes what it can say; a key that is pressed or
/// held comes before the events that it raises.
class EventOutput {
 public:
  virtual ~EventOutput() = default;

  virtual void EventRaised(const RaisedEvent& /*event*/) {}
  virtual void KeyChanged(PressStage /*stage*/, const HeardKey& /*key*/) {}
  /// A signal was heard, known or not.
  virtual void SignalHeard(const HeardSignal& /*signal*/) {}
  virtual void ErrorTold(const HostErrorRecord& /*record*/) {}
  /// What the plug-in logs besides, such as why a press raised no event.
  virtual void Logged(LogLevel /*level*/, const std::string& /*text*/) {}
};

}  // namespace keplo::host
