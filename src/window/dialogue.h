#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "ui/boxes.h"

namespace keplo {

/// Default title of message boxes.
inline constexpr std::string_view kBoxTitle = "Keplo";

/// The messages and questions of the window and its flows.
class Dialogue {
 public:
  Dialogue(ui::Boxes& boxes, CfgStore& store) : boxes_(boxes), store_(store) {}

  /// @param reason shown below the text; may be empty
  void Tell(std::string_view text, std::string_view reason = {}, std::string_view title = kBoxTitle);
  /// Reports an error that ends the window.
  void ReportError(std::string_view text, std::string_view reason);
  bool Ask(std::string_view text);
  bool Confirm(std::string_view text, std::string_view title);
  /// @return the answer; empty if the user cancelled
  std::string Input(std::string_view text, std::string_view title, std::string_view preset);

  /// Whether a box is open. Timers continue meanwhile, but must not change what the box is about.
  bool IsOpen() const { return open_ > 0; }

  /// Runs a change of the configuration and reports failures to the user.
  /// @return false if there was one
  bool RunAndReport(const std::function<void()>& action);
  /// Like RunAndReport.
  /// @return whether the text has changed, so that lists need refreshing: a change may refuse to do anything,
  /// and a failure at the very end of a save leaves the new text in place
  bool ChangeAndReport(const std::function<void()>& change);

  /// From now on, collects failures, without duplicates, instead of showing them.
  void CollectFailures() { collected_.emplace(); }
  /// Shows the collected failures, if any, in one box.
  void ReportCollected();

 private:
  class OpenBox;
  void ReportFailure(const std::string& text);

  ui::Boxes& boxes_;
  CfgStore& store_;
  std::optional<std::string> collected_;
  int open_ = 0;
};

}  // namespace keplo
