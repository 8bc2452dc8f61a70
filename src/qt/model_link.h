#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace keplo::qt {

/// Ties a view to the change hook of a model for as long as both live, whichever goes first. A later view
/// of the same model takes the hook over, and the link of the earlier one ends.
class ModelLink {
 public:
  ModelLink(std::function<void()>& hook, std::function<void()> redraw) : hook_(hook) {
    const auto held = std::make_shared<std::function<void()>>(std::move(redraw));
    held_ = held;
    hook = [held] {
      // A share of its own, since the redraw may end the view, and this hook with it.
      (*std::shared_ptr(held))();
    };
  }
  ~ModelLink() {
    if (Alive()) hook_ = nullptr;
  }
  ModelLink(const ModelLink&) = delete;
  ModelLink& operator=(const ModelLink&) = delete;

  /// Whether the model is still there and still this view's.
  bool Alive() const { return !held_.expired(); }

 private:
  std::function<void()>& hook_;
  // The hook owns the redraw, so its end is the end of the model.
  std::weak_ptr<std::function<void()>> held_;
};

}  // namespace keplo::qt
