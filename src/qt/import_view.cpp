#include "qt/import_view.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

#include "qt/button_view.h"
#include "qt/caption_view.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

constexpr int kListLetters = 110, kListLines = 18;  // enough for most remotes
constexpr int kCodeLetters = 20;                    // initial width of the Code column at most

}  // namespace

ImportView::ImportView(ImportDialog& dialog, QWidget* parent)
    : QDialog(parent),
      dialog_(dialog),
      list_(new QTreeWidget(this)),
      rowsLink_(dialog.OnRowsChanged, [this] { ShowRows(); }),
      hideLink_(dialog.OnHide, [this] { accept(); }) {
  setObjectName(QStringLiteral("ImportDialog"));
  setWindowTitle(ShownText(dialog.Title()));
  QStringList headings;
  for (const std::string_view heading : ImportDialog::kHeadings) headings << ShownText(heading);
  list_->setHeaderLabels(headings);
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAccessibleName(QStringLiteral("Keys of the files"));
  for (std::size_t row = 0; row < dialog.Rows().size(); ++row) list_->addTopLevelItem(new QTreeWidgetItem);
  const QFontMetrics letters = list_->fontMetrics();
  list_->setMinimumSize(letters.averageCharWidth() * kListLetters / 2,
                        letters.lineSpacing() * kListLines / 2);
  auto* whole = new QVBoxLayout(this);
  whole->addWidget(list_, 1);
  auto* summary = new CaptionView(dialog.Summary, '\0', this);
  summary->setWordWrap(true);
  whole->addWidget(summary);
  whole->addLayout(Buttons());
  ShowRows();
  for (int column = 0; column < list_->columnCount(); ++column) list_->resizeColumnToContents(column);
  list_->setColumnWidth(2, std::min(list_->columnWidth(2), letters.averageCharWidth() * kCodeLetters));
  resize(letters.averageCharWidth() * kListLetters,
         letters.lineSpacing() * kListLines + sizeHint().height() / 2);
  connect(list_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
    if (showing_ || column != 0) return;
    const int row = list_->indexOfTopLevelItem(item);
    dialog_.Tick(static_cast<std::size_t>(row), item->checkState(0) == Qt::Checked);
  });
  if (list_->topLevelItemCount() > 0) list_->setCurrentItem(list_->topLevelItem(0));
  list_->setFocus();
}

void ImportView::ShowRows() {
  showing_ = true;
  for (int at = 0; at < list_->topLevelItemCount(); ++at) {
    const ImportDialog::Row& row = dialog_.Rows()[static_cast<std::size_t>(at)];
    QTreeWidgetItem& item = *list_->topLevelItem(at);
    item.setText(0, ShownText(row.Key));
    item.setText(1, ShownText(row.Command));
    item.setText(2, ShownText(row.Code));
    item.setText(3, ShownText(row.Fate));
    item.setToolTip(3, ShownText(row.Fate));
    item.setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable |
                  (row.CanTick ? Qt::ItemIsUserCheckable : Qt::NoItemFlags));
    item.setCheckState(0, row.Ticked ? Qt::Checked : Qt::Unchecked);
    item.setDisabled(!row.CanTick);
  }
  showing_ = false;
}

QLayout* ImportView::Buttons() {
  auto* buttons = new QHBoxLayout;
  auto* all = new ButtonView(dialog_.AllButton, ShownCaption("All", 'A'), this);
  auto* none = new ButtonView(dialog_.NoneButton, ShownCaption("None", 'N'), this);
  auto* import = new ButtonView(dialog_.ImportButton, ShownCaption("Import", 'I'), this);
  auto* cancel = new ButtonView(dialog_.CancelButton, ShownCaption("Cancel", 'C'), this);
  import->setDefault(true);
  for (ButtonView* button : {all, none, import, cancel}) {
    button->setMinimumSize(button->fontMetrics().averageCharWidth() * 12, button->fontMetrics().height() * 2);
    if (button == import) buttons->addStretch(1);
    buttons->addWidget(button);
  }
  return buttons;
}

}  // namespace keplo::qt
