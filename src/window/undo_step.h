#pragma once

#include "config/store_undo.h"
#include "ui/menu_entry.h"
#include "window/dialogue.h"

namespace keplo {

/// The changes of the file since the window was opened, which the user can take back one by one.
class UndoPlace {
 public:
  /// @param entry of the menu; it can be used while there is a change to take back
  UndoPlace(CfgStore& store, ui::MenuEntry& entry, Dialogue& dialogue)
      : undo_(store), entry_(entry), dialogue_(dialogue) {
    entry_.SetEnabled(false);
  }

  /// @return false, after a message, if nothing was taken back
  bool TakeBack();

 private:
  friend class UndoStep;
  void End();

  StoreUndo undo_;
  ui::MenuEntry& entry_;
  Dialogue& dialogue_;
};

/// A change of the file with its save and what stays in memory: once this object is gone, the user can take
/// all of it back in one step.
class UndoStep {
 public:
  explicit UndoStep(UndoPlace& place) : place_(place) { place_.undo_.Begin(); }
  ~UndoStep() { place_.End(); }
  UndoStep(const UndoStep&) = delete;
  UndoStep& operator=(const UndoStep&) = delete;

 private:
  UndoPlace& place_;
};

}  // namespace keplo
