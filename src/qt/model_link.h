#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace keplo::qt {

/// Connects a view to a change hook of its model until either is destroyed. A later view of the same model
/// replaces the earlier one, whose link ends.
class ModelLink {
 public:
  ModelLink(std::function<void()>& hook, std::function<void()> redraw) : hook_(hook) {
    const auto held = std::make_shared<std::function<void()>>(std::move(redraw));
    held_ = held;
    hook = [held] {
      // Keeps the function alive, since the redraw may destroy the view and this hook.
      (*std::shared_ptr(held))();
    };
  }
  ~ModelLink() {
    if (Alive()) hook_ = nullptr;
  }
  ModelLink(const ModelLink&) = delete;
  ModelLink& operator=(const ModelLink&) = delete;

  /// Whether the model still exists and is still connected to this view.
  bool Alive() const { return !held_.expired(); }

 private:
  std::function<void()>& hook_;
  // Owned by the hook, and so by the model.
  std::weak_ptr<std::function<void()>> held_;
};

}  // namespace keplo::qt
