#include <QComboBox>
#include <QTest>
#include <QTimer>

#include "looks.h"
#include "qt/qt_event_dialog.h"
#include "shell/shell_fixture.h"

namespace keplo::qt {
namespace {

using Texts = std::vector<std::string>;

class EventDialogOnScreen : public ::testing::Test {
 protected:
  EventDialogOnScreen() {
    store_.CfgText = tests::Config({}, tests::ProtocolSection("NEC", "G1010,POWER\r\nG1011,MUTE\r\n") +
                                           tests::ProtocolSection("SONY", "G1110,PLAY\r\n"));
    settings_.VexilMode = 1;
  }

  /// Adds an event while the user does something with the dialog; afterwards the dialog is closed.
  bool Add(const std::function<void(QWidget& dialog)>& user) {
    QTimer::singleShot(0, qApp, [&] {
      QPointer<QWidget> dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      QApplication::setActiveWindow(dialog);
      user(*dialog);
      if (dialog != nullptr) dialog->close();
    });
    frmEvent model(store_, settings_);
    QtEventDialog shower;
    return model.ShowMe(0, event_, shower);
  }

  static std::string Focus() { return QApplication::focusWidget()->objectName().toStdString(); }

  template <typename Widget>
  static Widget& Find(QWidget& dialog, const char* name) {
    return *dialog.findChild<Widget*>(QLatin1String(name));
  }

  static void Click(QWidget& dialog, const char* name) {
    QTest::mouseClick(&Find<QAbstractButton>(dialog, name), Qt::LeftButton);
  }

  PosixFileSystem files_;
  CfgStore store_{"unused", files_};
  Settings settings_;
  clsKeploEvent event_{"7", "", "", "", false, 0};
};

TEST_F(EventDialogOnScreen, EndsByButtonAndByKey) {
  struct Case {
    std::string Way;
    std::function<void(QWidget&)> Do;
    bool Accepted;
  };
  const std::vector<Case> cases = {
      {"OK", [](QWidget& dialog) { Click(dialog, "OKButton"); }, true},
      {"Cancel", [](QWidget& dialog) { Click(dialog, "CancelButton"); }, false},
      {"Enter", [](QWidget&) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); }, true},
      {"Enter on a list",
       [](QWidget& dialog) { QTest::keyClick(&Find<QComboBox>(dialog, "Protocol"), Qt::Key_Enter); }, true},
      {"Esc", [](QWidget&) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape); }, false},
      {"close box", [](QWidget& dialog) { dialog.close(); }, false},
  };
  for (const Case& c : cases) EXPECT_EQ(Add(c.Do), c.Accepted) << c.Way;
}

TEST_F(EventDialogOnScreen, PickingAProtocolRefillsTheCommands) {
  EXPECT_TRUE(Add([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add New Event"));
    auto& commands = Find<QComboBox>(dialog, "SendCmd");
    EXPECT_EQ(commands.currentText(), QStringLiteral("POWER"));
    QTest::keyClick(&Find<QComboBox>(dialog, "Protocol"), Qt::Key_Down);
    EXPECT_EQ(commands.currentIndex(), -1);
    Click(dialog, "OKButton");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(Find<QLabel>(dialog, "Hint").text(), QStringLiteral("Pick a protocol and a command first."));
    QTest::keyClick(&commands, Qt::Key_Down);
    EXPECT_EQ(Find<QLineEdit>(dialog, "EventDescription").text(), QStringLiteral("PLAY from SONY"));
    Find<QLineEdit>(dialog, "EventName").selectAll();
    QTest::keyClicks(&Find<QLineEdit>(dialog, "EventName"), QStringLiteral("Play it"));
    QTest::keyClick(&Find<QComboBox>(dialog, "ZoneListBox"), Qt::Key_End);
    Click(dialog, "OKButton");
  }));
  EXPECT_EQ(event_.EventName, "Play it");
  EXPECT_EQ(event_.IRCommand, "SONY&PLAY");
  EXPECT_TRUE(event_.Enabled);
  EXPECT_EQ(event_.Zone, 8);
}

TEST_F(EventDialogOnScreen, WalksItsFieldsInReadingOrder) {
  Add([](QWidget& dialog) {
    Texts walked;
    for (int step = 0; step < 8; ++step) {
      walked.push_back(Focus());
      QTest::keyClick(&dialog, Qt::Key_Tab);
    }
    EXPECT_EQ(walked, (Texts{"EventName", "EventDescription", "EvtEnable", "Protocol", "SendCmd",
                             "ZoneListBox", "OKButton", "CancelButton"}));
  });
}

TEST_F(EventDialogOnScreen, ReachesEveryFieldByItsAccessKey) {
  Add([](QWidget& dialog) {
    const std::vector<std::pair<Qt::Key, std::string>> keys = {{Qt::Key_D, "EventDescription"},
                                                               {Qt::Key_Z, "ZoneListBox"},
                                                               {Qt::Key_C, "SendCmd"},
                                                               {Qt::Key_P, "Protocol"},
                                                               {Qt::Key_N, "EventName"}};
    for (const auto& [key, field] : keys) {
      QTest::keyClick(&dialog, key, Qt::AltModifier);
      EXPECT_EQ(Focus(), field);
    }
    QTest::keyClick(&dialog, Qt::Key_E, Qt::AltModifier);
    const auto& enabled = Find<QAbstractButton>(dialog, "EvtEnable");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !enabled.isChecked(); }))
        << "a key holds the button down a moment";
  });
}

TEST_F(EventDialogOnScreen, HidesTheZoneWithoutZoneHardware) {
  settings_.VexilMode = 0;
  Add([](QWidget& dialog) {
    EXPECT_FALSE(Find<QComboBox>(dialog, "ZoneListBox").isVisible());
    EXPECT_FALSE(Find<QLabel>(dialog, "VexilLabel").isVisible());
  });
}

TEST_F(EventDialogOnScreen, IsWholeAndReadableForEveryUser) {
  for (const double fontScale : {1.0, 2.0}) {
    for (const bool dark : {false, true}) {
      const tests::UserLooks looks(fontScale, dark);
      Add([&](QWidget& dialog) {
        EXPECT_EQ(tests::ClippedIn(dialog), Texts{}) << fontScale;
        EXPECT_EQ(tests::FaintIn(dialog), Texts{}) << (dark ? "dark" : "light");
        EXPECT_EQ(tests::NamelessIn(dialog), Texts{});
      });
    }
  }
}

}  // namespace
}  // namespace keplo::qt
