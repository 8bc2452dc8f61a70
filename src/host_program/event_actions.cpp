#include "host_program/event_actions.h"

#include <algorithm>
#include <csignal>

#include "host_program/key_name.h"

namespace keplo::host {

EventActions::EventActions(const HostLog& log) : log_(log), keyboard_(log) {
  kinds_["run"] = [this](const nlohmann::json& action, const RaisedEvent& event, int /*place*/) {
    Start({action.at("program").get<std::string>(), action.value("arguments", std::vector<std::string>())},
          event);
  };
  kinds_["shell"] = [this](const nlohmann::json& action, const RaisedEvent& event, int /*place*/) {
    Start({"/bin/sh", {"-c", action.at("command").get<std::string>()}}, event);
  };
  kinds_["key"] = [this](const nlohmann::json& action, const RaisedEvent& /*event*/, int place) {
    if (const auto code = KeyCodeOf(action.at("key").get<std::string>())) keyboard_.Press(*code, place);
  };
}

EventActions::~EventActions() = default;

void EventActions::Terminate() {
  for (const auto& program : programs_) program->Signal(SIGTERM);
}

void EventActions::Kill() {
  for (const auto& program : programs_) {
    log_.Write(LogLevel::Warning, program->Name() + " does not end; it is killed.");
  }
  programs_.clear();
}

void EventActions::Do(const nlohmann::json& actions, const RaisedEvent& event, int place) {
  for (const nlohmann::json& action : actions) {
    try {
      const std::string kind = action.at("kind").get<std::string>();
      const auto known = kinds_.find(kind);
      if (known == kinds_.end()) {
        log_.Write(LogLevel::Warning, "Event " + event.EventID + ": there is no kind of action " + kind +
                                          "; known are run, shell and key.");
        continue;
      }
      known->second(action, event, place);
    } catch (const nlohmann::json::exception& error) {
      log_.Write(LogLevel::Warning, "Event " + event.EventID + ": the action " + action.dump() +
                                        " is not complete: " + error.what());
    }
  }
}

std::string EventActions::WhyNoMorePrograms() {
  if (programs_.size() >= kMostPrograms) return std::to_string(kMostPrograms) + " programs still run.";
  std::erase_if(leftOpen_, [](const auto& output) { return output->HasEnded(); });
  if (leftOpen_.size() < kMostLeftOpen) return {};
  return std::to_string(kMostLeftOpen) +
         " programs have left others behind that still hold their output, as " + leftOpen_.back()->Program() +
         " has. Let what is to go on by itself write elsewhere, as by > /dev/null 2>&1.";
}

void EventActions::Start(const ProgramCall& call, const RaisedEvent& event) {
  if (const std::string reason = WhyNoMorePrograms(); !reason.empty()) {
    log_.Write(LogLevel::Warning,
               "Event " + event.EventID + ": " + call.Program + " was not started, since " + reason);
    return;
  }
  programs_.push_back(std::make_unique<ActionProgram>(call, event, log_));
  ActionProgram* const program = programs_.back().get();
  program->OnEnd = [this, program] { Drop(program); };
  program->Start();
}

void EventActions::Drop(ActionProgram* program) {
  const auto place = std::find_if(programs_.begin(), programs_.end(),
                                  [&](const auto& running) { return running.get() == program; });
  if (place == programs_.end()) return;
  leftOpen_.push_back(program->TakeOutput());
  place->release()->deleteLater();  // it is the caller
  programs_.erase(place);
  if (programs_.empty() && AllEnded) AllEnded();
}

}  // namespace keplo::host
