#pragma once

#include <string>
#include <string_view>

namespace keplo::ui {

/// The modal boxes of the user dialogue. A run without a display answers as a cancel.
class Boxes {
 public:
  virtual ~Boxes() = default;
  /// Shows a text with only an OK button and waits for it.
  virtual void Message(std::string_view text, std::string_view title) = 0;
  /// The same with a reason.
  /// @param reason shown below the text; may be empty
  virtual void Explain(std::string_view text, std::string_view title, std::string_view reason) {
    Message(reason.empty() ? std::string(text) : std::string(text).append("\r\n").append(reason), title);
  }
  /// The same with an error icon.
  virtual void Error(std::string_view text, std::string_view title, std::string_view reason) = 0;
  /// Offers OK and Cancel.
  /// @return true for OK
  virtual bool Confirm(std::string_view text, std::string_view title) = 0;
  /// Enter alone answers no, so that nothing is lost by a stroke too many.
  /// @return true for yes
  virtual bool Question(std::string_view text, std::string_view title) = 0;
  /// @return the answer; empty after Cancel
  virtual std::string Input(std::string_view text, std::string_view title, std::string_view preset) = 0;
};

}  // namespace keplo::ui
