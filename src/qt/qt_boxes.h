#pragma once

#include "ui/boxes.h"

namespace keplo::qt {

/// The modal boxes as Qt dialogs over the active window. Texts are never interpreted as markup.
class QtBoxes : public ui::Boxes {
 public:
  /// One button, no icon.
  void Message(std::string_view text, std::string_view title) override;
  void Explain(std::string_view text, std::string_view title, std::string_view reason) override;
  void Error(std::string_view text, std::string_view title, std::string_view reason) override;
  bool Confirm(std::string_view text, std::string_view title) override;
  bool Question(std::string_view text, std::string_view title) override;
  std::string Input(std::string_view text, std::string_view title, std::string_view preset) override;
};

}  // namespace keplo::qt
