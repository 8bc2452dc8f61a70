#include "window/undo_step.h"

namespace keplo {

void UndoPlace::Remember(std::string before) {
  undo_.Remember(std::move(before));
  entry_.SetEnabled(undo_.CanUndo());
}

bool UndoPlace::TakeBack() {
  std::string whyNot;
  const bool changed = dialogue_.Changed([&] { whyNot = undo_.Undo(); });
  entry_.SetEnabled(undo_.CanUndo());
  if (!whyNot.empty()) dialogue_.Tell(whyNot);
  return changed && whyNot.empty();
}

}  // namespace keplo
