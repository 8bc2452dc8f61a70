#pragma once

#include <string>

#include "shell/frm_event.h"
#include "station/log.h"
#include "ui/boxes.h"

namespace keplo {

/// Boxes for use without a display: their texts are logged, and they act as if the user cancelled.
class LoggedBoxes : public ui::Boxes {
 public:
  explicit LoggedBoxes(const Log& log) : log_(log) {}

  void Message(std::string_view text, std::string_view title) override { Write("", text, title); }
  void Error(std::string_view text, std::string_view title, std::string_view reason) override {
    Message(text, title);
    if (!reason.empty()) Message(reason, title);
  }
  bool Confirm(std::string_view text, std::string_view title) override { return Question(text, title); }
  bool Question(std::string_view text, std::string_view title) override {
    Write("No display, so the answer is no: ", text, title);
    return false;
  }
  std::string Input(std::string_view text, std::string_view title, std::string_view /*preset*/) override {
    Write("No display, so there is no answer: ", text, title);
    return {};
  }

 private:
  void Write(const std::string& remark, std::string_view text, std::string_view title) {
    log_.Write(LogLevel::Notice, std::string(title) + ": " + remark + std::string(text));
  }

  const Log& log_;
};

/// The event dialog for use without a display: it counts as cancelled.
class CancelledEventDialog : public EventDialogShower {
 public:
  explicit CancelledEventDialog(const Log& log) : log_(log) {}

  void ShowModal(frmEvent& /*dialog*/) override {
    log_.Write(LogLevel::Warning, "The event dialog needs a display; it counts as cancelled.");
  }

 private:
  const Log& log_;
};

}  // namespace keplo
