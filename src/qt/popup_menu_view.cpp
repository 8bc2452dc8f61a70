#include "qt/popup_menu_view.h"

#include "qt/text.h"

namespace keplo::qt {

namespace {

/// The first letter of a caption that is not the access key of an entry above it.
char FreeAccessKey(const std::string& caption, QString& takenKeys) {
  for (const char letter : caption) {
    if (!takenKeys.contains(QLatin1Char(letter), Qt::CaseInsensitive)) {
      takenKeys += QLatin1Char(letter);
      return letter;
    }
  }
  return '\0';
}

}  // namespace

PopupMenuView::PopupMenuView(ui::PopupMenu& model, QWidget* parent)
    : QMenu(parent), model_(model), link_(model.OnPopUp, [this] { PopUp(); }) {}

void PopupMenuView::PopUp() {
  clear();
  QString takenKeys;
  for (std::size_t index = 0; index < model_.Items.size(); ++index) AddEntry(index, takenKeys);
  popup(Position);
}

void PopupMenuView::AddEntry(std::size_t index, QString& takenKeys) {
  const ui::MenuItem& item = model_.Items[index];
  if (item.Caption == "-") {
    addSeparator();
    return;
  }
  QAction* entry = addAction(ShownCaption(item.Caption, FreeAccessKey(item.Caption, takenKeys)));
  entry->setObjectName(ShownText(item.Name));
  connect(entry, &QAction::triggered, this, [this, index] {
    if (link_.Alive() && model_.Items[index].OnClick) model_.Items[index].OnClick();
  });
}

}  // namespace keplo::qt
