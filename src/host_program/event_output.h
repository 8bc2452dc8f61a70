#pragma once

#include <string>

#include "host/component_entry.h"
#include "host/host_records.h"
#include "program/raised_event.h"

namespace keplo::host {

enum class PressStage { Pressed, Held, Released };

/// Receives what a plug-in reports; an output overrides what it is interested in. A press or hold of a key
/// comes before the events that it raises.
class EventOutput {
 public:
  virtual ~EventOutput() = default;

  virtual void EventRaised(const RaisedEvent& /*event*/) {}
  virtual void KeyChanged(PressStage /*stage*/, const HeardKey& /*key*/) {}
  /// A signal was received, known or not.
  virtual void SignalHeard(const HeardSignal& /*signal*/) {}
  virtual void ErrorReported(const HostErrorRecord& /*record*/) {}
  /// The plug-in has logged something, such as why a press raised no event.
  virtual void Logged(LogLevel /*level*/, const std::string& /*text*/) {}
};

}  // namespace keplo::host
