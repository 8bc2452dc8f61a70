#include "qt/button_view.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>

namespace keplo::qt {
namespace {

/// Leaves a click and a stroke of the space bar in the event loop, as an impatient user does.
void PressFromOutside(QWidget& view) {
  const QPointF middle = view.rect().center();
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QCoreApplication::postEvent(
        &view, new QMouseEvent(type, middle, view.mapToGlobal(middle), Qt::LeftButton, Qt::LeftButton, {}));
  }
  for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QCoreApplication::postEvent(&view, new QKeyEvent(type, Qt::Key_Space, {}, QStringLiteral(" ")));
  }
}

TEST(ButtonView, DropsWhatIsPressedOnItDuringItsWork) {
  QWidget window;
  ui::Button model;
  ButtonView view(model, QStringLiteral("Record"), &window);
  window.show();
  int recordings = 0;
  model.OnClick = [&] {
    if (++recordings > 1) return;
    model.SetEnabled(false);
    PressFromOutside(view);
    model.SetEnabled(true);
  };

  QTest::mouseClick(&view, Qt::LeftButton);
  QCoreApplication::processEvents();
  EXPECT_EQ(recordings, 1);
  EXPECT_TRUE(view.isEnabled());

  const auto clickIsHeard = [&] {
    QTest::mouseClick(&view, Qt::LeftButton);
    return recordings == 2;
  };
  EXPECT_TRUE(QTest::qWaitFor(clickIsHeard)) << "once the waiting input is gone";
}

}  // namespace
}  // namespace keplo::qt
