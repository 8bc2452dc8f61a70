#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "ui/label.h"

namespace keplo {

/// The window's line of text: what the line is, and what has become of it.
class LineNote {
 public:
  /// @param describe the line as it is now, in a sentence; may be empty, and may change
  LineNote(ui::Label& note, const std::function<std::string()>& describe)
      : note_(note), describe_(describe) {}

  /// @param ahead what there is to say besides
  void Show(std::string_view ahead = {}) {
    std::string text(ahead);
    const std::string line = describe_ ? describe_() : std::string();
    if (!text.empty() && !line.empty()) text += ' ';
    note_.SetText(text + line);
  }

 private:
  ui::Label& note_;
  const std::function<std::string()>& describe_;
};

}  // namespace keplo
