#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ui/boxes.h"

namespace keplo::tests {

/// Boxes that write down what they show and answer from a script; questions are answered with yes.
class ScriptedBoxes : public ui::Boxes {
 public:
  std::vector<std::string> Shown, Reasons, Presets;
  std::deque<std::string> Names;  // for input boxes; Cancel when none is left
  bool Yes = true;
  std::function<void()> WhileOpen = [] {};

  void Message(std::string_view text, std::string_view title) override { Note(text, title); }
  void Explain(std::string_view text, std::string_view title, std::string_view reason) override {
    if (!reason.empty()) Reasons.emplace_back(reason);
    Note(text, title);
  }
  void Error(std::string_view text, std::string_view title, std::string_view reason) override {
    Explain("(error) " + std::string(text), title, reason);
  }
  bool Confirm(std::string_view text, std::string_view title) override { return Question(text, title); }
  bool Question(std::string_view text, std::string_view title) override {
    Note(text, title);
    return Yes;
  }
  std::string Input(std::string_view text, std::string_view title, std::string_view preset) override {
    Note(text, title);
    Presets.emplace_back(preset);
    if (Names.empty()) return {};
    std::string name = Names.front();
    Names.pop_front();
    return name;
  }
  std::vector<std::string> TakeShown() { return std::exchange(Shown, {}); }

 private:
  void Note(std::string_view text, std::string_view title) {
    Shown.push_back(title == "Keplo" ? std::string(text) : std::string(title) + ": " + std::string(text));
    WhileOpen();
  }
};

}  // namespace keplo::tests
