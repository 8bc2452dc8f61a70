#pragma once

#include "config/store_undo.h"
#include "ui/menu_entry.h"
#include "window/dialogue.h"

namespace keplo {

/// The changes of the file since the window was opened, which the user can undo one by one.
class UndoHistory {
 public:
  /// @param entry of the menu; enabled while there is a change to undo
  UndoHistory(CfgStore& store, ui::MenuEntry& entry, Dialogue& dialogue)
      : undo_(store), entry_(entry), dialogue_(dialogue) {
    entry_.SetEnabled(false);
  }

  /// @return false, after a message, if nothing was undone
  bool Undo();

 private:
  friend class UndoStep;
  void End();

  StoreUndo undo_;
  ui::MenuEntry& entry_;
  Dialogue& dialogue_;
};

/// Records all changes during its lifetime as one step that the user can undo.
class UndoStep {
 public:
  explicit UndoStep(UndoHistory& place) : place_(place) { place_.undo_.Begin(); }
  ~UndoStep() { place_.End(); }
  UndoStep(const UndoStep&) = delete;
  UndoStep& operator=(const UndoStep&) = delete;

 private:
  UndoHistory& place_;
};

}  // namespace keplo
