#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "doubles/fake_line.h"
#include "doubles/scripted_boxes.h"
#include "keplo_mod.h"
#include "signal/signal_builder.h"
#include "window/form1.h"

namespace keplo::tests {

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

  /// The background colour of the code.
  std::string CodeColour() const {
    const auto colour = form_->CodeStr.BackColour();
    if (!colour) return "plain";
    return colour == ui::kGreen ? "green" : "red";
  }

  FakeDisk disk_;
  FakeLine line_;
  ScriptedBoxes boxes_;
  std::unique_ptr<KeploMod> mod_;
  std::unique_ptr<Form1> form_;
};

/// Runs of two frames with a gap between.
inline std::vector<int> Joined(std::vector<int> runs, const std::vector<int>& following) {
  runs.push_back(300);
  runs.insert(runs.end(), following.begin(), following.end());
  return runs;
}

/// Runs of a press with a number of frames.
inline std::vector<int> Frames(const std::vector<int>& frame, int count) {
  return count == 1 ? frame : Joined(frame, Frames(frame, count - 1));
}

}  // namespace keplo::tests
