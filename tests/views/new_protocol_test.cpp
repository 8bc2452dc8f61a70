#include "window/new_protocol.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "looks.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"
#include "window/window_fixture.h"

namespace keplo::qt {
namespace {

using Texts = std::vector<std::string>;

class ProtocolDialogOnScreen : public tests::WindowTest {
 protected:
  ProtocolDialogOnScreen() {
    Open(tests::Config(tests::Protocol("Mine", {"G10,EMPTY"})));
    view_ = std::make_unique<Form1View>(*form_);
    view_->show();
  }

  /// Opens the dialog.
  QWidget& Edit() { return Shown(form_->EditMenu); }
  QWidget& New() { return Shown(form_->FileNewMenu); }

  static QWidget* Dialog() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == QLatin1String("NewProtocol") && window->isVisible()) return window;
    }
    return nullptr;
  }

  static std::string Focus() { return QApplication::focusWidget()->objectName().toStdString(); }

  std::unique_ptr<Form1View> view_;

 private:
  static QWidget& Shown(const ui::MenuEntry& entry) {
    entry.Click();
    QApplication::setActiveWindow(Dialog());
    QCoreApplication::processEvents();
    return *Dialog();
  }
};

TEST_F(ProtocolDialogOnScreen, StandsInThePlaceOfTheWindowUntilItIsLeft) {
  const std::vector<std::pair<std::string, std::function<void(QWidget&)>>> ways = {
      {"Esc", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }},
      {"close box", [](QWidget& dialog) { dialog.close(); }},
      {"Cancel", [](QWidget&) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::AltModifier); }},
      {"Save",
       [](QWidget& dialog) {
         QTest::keyClick(QApplication::focusWidget(), Qt::Key_D, Qt::AltModifier);
         QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("!"));
         QTest::mouseClick(dialog.findChild<QWidget*>(QStringLiteral("CreateButton")), Qt::LeftButton);
       }},
      {"closed window", [this](QWidget&) { form_->Form_Unload(); }},
  };
  for (const auto& [way, leave] : ways) {
    QWidget& dialog = Edit();
    EXPECT_FALSE(view_->isVisible()) << way;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Protocol Parameters"));
    leave(dialog);
    EXPECT_TRUE(QTest::qWaitFor([] { return Dialog() == nullptr; })) << way;
    EXPECT_TRUE(view_->isVisible()) << way;
  }
  EXPECT_NE(File().find("# made for a test!\r\n"), std::string::npos) << File();
}

TEST_F(ProtocolDialogOnScreen, TakesItsQuestionAlongWhenTheWindowCloses) {
  QtBoxes boxes;
  view_.reset();
  form_ = std::make_unique<Form1>(*mod_, line_, boxes);
  ASSERT_TRUE(form_->Form_Load());
  view_ = std::make_unique<Form1View>(*form_);
  const std::string before = File();
  QWidget& dialog = New();
  QTimer::singleShot(0, qApp, [&] {
    EXPECT_NE(dynamic_cast<QMessageBox*>(QApplication::activeModalWidget()), nullptr);
    form_->Form_Unload();
  });
  QTest::mouseClick(dialog.findChild<QWidget*>(QStringLiteral("CreateButton")), Qt::LeftButton);
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_EQ(File(), before);
}

TEST_F(ProtocolDialogOnScreen, IsWorkedByKeysAlone) {
  QWidget& dialog = New();
  EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("CProtIn"))->selectedText(),
            QStringLiteral("NewProtocol"));
  Texts walked;
  for (int step = 0; step < 11; ++step) {
    walked.push_back(Focus());
    QTest::keyClick(&dialog, Qt::Key_Tab);
  }
  EXPECT_EQ(walked, (Texts{"CProtIn", "ProtDesc", "GProtoIn", "SendPlsIn", "RepeatIn", "GRepeatIn", "BitGIn",
                           "Bit0In", "Bit1In", "CreateButton", "CancelButton"}));
  QTest::keyClick(&dialog, Qt::Key_G, Qt::AltModifier);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
  EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("Bit1In"))->text(), QStringLiteral("011"));
}

TEST_F(ProtocolDialogOnScreen, IsWholeAndReadableForEveryUser) {
  for (const double fontScale : {1.0, 2.0}) {
    for (const bool dark : {false, true}) {
      const tests::UserLooks looks(fontScale, dark);
      QWidget& dialog = New();
      EXPECT_EQ(tests::ClippedIn(dialog), Texts{}) << fontScale;
      EXPECT_EQ(tests::FaintIn(dialog), Texts{}) << (dark ? "dark" : "light");
      EXPECT_EQ(tests::NamelessIn(dialog), Texts{});
      dialog.close();
      QCoreApplication::processEvents();
    }
  }
}

TEST(QtBoxes, ABoxThatGoesWithItsWindowIsRefused) {
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

TEST(QtBoxes, ALongPatternIsShownWhole) {
  QTimer::singleShot(0, qApp, [] {
    auto& box = dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget());
    EXPECT_LT(box.width(), box.screen()->availableGeometry().width());
    const auto& label = *box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    EXPECT_GE(label.height(), label.heightForWidth(label.width()));
    EXPECT_EQ(box.text().remove(QChar(0x200B)).count(QLatin1Char('1')), 400);
    box.close();
  });
  QtBoxes().Question("The new parameters are:\r\nBITG= " + std::string(400, '1') + "\r\nBIT0= 0", "Keplo");
}

}  // namespace
}  // namespace keplo::qt
