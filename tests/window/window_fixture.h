#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "doubles/fake_line.h"
#include "keplo_mod.h"
#include "signal/signal_builder.h"
#include "window/form1.h"

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

class SendingLine : public FakeLine {
 public:
  std::function<void()> WhileRecording = [] {};
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override {
    WhileRecording();
    return FakeLine::IRRecord(buffer, delay, limit);
  }

  std::string Sent;  // bytes of the last transmission
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override {
    Sent = bytes;
    FakeLine::IRSend(bytes, pulse, interfaceType);
  }
};

/// The stand-alone window over a file, a line and boxes.
class WindowTest : public ::testing::Test {
 protected:
  Form1& Open(const std::string& config) {
    form_.reset();
    disk_.Put("keplo.cfg", config);
    mod_ = std::make_unique<KeploMod>("/home", disk_);
    form_ = std::make_unique<Form1>(*mod_, line_, boxes_);
    EXPECT_TRUE(form_->Form_Load());
    line_.Calls.clear();
    return *form_;
  }

  std::string File() const { return disk_.Files()["keplo.cfg"]; }

  /// Records a press of a remote.
  void Record(const std::vector<int>& runs) {
    line_.Captures.push_back(Bytes(Runs(runs)));
    form_->RecButton.Click();
  }

  /// The colour that the code stands on.
  std::string CodeColour() const {
    const auto colour = form_->CodeStr.BackColour();
    if (!colour) return "plain";
    return colour == ui::kGreen ? "green" : "red";
  }

  FakeDisk disk_;
  SendingLine line_;
  ScriptedBoxes boxes_;
  std::unique_ptr<KeploMod> mod_;
  std::unique_ptr<Form1> form_;
};

/// Runs of two frames with a gap between.
inline std::vector<int> Joined(std::vector<int> runs, const std::vector<int>& behind) {
  runs.push_back(300);
  runs.insert(runs.end(), behind.begin(), behind.end());
  return runs;
}

/// Runs of a press whose frame comes as often as told.
inline std::vector<int> Frames(const std::vector<int>& frame, int count) {
  return count == 1 ? frame : Joined(frame, Frames(frame, count - 1));
}

using Texts = std::vector<std::string>;

}  // namespace keplo::tests
