#include "qt/control_view.h"

#include <QScrollBar>
#include <QTest>

#include "looks.h"
#include "shell/shell_fixture.h"

namespace keplo::qt {
namespace {

using Texts = std::vector<std::string>;

class ControlOnScreen : public tests::ShellTest {
 protected:
  void SetUp() override {
    WriteConfig({}, tests::ProtocolSection("NEC", "G1010,POWER\r\n"));
    WriteEvents({{"1", "Lamp", "in the hall", "NEC&POWER", true, 0},
                 {"2", "Fan", "in the attic", "NEC&POWER", true, 3}});
  }

  ControlView& Show() {
    view_ = std::make_unique<ControlView>(Start(), nullptr);
    view_->resize(view_->sizeHint());
    view_->show();
    QApplication::setActiveWindow(view_.get());
    QCoreApplication::processEvents();
    return *view_;
  }

  QTreeView& List() { return *view_->findChild<QTreeView*>(QStringLiteral("ListView1")); }

  QPoint Row(int number) { return List().visualRect(List().model()->index(number - 1, 0)).center(); }

  void Press(Qt::MouseButton button, const QPoint& place) {
    QTest::mousePress(List().viewport(), button, {}, place);
  }

  static Texts Entries(const QMenu& menu) {
    Texts entries;
    for (const QAction* action : menu.actions()) {
      entries.push_back(
          action->isSeparator() ? "-" : QString(action->text()).remove(QLatin1Char('&')).toStdString());
    }
    return entries;
  }

  static QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

  std::unique_ptr<ControlView> view_;
};

TEST_F(ControlOnScreen, ShowsThePanelAsItsModelHasIt) {
  ControlView& view = Show();
  const auto shown = [&](const char* name) {
    return view.findChild<QLabel*>(QLatin1String(name))->text().toStdString();
  };
  EXPECT_EQ(shown("CtlComPort"), "COM 1");
  EXPECT_EQ(shown("CtlPortStatus"), "AVAILABLE");
  EXPECT_EQ(shown("RcvActivated"), "YES");
  control_->InputStopMonitoring();
  EXPECT_EQ(shown("RcvActivated"), "NO");
}

TEST_F(ControlOnScreen, ARightPressOpensTheMenuWhichDisablesTheEventUnderIt) {
  Show();
  Press(Qt::RightButton, Row(2));
  QMenu* menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(Entries(*menu), (Texts{"Enable", "Disable", "-", "Help"}));
  EXPECT_EQ(menu->pos(), List().viewport()->mapToGlobal(Row(2)));

  QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[1]).center());
  EXPECT_EQ(control_->ListView1.Text(2, 3), "False");
  QCoreApplication::processEvents();
  EXPECT_EQ(List().model()->index(1, 3).data().toString(), QStringLiteral("False"));
}

TEST_F(ControlOnScreen, DoesEverythingByKeyboard) {
  for (const auto& [key, modifiers] :
       {std::pair(Qt::Key_Menu, Qt::NoModifier), {Qt::Key_F10, Qt::ShiftModifier}}) {
    ControlView& view = Show();
    view.setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    ASSERT_NE(OpenMenu(), nullptr);
    QTest::keyClick(OpenMenu(), Qt::Key_D);
    EXPECT_EQ(control_->ListView1.Text(1, 3), "True");
    EXPECT_EQ(control_->ListView1.Text(2, 3), "False");
    EXPECT_EQ(OpenMenu(), nullptr);
    control_->EnableMenu_Click();
  }
}

TEST_F(ControlOnScreen, OpensTheMenuOnAnEmptyListAndOnNoOtherButton) {
  Show();
  while (control_->ListView1.Count() > 0) control_->ListView1.Remove(1);
  Press(Qt::LeftButton, QPoint(5, 5));
  EXPECT_EQ(OpenMenu(), nullptr);
  Press(Qt::RightButton, QPoint(5, 5));
  ASSERT_NE(OpenMenu(), nullptr);
  QTest::keyClick(OpenMenu(), Qt::Key_H);
  EXPECT_EQ(boxes_.Shown.size(), 1U);
  EXPECT_EQ(errors_, Texts{});
}

TEST_F(ControlOnScreen, FollowsItsSize) {
  ControlView& view = Show();
  const QSize before = List().size();
  view.resize(view.width() + 100, view.height() + 50);
  EXPECT_EQ(List().size(), before + QSize(100, 50));
  EXPECT_EQ(view.findChild<QFrame*>(QStringLiteral("Frame"))->size(), view.size());
  view.resize(1, 1);
  EXPECT_GE(control_->ListView1.Width, 0);
}

TEST_F(ControlOnScreen, IsWholeAndReadableForEveryUser) {
  for (const double fontScale : {1.0, 2.0}) {
    for (const bool dark : {false, true}) {
      const tests::UserLooks looks(fontScale, dark);
      ControlView& view = Show();
      EXPECT_EQ(tests::ClippedIn(view), Texts{}) << fontScale;
      EXPECT_EQ(tests::FaintIn(view), Texts{}) << (dark ? "dark" : "light");
      EXPECT_EQ(tests::NamelessIn(view), Texts{});
      EXPECT_FALSE(List().horizontalScrollBar()->isVisible());
    }
  }
}

TEST_F(ControlOnScreen, OutlivesItsControl) {
  Show();
  control_.reset();
  view_->resize(500, 500);
  Press(Qt::RightButton, QPoint(5, 5));
  QCoreApplication::processEvents();
  EXPECT_EQ(OpenMenu(), nullptr);
}

}  // namespace
}  // namespace keplo::qt
