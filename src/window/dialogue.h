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
  Dialogue(ui::Boxes& boxes, CfgStore& store) : Boxes(boxes), store_(store) {}

  void Tell(std::string_view text) { Boxes.Message(text, kBoxTitle); }
  bool Ask(std::string_view text) { return Boxes.Question(text, kBoxTitle); }

  /// Runs a change of the configuration and tells the user what failed.
  /// @return true if nothing did
  bool Told(const std::function<void()>& action);
  /// The same for a change of the text.
  /// @return true if the text is another one now: a failure at the very end of a save leaves the new text in
  /// place, and the lists have to follow it
  bool Changed(const std::function<void()>& change);

  /// From here on failures are gathered, each text once.
  void GatherFailures() { gathered_.emplace(); }
  /// Tells in one box what was gathered, if anything was.
  void TellGathered();

  ui::Boxes& Boxes;

 private:
  void TellFailure(const std::string& text);

  CfgStore& store_;
  std::optional<std::string> gathered_;
};

}  // namespace keplo
