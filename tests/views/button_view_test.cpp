#include "qt/button_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QWindow>
#include <vector>

#include "qt/qt_boxes.h"

namespace keplo::qt {
namespace {

TEST(ButtonView, IsBusyDuringItsWorkAndDropsAllInputOfThatTime) {
  QWidget window;
  ui::Button model;
  ButtonView record(model, QStringLiteral("Record"), &window);
  QPushButton other(QStringLiteral("&Delete"), &window);
  other.move(0, 100);
  QAction shortcut(&window);
  shortcut.setShortcut(Qt::CTRL | Qt::Key_X);
  window.addAction(&shortcut);
  window.show();
  QApplication::setActiveWindow(&window);
  std::vector<std::string> done;
  QObject::connect(&other, &QPushButton::clicked, [&] { done.emplace_back("other button"); });
  QObject::connect(&shortcut, &QAction::triggered, [&] { done.emplace_back("shortcut"); });

  // As the window system reports it, which asks no widget whether it listens.
  const auto useAll = [&] {
    QWindow* screen = window.windowHandle();
    for (const QWidget* button : {static_cast<QWidget*>(&record), static_cast<QWidget*>(&other)}) {
      QTest::mouseClick(screen, Qt::LeftButton, {}, button->geometry().center());
    }
    QTest::keyClick(screen, Qt::Key_X, Qt::ControlModifier);
  };
  bool cursorTells = false;
  model.OnClick = [&] {
    done.emplace_back("record");
    model.SetEnabled(false);
    cursorTells = QApplication::overrideCursor() != nullptr;
    useAll();
    model.SetEnabled(true);
  };
  record.setFocus();
  QTest::keyClick(&record, Qt::Key_Return);
  EXPECT_EQ(done, (std::vector<std::string>{"record"}));
  EXPECT_TRUE(cursorTells);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_TRUE(record.hasFocus());

  model.OnClick = [&] { done.emplace_back("record"); };
  EXPECT_TRUE(QTest::qWaitFor([&] {
    useAll();
    return done.size() > 3;
  })) << "once the waiting input is gone";
}

}  // namespace
}  // namespace keplo::qt
