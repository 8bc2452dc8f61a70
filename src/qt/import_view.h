#pragma once

#include <QDialog>
#include <QTreeWidget>

#include "qt/model_link.h"
#include "window/import_dialog.h"

namespace keplo::qt {

/// The view of the import dialog: a list of keys with check boxes. The dialog must outlive it.
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
