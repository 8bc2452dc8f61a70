#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "qt/qt_boxes.h"

namespace keplo::qt {
namespace {

/// Runs once the next box is open.
void WhenOpen(const std::function<void(QWidget& box)>& user) {
  QTimer::singleShot(0, qApp, [user] { user(*QApplication::activeModalWidget()); });
}

TEST(QtBoxes, AMessageHasOneButtonAndShowsTitleAndTextAsTheyAre) {
  WhenOpen([](QWidget& widget) {
    auto& box = dynamic_cast<QMessageBox&>(widget);
    EXPECT_EQ(box.text(), QStringLiteral("<b>one</b>\ntwo"));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    EXPECT_GT(box.width(), box.fontMetrics().horizontalAdvance(box.windowTitle()));
    QTest::keyClick(&box, Qt::Key_Return);
  });
  QtBoxes().Message("<b>one</b>\r\ntwo", "A title that is longer than the text");
  WhenOpen([](QWidget& box) {
    EXPECT_EQ(dynamic_cast<QMessageBox&>(box).informativeText(), QStringLiteral("POWER has it."));
    box.close();
  });
  QtBoxes().Explain("It is taken.", "Keplo", "POWER has it.");
}

TEST(QtBoxes, OnlyAnExplicitYesConfirmsAQuestion) {
  for (const auto& [key, answer] :
       {std::pair(Qt::Key_Y, true), {Qt::Key_Return, false}, {Qt::Key_Escape, false}}) {
    WhenOpen([pressed = key](QWidget& box) { QTest::keyClick(&box, pressed); });
    EXPECT_EQ(QtBoxes().Question("Delete it?", "Keplo"), answer);
  }
}

TEST(QtBoxes, InputStartsWithItsPresetAndIsEmptyAfterCancel) {
  for (const auto& [key, answer] : {std::pair(Qt::Key_Return, "POWER2"), {Qt::Key_Escape, ""}}) {
    WhenOpen([pressed = key](QWidget& box) {
      EXPECT_GT(box.width(), box.fontMetrics().horizontalAdvance(box.windowTitle()));
      auto* field = box.findChild<QLineEdit*>();
      field->end(false);
      QTest::keyClicks(field, QStringLiteral("2"));
      QTest::keyClick(field, pressed);
    });
    EXPECT_EQ(QtBoxes().Input("Name:", "A title that is longer than the text", "POWER"), answer);
  }
}

TEST(QtBoxes, ABoxDestroyedWithItsWindowIsRefused) {
  const std::vector<std::function<bool(QtBoxes&)>> asked = {
      [](QtBoxes& boxes) { return boxes.Question("?", "Keplo"); },
      [](QtBoxes& boxes) { return boxes.Confirm("?", "Keplo"); },
      [](QtBoxes& boxes) { return !boxes.Input("?", "Keplo", "POWER").empty(); },
  };
  for (const auto& ask : asked) {
    auto window = std::make_unique<QWidget>();
    window->show();
    QApplication::setActiveWindow(window.get());
    QTimer::singleShot(0, qApp, [&] { window.reset(); });
    QtBoxes boxes;
    EXPECT_FALSE(ask(boxes));
  }
}

TEST(QtBoxes, ALongPatternOrNameIsShownWhole) {
  for (const char letter : {'1', 'A'}) {
    WhenOpen([letter](QWidget& widget) {
      auto& box = dynamic_cast<QMessageBox&>(widget);
      EXPECT_LT(box.width(), box.screen()->availableGeometry().width()) << letter;
      const auto& label = *box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
      EXPECT_GE(label.height(), label.heightForWidth(label.width())) << letter;
      EXPECT_EQ(box.text().remove(QChar(0x200B)).count(QLatin1Char(letter)), 400);
      box.close();
    });
    QtBoxes().Question("It is:\r\nBITG= " + std::string(400, letter) + "\r\nBIT0= 0", "Keplo");
  }
}

}  // namespace
}  // namespace keplo::qt
