#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace keplo::ui {

struct Colour {
  std::uint8_t Red, Green, Blue;
  bool operator==(const Colour&) const = default;
};

inline constexpr Colour kGreen{0, 255, 0};
inline constexpr Colour kRed{255, 0, 0};

/// A text field with a back colour; none is the toolkit's own.
class Label {
 public:
  explicit Label(std::string_view text = {}) : text_(text) {}

  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) {
    if (text == text_) return;
    text_ = text;
    if (OnChanged) OnChanged();
  }

  std::optional<Colour> BackColour() const { return backColour_; }
  void SetBackColour(std::optional<Colour> colour) {
    if (colour == backColour_) return;
    backColour_ = colour;
    if (OnChanged) OnChanged();
  }

  /// Runs after a change; a view redraws there.
  std::function<void()> OnChanged;

 private:
  std::string text_;
  std::optional<Colour> backColour_;
};

}  // namespace keplo::ui
