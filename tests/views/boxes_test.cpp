#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "qt/qt_boxes.h"

namespace keplo::qt {
namespace {

/// Runs once the next box is open.
void WhenOpen(const std::function<void(QWidget& box)>& user) {
  QTimer::singleShot(0, qApp, [user] {
    QWidget* box = QApplication::activeModalWidget();
    ASSERT_NE(box, nullptr);
    user(*box);
  });
}

TEST(QtBoxes, AMessageHasOneButtonAndShowsItsTextAsItIs) {
  WhenOpen([](QWidget& widget) {
    auto& box = dynamic_cast<QMessageBox&>(widget);
    EXPECT_EQ(box.text(), QStringLiteral("<b>one</b>\ntwo"));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    EXPECT_GT(box.width(), box.fontMetrics().horizontalAdvance(box.windowTitle()))
        << "the title is seen whole";
    QTest::keyClick(&box, Qt::Key_Return);
  });
  QtBoxes().Message("<b>one</b>\r\ntwo", "A title that is longer than the text");
}

TEST(QtBoxes, OnlyYesAnswersAQuestion) {
  for (const auto& [key, answer] :
       {std::pair(Qt::Key_Y, true), {Qt::Key_Return, false}, {Qt::Key_Escape, false}}) {
    WhenOpen([pressed = key](QWidget& box) { QTest::keyClick(&box, pressed); });
    EXPECT_EQ(QtBoxes().Question("Delete it?", "Keplo"), answer);
  }
}

TEST(QtBoxes, InputStartsWithItsPresetAndIsEmptyAfterCancel) {
  for (const auto& [key, answer] : {std::pair(Qt::Key_Return, "POWER2"), {Qt::Key_Escape, ""}}) {
    WhenOpen([pressed = key](QWidget& box) {
      auto* field = box.findChild<QLineEdit*>();
      field->end(false);
      QTest::keyClicks(field, QStringLiteral("2"));
      QTest::keyClick(field, pressed);
    });
    EXPECT_EQ(QtBoxes().Input("Name:", "Save command", "POWER"), answer);
  }
}

}  // namespace
}  // namespace keplo::qt
