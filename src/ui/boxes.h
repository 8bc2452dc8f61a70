#pragma once

#include <string>
#include <string_view>

namespace keplo::ui {

/// Modal message and input boxes. Without a display they act as if the user cancelled.
class Boxes {
 public:
  virtual ~Boxes() = default;
  /// Shows a text with an OK button and waits for the user.
  virtual void Message(std::string_view text, std::string_view title) = 0;
  /// Like Message, with a reason.
  /// @param reason shown below the text; may be empty
  virtual void Explain(std::string_view text, std::string_view title, std::string_view reason) {
    Message(reason.empty() ? std::string(text) : std::string(text).append("\r\n").append(reason), title);
  }
  /// Like Explain, with an error icon.
  virtual void Error(std::string_view text, std::string_view title, std::string_view reason) = 0;
  /// Offers OK and Cancel.
  /// @return true for OK
  virtual bool Confirm(std::string_view text, std::string_view title) = 0;
  /// Offers Yes and No. No is the default, so that an accidental Enter does no harm.
  /// @return true for yes
  virtual bool Question(std::string_view text, std::string_view title) = 0;
  /// @return the answer; empty if the user cancelled
  virtual std::string Input(std::string_view text, std::string_view title, std::string_view preset) = 0;
};

}  // namespace keplo::ui
