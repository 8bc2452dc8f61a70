#include "qt/button_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWindow>

namespace keplo::qt {
namespace {

TEST(ButtonView, IsBusyDuringItsWorkAndDropsInputMeanwhile) {
  QWidget window;
  ui::Button model;
  ButtonView record(model, QStringLiteral("Record"), &window);
  QPushButton other(QStringLiteral("Delete"), &window);
  other.move(0, 100);
  QAction exit(&window);
  exit.setShortcut(Qt::CTRL | Qt::Key_X);
  window.addAction(&exit);
  window.show();
  QApplication::setActiveWindow(&window);
  int done = 0;
  QObject::connect(&other, &QPushButton::clicked, [&] { ++done; });
  QObject::connect(&exit, &QAction::triggered, [&] { ++done; });

  // As the window system reports it, which asks no widget whether it listens.
  const auto useAll = [&] {
    for (const QWidget* button : {static_cast<QWidget*>(&record), static_cast<QWidget*>(&other)})
      QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, button->geometry().center());
    QTest::keyClick(window.windowHandle(), Qt::Key_X, Qt::ControlModifier);
  };
  model.OnClick = [&] {
    ++done;
    model.SetEnabled(false);
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    useAll();
    model.SetEnabled(true);
  };
  record.setFocus();
  QTest::keyClick(&record, Qt::Key_Return);
  EXPECT_EQ(done, 1);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_TRUE(record.hasFocus());

  model.OnClick = [&] { ++done; };
  const auto isUsed = [&] {
    useAll();
    return done > 3;
  };
  EXPECT_TRUE(QTest::qWaitFor(isUsed, 60'000)) << "once the waiting input is gone";
}

}  // namespace
}  // namespace keplo::qt
