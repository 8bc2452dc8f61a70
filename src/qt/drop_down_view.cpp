#include "qt/drop_down_view.h"

#include <QAbstractItemView>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

DropDownView::DropDownView(ui::DropDownList& model, QWidget* parent)
    : QComboBox(parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  Redraw();
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (!link_.Alive()) return;
    const QPointer<DropDownView> self(this);
    changed_ = true;
    model_.Select(index);
    // A change that no click has made is told by no activation.
    if (self) QTimer::singleShot(0, this, [this] { changed_ = false; });
  });
  connect(this, &QComboBox::activated, this, [this](int index) {
    const bool told = std::exchange(changed_, false);
    if (!told && link_.Alive()) model_.Pick(index);
  });
}

void DropDownView::Redraw() {
  const QSignalBlocker ownChangesOnly(this);
  const std::vector<std::string>& entries = model_.Entries();
  const bool onlyAdded =
      shown_.size() <= entries.size() && std::equal(shown_.begin(), shown_.end(), entries.begin());
  if (!onlyAdded) {
    clear();
    shown_.clear();
  }
  while (shown_.size() < entries.size()) {
    shown_.push_back(entries[shown_.size()]);
    addItem(ShownText(shown_.back()));
  }
  setCurrentIndex(model_.ListIndex());  // adding to an empty combo box selects its first entry
  setPalette(PaletteOf(model_, QPalette::Button, QPalette::ButtonText));
  ShowState(*this, model_);
}

void DropDownView::showPopup() {
  view()->setMinimumWidth(view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width());
  QComboBox::showPopup();
}

}  // namespace keplo::qt
