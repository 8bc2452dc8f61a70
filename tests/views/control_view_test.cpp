#include "qt/control_view.h"

#include <QScrollBar>
#include <QTest>

#include "looks.h"
#include "shell/shell_fixture.h"

namespace keplo::qt {
namespace {

using tests::Texts;

class ControlOnScreen : public tests::ShellTest {
 protected:
  void SetUp() override {
    WriteConfig(tests::Protocol("NEC", {"G1010,POWER"}));
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
  static QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

  std::unique_ptr<ControlView> view_;
};

TEST_F(ControlOnScreen, ShowsThePanelOfItsModel) {
  const auto shown = [&, &view = Show()](const char* name) {
    return view.findChild<QLabel*>(QLatin1String(name))->text().toStdString();
  };
  EXPECT_EQ(shown("CtlComPort") + " " + shown("CtlPortStatus"), "COM 1 AVAILABLE");
  EXPECT_EQ(shown("RcvActivated"), "YES");
  control_->InputStopMonitoring();
  EXPECT_EQ(shown("RcvActivated"), "NO");
}

TEST_F(ControlOnScreen, ARightPressOpensTheMenuWhichDisablesTheEventUnderIt) {
  Show();
  Press(Qt::LeftButton, Row(2));
  EXPECT_EQ(OpenMenu(), nullptr);
  Press(Qt::RightButton, Row(2));
  ASSERT_NE(OpenMenu(), nullptr);
  EXPECT_EQ(OpenMenu()->pos(), List().viewport()->mapToGlobal(Row(2)));
  QTest::mouseClick(OpenMenu(), Qt::LeftButton, {},
                    OpenMenu()->actionGeometry(OpenMenu()->actions()[1]).center());
  EXPECT_EQ(control_->ListView1.Text(2, 3), "False");
  QCoreApplication::processEvents();
  EXPECT_EQ(List().model()->index(1, 3).data().toString(), QStringLiteral("False"));
}

TEST_F(ControlOnScreen, DoesEverythingByKeyboard) {
  for (const auto& [key, modifiers] :
       {std::pair(Qt::Key_Menu, Qt::NoModifier), {Qt::Key_F10, Qt::ShiftModifier}}) {
    Show().setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    ASSERT_NE(OpenMenu(), nullptr);
    QTest::keyClick(OpenMenu(), Qt::Key_D);
    EXPECT_EQ(control_->ListView1.Text(1, 3) + control_->ListView1.Text(2, 3), "TrueFalse");
    control_->EnableMenu_Click();
  }
}

TEST_F(ControlOnScreen, IsAccessibleAndFollowsItsSize) {
  for (const auto& [fontScale, dark] : tests::kUsers) {
    const tests::UserLooks looks(fontScale, dark);
    EXPECT_EQ(tests::ComplaintsAbout(Show()), Texts{}) << fontScale << dark;
    EXPECT_FALSE(List().horizontalScrollBar()->isVisible());
  }
  const QSize before = List().size();
  view_->resize(view_->size() + QSize(100, 50));
  EXPECT_EQ(List().size(), before + QSize(100, 50));
  view_->resize(1, 1);
  EXPECT_GE(control_->ListView1.Width, 0);
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
