#pragma once

#include <iostream>

#include "shell/frm_event.h"
#include "ui/boxes.h"

namespace keplo {

/// Boxes where there is no display: texts go to standard error, questions are answered as by Cancel.
class QuietBoxes : public ui::Boxes {
 public:
  void Message(std::string_view text, std::string_view title) override {
    std::cerr << title << ": " << text << '\n';
  }
  void Error(std::string_view text, std::string_view title) override { Message(text, title); }
  bool Confirm(std::string_view /*text*/, std::string_view /*title*/) override { return false; }
  bool Question(std::string_view /*text*/, std::string_view /*title*/) override { return false; }
  std::string Input(std::string_view /*text*/, std::string_view /*title*/,
                    std::string_view /*preset*/) override {
    return {};
  }
};

/// The event dialog where there is no display: as after a cancel.
class NoEventDialog : public EventDialogShower {
 public:
  void ShowModal(frmEvent& /*dialog*/) override {}
};

}  // namespace keplo
