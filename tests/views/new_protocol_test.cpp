#include "window/new_protocol.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QWindow>

#include "looks.h"
#include "qt/form1_view.h"
#include "window/window_fixture.h"

namespace keplo::qt {
namespace {

class ProtocolDialogOnScreen : public tests::WindowTest {
 protected:
  ProtocolDialogOnScreen() {
    Open(tests::Config(tests::Protocol("Mine", {"G10,EMPTY"})));
    view_ = std::make_unique<Form1View>(*form_);
    view_->show();
  }

  static QWidget* Dialog() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == QLatin1String("NewProtocol") && window->isVisible()) return window;
    }
    return nullptr;
  }
  static QWidget& Open(const ui::MenuEntry& entry) {
    entry.Click();
    QApplication::setActiveWindow(Dialog());
    QCoreApplication::processEvents();
    return *Dialog();
  }
  using WindowTest::Open;

  static std::string Focus() { return QApplication::focusWidget()->objectName().toStdString(); }

  std::unique_ptr<Form1View> view_;
};

TEST_F(ProtocolDialogOnScreen, ReplacesTheWindowUntilItIsClosed) {
  const std::vector<std::pair<std::string, std::function<void(QWidget&)>>> ways = {
      {"Esc", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }},
      {"close box", [](QWidget& dialog) { dialog.close(); }},
      {"Save",
       [](QWidget& dialog) {
         QTest::keyClick(QApplication::focusWidget(), Qt::Key_D, Qt::AltModifier);
         QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("!"));
         QTest::mouseClick(dialog.findChild<QWidget*>(QStringLiteral("CreateButton")), Qt::LeftButton);
       }},
      {"closed window", [this](QWidget&) { form_->Form_Unload(); }},
  };
  for (const auto& [way, leave] : ways) {
    QWidget& dialog = Open(form_->EditMenu);
    EXPECT_FALSE(view_->isVisible()) << way;
    const QPoint place = view_->pos();
    view_->windowHandle()->setPosition(place + QPoint(50, 50));  // as a window manager does at will
    leave(dialog);
    EXPECT_TRUE(QTest::qWaitFor([] { return Dialog() == nullptr; }, 60'000)) << way;
    EXPECT_TRUE(view_->isVisible() && view_->pos() == place) << way;
  }
  EXPECT_NE(File().find("# made for a test!\r\n"), std::string::npos) << File();
}

TEST_F(ProtocolDialogOnScreen, IsAccessibleAndCanBeUsedByKeyboardAlone) {
  QWidget& dialog = Open(form_->FileNewMenu);
  EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("CProtIn"))->selectedText(),
            QStringLiteral("NewProtocol"));
  std::string walked;
  for (int step = 0; step < 11; ++step) {
    walked += Focus() + " ";
    QTest::keyClick(&dialog, Qt::Key_Tab);
  }
  EXPECT_EQ(walked,
            "CProtIn ProtDesc GProtoIn SendPlsIn RepeatIn GRepeatIn BitGIn Bit0In Bit1In CreateButton "
            "CancelButton ");
  QTest::keyClick(&dialog, Qt::Key_G, Qt::AltModifier);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
  EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("Bit1In"))->text(), QStringLiteral("011"));
  dialog.close();
  for (const auto& [fontScale, dark] : tests::kUsers) {
    const tests::UserLooks looks(fontScale, dark);
    EXPECT_EQ(tests::ComplaintsAbout(Open(form_->FileNewMenu)), tests::Texts{}) << fontScale << dark;
    Dialog()->close();
    QCoreApplication::processEvents();
  }
}

}  // namespace
}  // namespace keplo::qt
