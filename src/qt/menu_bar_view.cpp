#include "qt/menu_bar_view.h"

#include "qt/text.h"

namespace keplo::qt {

namespace {

void ShowEntry(QAction& action, const ui::MenuEntry& entry) {
  action.setVisible(entry.Visible());
  action.setEnabled(entry.Enabled() && entry.OnClick != nullptr);
  action.setCheckable(entry.Checked());
  action.setChecked(entry.Checked());
}

}  // namespace

MenuBarView::MenuBarView(Form1& form, QWidget* parent) : QMenuBar(parent) {
  setNativeMenuBar(false);  // the layout below depends on its height
  for (const MenuColumn& column : Menus()) {
    QMenu* menu = addMenu(ShownText(column.Caption));
    menu->setObjectName(ShownText(column.Name));
    for (const MenuRow& row : column.Entries) {
      if (row.Model == nullptr) {
        menu->addSeparator()->setObjectName(ShownText(row.Name));
      } else {
        AddEntry(*menu, row, form.*row.Model);
      }
    }
  }
}

void MenuBarView::AddEntry(QMenu& menu, const MenuRow& row, ui::MenuEntry& entry) {
  QAction* action = menu.addAction(ShownText(row.Caption));
  action->setObjectName(ShownText(row.Name));
  action->setShortcut(QKeySequence(ShownText(row.Shortcut)));
  links_.emplace_back(entry.OnChanged, [action, &entry] { ShowEntry(*action, entry); });
  ShowEntry(*action, entry);
  connect(action, &QAction::triggered, this, [action, &entry, &link = links_.back()] {
    if (!link.Alive()) return;
    action->setChecked(entry.Checked());  // only the model sets the mark
    entry.Click();
  });
}

}  // namespace keplo::qt
