#pragma once

#include <array>

#include "host_program/event_output.h"
#include "host_program/host_log.h"

namespace keplo::host {

/// Writes what a plug-in reports to the log.
class LogOutput final : public EventOutput {
 public:
  explicit LogOutput(const HostLog& log) : log_(log) {}

  void EventRaised(const RaisedEvent& event) override { log_.Event(event); }
  void KeyChanged(PressStage stage, const HeardKey& key) override {
    static constexpr std::array<const char*, 3> kNames = {"press", "hold", "release"};
    log_.Key(kNames.at(static_cast<std::size_t>(stage)), key);
  }
  void ErrorReported(const HostErrorRecord& record) override { log_.Error(record); }
  void Logged(LogLevel level, const std::string& text) override { log_.Write(level, text); }

 private:
  const HostLog& log_;
};

}  // namespace keplo::host
