#pragma once

#include <QLineEdit>

#include "qt/model_link.h"
#include "ui/label.h"

namespace keplo::qt {

/// A boxed label whose text may be longer than the box: it can be scrolled, selected and copied, and the tip
/// shows all of it. It looks like the other boxed labels, not like an input field.
class LongLabelView : public QLineEdit {
 public:
  /// @param tip describes the field; shown before the text in the tip
  LongLabelView(ui::Label& model, const QString& tip, QWidget* parent);

 protected:
  bool event(QEvent* event) override;
  void initStyleOption(QStyleOptionFrame* option) const override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void Redraw();

  ui::Label& model_;
  QString tip_;
  ModelLink link_;
};

}  // namespace keplo::qt
