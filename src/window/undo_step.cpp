#include "window/undo_step.h"

#include <string>

namespace keplo {

void UndoHistory::End() {
  undo_.End();
  entry_.SetEnabled(undo_.CanUndo());
}

bool UndoHistory::Undo() {
  std::string whyNot;
  const bool changed = dialogue_.ChangeAndReport([&] { whyNot = undo_.Undo(); });
  entry_.SetEnabled(undo_.CanUndo());
  if (!whyNot.empty()) dialogue_.Tell(whyNot);
  return changed && whyNot.empty();
}

}  // namespace keplo
