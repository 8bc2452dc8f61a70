#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "config/cfg_text.h"
#include "ui/label.h"

namespace keplo {

/// The window's line of text: what the line is, and what has become of it.
class LineNote {
 public:
  /// @param describe the line as it is now, in a sentence; may be empty, and may change
  LineNote(ui::Label& note, const std::function<std::string()>& describe)
      : note_(note), describe_(describe) {}

  /// From here on the line is at work. What it tells of that meanwhile, such as why a signal did not go out,
  /// stays ahead of what is shown.
  void Listen() {
    note_.SetText({});
    listens_ = true;
  }

  /// @param ahead what there is to say besides
  void Show(std::string_view ahead = {}) {
    const std::string told = std::exchange(listens_, false) ? note_.Text() : std::string();
    std::string text;
    for (const std::string_view part : {std::string_view(told), ahead}) {
      if (!part.empty()) text.append(part).append(" ");
    }
    if (describe_) text += describe_();
    note_.SetText(std::string(Trimmed(text)));
  }

 private:
  bool listens_ = false;
  ui::Label& note_;
  const std::function<std::string()>& describe_;
};

}  // namespace keplo
