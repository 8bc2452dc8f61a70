#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "ui/boxes.h"

namespace keplo {

/// Title of the boxes that have none of their own.
inline constexpr std::string_view kBoxTitle = "Keplo";

/// What the window and its flows tell the user and ask of them.
class Dialogue {
 public:
  Dialogue(ui::Boxes& boxes, CfgStore& store) : boxes_(boxes), store_(store) {}

  /// @param reason shown below the text; may be empty
  void Tell(std::string_view text, std::string_view reason = {}, std::string_view title = kBoxTitle);
  /// Tells what ends the window.
  void TellError(std::string_view text, std::string_view reason);
  bool Ask(std::string_view text);
  bool Confirm(std::string_view text, std::string_view title);
  /// @return the answer; empty after Cancel
  std::string Input(std::string_view text, std::string_view title, std::string_view preset);

  /// Whether a box waits for its answer. Timers go on meanwhile, and what the box is about must stay.
  bool IsOpen() const { return open_ > 0; }

  /// Runs a change of the configuration and tells the user what failed.
  /// @return true if nothing did
  bool RunAndReport(const std::function<void()>& action);
  /// The same for a change of the text.
  /// @return true if the text is another one now, which the lists have to follow: a change may refuse, and a
  /// failure at the very end of a save leaves the new text in place
  bool ChangeAndReport(const std::function<void()>& change);

  /// From here on failures are gathered, each text once.
  void GatherFailures() { gathered_.emplace(); }
  /// Tells in one box what was gathered, if anything was.
  void TellGathered();

 private:
  class OpenBox;
  void TellFailure(const std::string& text);

  ui::Boxes& boxes_;
  CfgStore& store_;
  std::optional<std::string> gathered_;
  int open_ = 0;
};

}  // namespace keplo
