#pragma once

#include <QMenu>

#include "qt/model_link.h"
#include "ui/menu.h"

namespace keplo::qt {

/// The view of a pop-up menu.
class PopupMenuView : public QMenu {
 public:
  PopupMenuView(ui::PopupMenu& model, QWidget* parent);

  /// Where the menu will appear, in screen coordinates.
  QPoint Position;

 private:
  void PopUp();
  void AddEntry(std::size_t index, QString& takenKeys);

  ui::PopupMenu& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
