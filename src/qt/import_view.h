#pragma once

#include <QDialog>
#include <QTreeWidget>

#include "qt/model_link.h"
#include "window/import_dialog.h"

namespace keplo::qt {

/// The list of the keys of some files, with boxes to tick. The dialog outlives it.
class ImportView : public QDialog {
 public:
  ImportView(ImportDialog& dialog, QWidget* parent);

 private:
  void ShowRows();
  QLayout* Buttons();

  ImportDialog& dialog_;
  QTreeWidget* list_;
  bool showing_ = false;
  ModelLink rowsLink_, hideLink_;
};

}  // namespace keplo::qt
