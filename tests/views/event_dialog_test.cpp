#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "looks.h"
#include "qt/qt_event_dialog.h"
#include "shell/shell_fixture.h"

namespace keplo::qt {
namespace {

using tests::Texts;

class EventDialogOnScreen : public tests::EventDialogTest {
 protected:
  EventDialogOnScreen() { settings_.VexilMode = 1; }

  /// Adds an event while the user does something with the dialog; afterwards the dialog is closed.
  bool Add(const std::function<void(QWidget& dialog)>& user) {
    QTimer::singleShot(0, qApp, [&] {
      QPointer<QWidget> dialog = QApplication::activeModalWidget();
      QApplication::setActiveWindow(dialog);
      user(*dialog);
      if (dialog != nullptr) dialog->close();
    });
    frmEvent model(store_, settings_);
    QtEventDialog shower;
    return model.ShowMe(0, event_, shower);
  }

  template <typename Widget>
  static Widget& Find(QWidget& dialog, const char* name) {
    return *dialog.findChild<Widget*>(QLatin1String(name));
  }
  static void Click(QWidget& dialog, const char* name) { Find<QAbstractButton>(dialog, name).click(); }
  static void PressInFocus(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
};

TEST_F(EventDialogOnScreen, EndsByButtonAndByKey) {
  const std::vector<std::tuple<std::string, std::function<void(QWidget&)>, bool>> ways = {
      {"OK", [](QWidget& dialog) { Click(dialog, "OKButton"); }, true},
      {"Cancel", [](QWidget& dialog) { Click(dialog, "CancelButton"); }, false},
      {"Enter", [](QWidget&) { PressInFocus(Qt::Key_Return); }, true},
      {"Enter on a list",
       [](QWidget& dialog) { QTest::keyClick(&Find<QComboBox>(dialog, "Protocol"), Qt::Key_Enter); }, true},
      {"Esc", [](QWidget&) { PressInFocus(Qt::Key_Escape); }, false},
      {"close box", [](QWidget& dialog) { dialog.close(); }, false},
  };
  for (const auto& [way, end, accepted] : ways) EXPECT_EQ(Add(end), accepted) << way;
}

TEST_F(EventDialogOnScreen, PickingAProtocolRefillsTheCommandsAndMovesTheFocus) {
  EXPECT_TRUE(Add([](QWidget& dialog) {
    auto& protocols = Find<QComboBox>(dialog, "Protocol");
    auto& commands = Find<QComboBox>(dialog, "SendCmd");
    const QString command = commands.currentText();
    QTest::keyClick(&protocols, Qt::Key_Space);
    QTest::keyClick(protocols.view(), Qt::Key_Return);
    EXPECT_EQ(commands.currentText(), command) << "the protocol was looked at only";
    QTest::keyClick(&protocols, Qt::Key_Down);
    Click(dialog, "OKButton");
    EXPECT_EQ(Find<QLabel>(dialog, "Hint").text(), QStringLiteral("Pick a protocol and a command first."));
    QTest::keyClick(&commands, Qt::Key_Down);
    EXPECT_EQ(commands.currentText() + Find<QLabel>(dialog, "Hint").text(), QStringLiteral("PLAY"));
    QTest::keyClicks(&Find<QLineEdit>(dialog, "EventName"), QStringLiteral(" it"));
    QTest::keyClick(&Find<QWidget>(dialog, "EvtEnable"), Qt::Key_Space);
    QTest::keyClick(&Find<QComboBox>(dialog, "ZoneListBox"), Qt::Key_End);
    Click(dialog, "OKButton");
  }));
  EXPECT_EQ(event_.EventName + ": " + event_.EventDescription, "PLAY it: PLAY from SONY");
  EXPECT_FALSE(event_.Enabled);
  EXPECT_EQ(event_.IRCommand, "SONY&PLAY");
  EXPECT_EQ(event_.Zone, 8);
}

TEST_F(EventDialogOnScreen, CanBeUsedByKeyboardAlone) {
  Add([](QWidget& dialog) {
    std::string walked;
    for (int step = 0; step < 8; ++step) {
      walked += QApplication::focusWidget()->objectName().toStdString() + " ";
      QTest::keyClick(&dialog, Qt::Key_Tab);
    }
    EXPECT_EQ(walked,
              "EventName EventDescription EvtEnable Protocol SendCmd ZoneListBox OKButton CancelButton ");
    for (const auto& [key, field] : {std::pair(Qt::Key_D, "EventDescription"), {Qt::Key_Z, "ZoneListBox"}}) {
      QTest::keyClick(&dialog, key, Qt::AltModifier);
      EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(field));
    }
  });
}

TEST_F(EventDialogOnScreen, IsAccessibleAndHidesTheZoneWithoutZoneHardware) {
  for (const auto& [fontScale, dark] : tests::kUsers) {
    const tests::UserLooks looks(fontScale, dark);
    Add([](QWidget& dialog) { EXPECT_EQ(tests::ComplaintsAbout(dialog), Texts{}); });
  }
  settings_.VexilMode = 0;
  Add([](QWidget& dialog) {
    EXPECT_FALSE(Find<QComboBox>(dialog, "ZoneListBox").isVisible());
    EXPECT_FALSE(Find<QLabel>(dialog, "VexilLabel").isVisible());
  });
}

}  // namespace
}  // namespace keplo::qt
