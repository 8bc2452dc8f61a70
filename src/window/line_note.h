#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "config/cfg_text.h"
#include "ui/label.h"

namespace keplo {

/// The window's note about the line: messages of the line, other remarks, and a description of the line.
class LineNote {
 public:
  /// @param describe describes the line in a sentence; may be empty, and may be set later
  LineNote(ui::Label& note, const std::function<std::string()>& describe)
      : note_(note), describe_(describe) {}

  /// Call this before using the line: messages that it writes to the note until Show, such as why a signal
  /// was not sent, are kept.
  void KeepLineMessages() {
    note_.SetText({});
    keepsMessages_ = true;
  }

  /// Shows the messages of the line, a remark, and the description of the line.
  void Show(std::string_view remark = {}) {
    const std::string messages = std::exchange(keepsMessages_, false) ? note_.Text() : std::string();
    std::string text;
    for (const std::string_view part : {std::string_view(messages), remark}) {
      if (!part.empty()) text.append(part).append(" ");
    }
    if (describe_) text += describe_();
    note_.SetText(std::string(Trimmed(text)));
  }

 private:
  bool keepsMessages_ = false;
  ui::Label& note_;
  const std::function<std::string()>& describe_;
};

}  // namespace keplo
