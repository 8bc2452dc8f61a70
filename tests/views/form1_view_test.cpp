#include "qt/form1_view.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include "doubles/temp_folder.h"
#include "looks.h"
#include "window/window_fixture.h"

namespace keplo::qt {
namespace {

using tests::Config;
using tests::kNecDigits;
using tests::Protocol;
using tests::Texts;

class MainWindowOnScreen : public tests::WindowTest {
 protected:
  MainWindowOnScreen() {
    Open(Config(Protocol("Mine", {"G1010,POWER"})));
    Show();
  }

  void Show() {
    view_.reset();
    view_ = std::make_unique<Form1View>(*form_);
    view_->show();
    QApplication::setActiveWindow(view_.get());
    QCoreApplication::processEvents();
  }

  template <typename Widget = QWidget>
  Widget& Find(std::string_view name) {
    return *view_->findChild<Widget*>(QString::fromStdString(std::string(name)));
  }

  void Click(const char* button) { Find<QPushButton>(button).click(); }

  void Record() {
    line_.Captures.push_back(tests::Bytes(tests::Runs(tests::NecRuns(kNecDigits))));
    Click("RecButton");
    QCoreApplication::processEvents();  // the input of the busy time is dropped
  }

  std::string Focus() { return QApplication::focusWidget()->objectName().toStdString(); }

  Texts WalkByTab() {
    Texts walked = {Focus()};
    while (walked.size() < 30) {
      QWidget* const stop = QApplication::focusWidget();
      const QImage withFocus = stop->grab().toImage();
      QTest::keyClick(view_.get(), Qt::Key_Tab);
      EXPECT_NE(stop->grab().toImage(), withFocus) << walked.back() << " shows whether it has the focus";
      if (Focus() == walked.front()) break;
      walked.push_back(Focus());
    }
    return walked;
  }

  std::unique_ptr<Form1View> view_;
};

TEST_F(MainWindowOnScreen, IsGoodForEveryUser) {
  for (const auto& [label, text] : {std::pair(&form_->ReceiverType, "IRMouse"),
                                    {&form_->GProt, "UNKNOWN"},
                                    {&form_->Frame1, "SONY params"},
                                    {&form_->AddrVal, "32767"}})
    label->SetText(text);
  form_->ZoneNr.SetVisible(true);
  form_->Zone.SetVisible(true);
  for (const auto& [fontScale, dark] : tests::kUsers) {
    const tests::UserLooks looks(fontScale, dark);
    Show();
    EXPECT_EQ(tests::ComplaintsAbout(*view_), Texts{}) << fontScale << dark;
    EXPECT_LE(view_->width(), view_->screen()->availableSize().width()) << "else it scrolls";
    for (const char* field : {"DeleteCmdButton", "Signal"}) Find(field).setFocus();
    EXPECT_EQ(Find("Signal").visibleRegion().boundingRect().left(), 0) << "its texts begin there";
  }
}

TEST_F(MainWindowOnScreen, TheWheelChangesOnlyTheFocusedControl) {
  const auto turn = [&](const char* name) {
    QWidget& view = Find(name);
    QWheelEvent down(view.rect().center(), view.mapToGlobal(view.rect().center()), {}, {0, -120}, {}, {},
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &down);
  };
  Find("SendButton").setFocus();
  bool reported = false;
  line_.WhileRecording = [&] {
    for (const QLabel* label : view_->findChildren<QLabel*>()) {
      reported = reported || (label->isVisible() && label->text().startsWith(QStringLiteral("Recording: ")));
    }
  };
  Record();
  EXPECT_TRUE(reported) << "what the window waits for";
  Record();
  EXPECT_EQ(Find("CodeStr").palette().color(QPalette::Base), QColor(Qt::green)) << "a code that came twice";
  for (const char* name : {"Protocol", "HScroll1"}) turn(name);
  EXPECT_EQ(form_->Protocol.ListIndex(), 0);
  EXPECT_EQ(form_->HScroll1.Value(), 15);
  for (const char* name : {"Protocol", "HScroll1"}) {
    Find(name).setFocus();
    turn(name);
  }
  EXPECT_EQ(form_->Protocol.ListIndex(), 1);
  EXPECT_LT(form_->HScroll1.Value(), 15);
}

TEST_F(MainWindowOnScreen, TabFollowsTheTableAndStaysInTheSmallWindow) {
  EXPECT_EQ(WalkByTab(),
            (Texts{"SendButton", "RecButton", "SendPulse", "ComList", "Protocol", "GReset", "GExt", "Gshr",
                   "SendCmd", "TestCheck", "HScroll1", "CodeStr", "MinButton", "SaveCmdButton",
                   "DeleteCmdButton", "TxDCheckBox", "BeepCheckbox", "VexilCheckbox"}));
  QTest::keyClick(view_.get(), Qt::Key_1, Qt::AltModifier);
  EXPECT_EQ(Focus(), "plen1") << "reached by the key of its label";

  Find("MinButton").setFocus();
  QTest::keyClick(&Find("MinButton"), Qt::Key_Return);
  EXPECT_FALSE(form_->WindowLarge());
  const QWidget* inside = Find("MinButton").parentWidget();
  for (const char* corner : {"Protocol", "SendCmd", "SendButton", "Zone", "MinButton"}) {
    EXPECT_TRUE(inside->rect().contains(Find(corner).geometry())) << corner;
  }
  EXPECT_EQ(WalkByTab(), (Texts{"MinButton", "SendButton", "Protocol", "SendCmd"}));
}

TEST_F(MainWindowOnScreen, TheTraceIsReadByMouseAndByKeyboard) {
  Record();
  QWidget& trace = Find("Signal");
  const auto across = [&](double sample) {
    const Place at = FindControl("Signal")->Bounds;
    const double place = form_->WavePlace(sample) - at.Left / double{kTwipsPerPixel};
    return QPointF(place * kTwipsPerPixel * trace.width() / at.Width, trace.height() / 2.0);
  };
  const auto click = [&](double sample) {
    QTest::mouseClick(&trace, Qt::LeftButton, {}, across(sample).toPoint());
  };
  click(2);
  EXPECT_EQ(trace.accessibleDescription(), QStringLiteral("mark 8800 us, 16.0 T cursor at 0.11 ms"));
  click(102);
  EXPECT_EQ(form_->Wave.CursorText(550), "distance 5500 us, 10.0 T");

  QWheelEvent up(across(100), trace.mapToGlobal(across(100)), {}, {0, 240}, {}, {}, Qt::NoScrollPhase, false);
  const double place = form_->WavePlace(100);
  QApplication::sendEvent(&trace, &up);
  EXPECT_NEAR(form_->WavePlace(100), place, 4);
  EXPECT_EQ(form_->WavePlace(101) - form_->WavePlace(100), 4) << "pixels a sample";
  const QPoint from = across(100).toPoint(), to = across(80).toPoint();
  QTest::mousePress(&trace, Qt::LeftButton, {}, from);
  QTest::mouseMove(&trace, to);
  QTest::mouseRelease(&trace, Qt::LeftButton, {}, to);
  EXPECT_NEAR(form_->WavePlace(100), place - 80, 8) << "dragged along";
  QTest::mouseDClick(&trace, Qt::LeftButton, {}, to);
  EXPECT_GT(form_->WavePlace(0), 20);
  EXPECT_LT(form_->WavePlace(form_->Wave.Samples()), 533) << "the whole of it";
  EXPECT_LT(form_->Surface.Points().size(), 16U * 533U) << "as many as pixels, not samples";

  Find("SendButton").setFocus();
  QTest::keyClick(view_.get(), Qt::Key_W, Qt::AltModifier);
  EXPECT_EQ(Focus(), "Signal");
  for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Left, Qt::Key_Left, Qt::Key_Space, Qt::Key_Right,
                            Qt::Key_Space, Qt::Key_Plus})
    QTest::keyClick(&trace, key);
  EXPECT_EQ(trace.accessibleDescription(), QStringLiteral("space 4400 us, 8.0 T distance 8800 us, 16.0 T"));
}

TEST_F(MainWindowOnScreen, TheTraceIsOneLineAtEveryZoom) {
  Record();
  for (const char* button : {"GReset", "GExt", "Gshr", "Gshr", "GReset", "Zoom"}) {
    if (button == std::string("Zoom")) {
      form_->ZoomWave(20, 64);
      form_->SlideWave(-30);  // into samples that begin left of the margin
    } else {
      Click(button);
    }
    const QImage box = Find("Signal").grab().toImage();
    const Place at = FindControl("Signal")->Bounds;
    const auto across = [&](double place) {
      return static_cast<int>((place * kTwipsPerPixel - at.Left) * box.width() / at.Width);
    };
    const int end = across(std::min(form_->WavePlace(400), 530.0));
    for (int x = across(std::max(form_->WavePlace(0), 20.0)) + 1; x < end; ++x) {
      bool lit = false;
      for (int y = 0; y < box.height(); ++y) lit = lit || box.pixelColor(x, y) == QColor(Qt::green);
      EXPECT_TRUE(lit) << button << " " << x;
    }
  }
}

TEST_F(MainWindowOnScreen, TheMenuBarHasKeysMarksAndExit) {
  const QAction& file = *view_->findChild<QMenuBar*>()->actions().front();
  EXPECT_EQ(file.text(), QStringLiteral("&File"));
  EXPECT_EQ(file.menu()->actions()[0]->text(), QStringLiteral("&New Protocol"));
  EXPECT_TRUE(file.menu()->actions()[3]->isSeparator());
  form_->IRMouseMenu.SetChecked(true);
  EXPECT_TRUE(view_->findChild<QAction*>(QStringLiteral("IRMouseMenu"))->isChecked());
  const QAction& undo = *view_->findChild<QAction*>(QStringLiteral("UndoMenu"));
  EXPECT_FALSE(undo.isEnabled());
  form_->DeleteCmdButton.Click();
  EXPECT_TRUE(undo.isEnabled());
  Find("CodeStr").setFocus();  // nothing was typed there
  QTest::keyClick(&Find("CodeStr"), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(form_->SendCmd.Text(), "POWER");

  QTest::keyClick(&Find("SendButton"), Qt::Key_X, Qt::ControlModifier);
  EXPECT_FALSE(view_->isVisible());
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

TEST_F(MainWindowOnScreen, ARecordingIsSavedToAFileAndOpenedAgain) {
  const tests::TempFolder folder;
  const QString path = QString::fromStdString(folder.Path() / "key.mode2");
  const auto answer = [&] {
    QTimer::singleShot(0, qApp, [&] {
      QWidget* dialog = QApplication::activeModalWidget();
      dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
      QMetaObject::invokeMethod(dialog, "accept");
    });
  };
  Record();
  const std::string samples = mod_->Signal.SampleBits();
  answer();
  form_->SaveRecordingMenu.Click();
  EXPECT_EQ(folder.Read("key.mode2").substr(0, 34), "pulse 8800\nspace 4400\npulse 550\nsp");
  form_->CodeStr.SetText("");
  mod_->Signal.RawCapture.clear();
  answer();
  form_->OpenRecordingMenu.Click();
  EXPECT_EQ(form_->CodeStr.Text(), "G" + kNecDigits);
  EXPECT_EQ(mod_->Signal.SampleBits(), samples);
  EXPECT_TRUE(Find("Signal").accessibleDescription().endsWith(QStringLiteral("Recording key.mode2")));
}

TEST_F(MainWindowOnScreen, TheCloseBoxSavesAndQuits) {
  form_->Protocol.Select(1);
  view_->close();
  EXPECT_NE(File().find("PROTOCOL= 1"), std::string::npos);
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

}  // namespace
}  // namespace keplo::qt
