#pragma once

#include <QMenuBar>
#include <deque>

#include "qt/model_link.h"
#include "window/form1.h"

namespace keplo::qt {

/// The main window's menu bar. Entries without a handler are disabled.
class MenuBarView : public QMenuBar {
 public:
  MenuBarView(Form1& form, QWidget* parent);

 private:
  void AddEntry(QMenu& menu, const MenuRow& row, ui::MenuEntry& entry);

  std::deque<ModelLink> links_;
};

}  // namespace keplo::qt
