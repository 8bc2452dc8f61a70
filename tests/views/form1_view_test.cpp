#include "qt/form1_view.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include "looks.h"
#include "window/window_fixture.h"

namespace keplo::qt {
namespace {

using tests::Config;
using tests::Protocol;
using tests::Texts;

const std::string kDigits = "00000000111111110110100010010111";

class MainWindowOnScreen : public tests::WindowTest {
 protected:
  MainWindowOnScreen() {
    Open(Config(Protocol("Mine", {"G10,EMPTY"})));
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
    line_.Captures.push_back(tests::Bytes(tests::Runs(tests::NecRuns(kDigits))));
    Click("RecButton");
  }

  QImage Box() { return Find("Signal").grab().toImage(); }

  /// Whether the trace is lit at a place of the inside of the window, pixels of the design.
  bool Lit(const QImage& box, double x, double y) {
    const Place at = FindControl("Signal")->At;
    const double across = box.width() * double{kTwipsPerPixel} / at.Width;
    const double down = box.height() * double{kTwipsPerPixel} / at.Height;
    const auto column = std::lround((x - at.Left / double{kTwipsPerPixel}) * across);
    const auto row = std::lround((y - at.Top / double{kTwipsPerPixel}) * down);
    const QColor colour = box.pixelColor(static_cast<int>(column), static_cast<int>(row));
    EXPECT_TRUE(colour == QColor(Qt::green) || colour == QColor(Qt::black)) << colour.name().toStdString();
    return colour == QColor(Qt::green);
  }

  /// The level that is lit from a place on, as a word of '1', '0', '|' for both and '.' for none.
  std::string Levels(double from, int count, double step = 1) {
    const QImage box = Box();
    std::string levels;
    for (int i = 0; i < count; ++i) {
      const bool upper = Lit(box, from + i * step, kUpper), lower = Lit(box, from + i * step, kLower);
      levels += upper && lower ? '|' : upper ? '1' : lower ? '0' : '.';
    }
    return levels;
  }

  std::string Focus() { return QApplication::focusWidget()->objectName().toStdString(); }

  Texts WalkByTab() {
    Texts walked = {Focus()};
    while (walked.size() < 30) {
      QTest::keyClick(view_.get(), Qt::Key_Tab);
      if (Focus() == walked.front()) break;
      walked.push_back(Focus());
    }
    return walked;
  }

  static constexpr int kUpper = 197, kLower = 237;  // of the two levels, pixels of the design

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
  }
}

TEST_F(MainWindowOnScreen, TheWheelTurnsOnlyWhatHasTheFocus) {
  const auto turn = [&](const char* name) {
    QWidget& view = Find(name);
    QWheelEvent down(view.rect().center(), view.mapToGlobal(view.rect().center()), {}, {0, -120}, {}, {},
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &down);
  };
  Find("SendButton").setFocus();
  Record();
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

TEST_F(MainWindowOnScreen, TabWalksInTheOrderOfTheTableAndStaysInTheSmallWindow) {
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

TEST_F(MainWindowOnScreen, TheTraceLiesOnTheBoxWithADotASampleAndEdges) {
  EXPECT_EQ(Levels(15, 500), std::string(500, '.'));
  Record();
  EXPECT_EQ(Levels(21, 6), "..|111") << "the first sample stands at 23";
  EXPECT_EQ(Levels(181, 4), "11|0") << "160 samples later";
  EXPECT_EQ(Levels(262, 4), "0|11");

  const QImage drawn = Box();
  view_->hide();
  view_->show();
  EXPECT_EQ(Box(), drawn) << "covered and uncovered";
}

TEST_F(MainWindowOnScreen, TheTraceFollowsZoomAndScrollBar) {
  Record();
  Click("GExt");
  EXPECT_EQ(Levels(46, 6, 2), "|11111") << "two pixels a sample";
  auto& bar = Find<QScrollBar>("HScroll1");
  Click("GReset");
  Click("Gshr");
  EXPECT_EQ(Levels(91, 3), "1|0");
  Click("GReset");
  EXPECT_EQ(bar.singleStep(), 30);
  EXPECT_EQ(bar.value(), 0) << "the left end";
  QTest::keyClick(&bar, Qt::Key_Right);
  EXPECT_EQ(form_->HScroll1.Value(), 15 - 30);
  EXPECT_EQ(Levels(151, 4), "11|0");
  QTest::keyClick(&bar, Qt::Key_End);
  EXPECT_EQ(Levels(22, 5), "00...") << "the last sample";
}

TEST_F(MainWindowOnScreen, TheMenuBarHasItsKeysMarksAndWayOut) {
  Texts entries;
  for (const QAction* menu : view_->findChild<QMenuBar*>()->actions()) {
    entries.push_back(menu->text().toStdString());
    for (const QAction* entry : menu->menu()->actions()) {
      entries.push_back(entry->isSeparator() ? "-"
                                             : (entry->isChecked() ? "*" : "") + entry->text().toStdString());
    }
  }
  EXPECT_EQ(entries,
            (Texts{"&File", "&New Protocol", "&Edit Protocol", "&Delete Protocol", "-", "&AutoCalibrate",
                   "&ProcDelay", "-", "E&xit", "&Interface", "*Standard &DCD", "IR Mouse", "&Help",
                   "&Contents", "&Web Page", "Check for &Updates", "-", "&About"}));
  form_->IRMouseMenu.SetChecked(true);
  EXPECT_TRUE(view_->findChild<QAction*>(QStringLiteral("IRMouseMenu"))->isChecked());

  QTest::keyClick(&Find("SendButton"), Qt::Key_X, Qt::ControlModifier);
  EXPECT_FALSE(view_->isVisible());
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

TEST_F(MainWindowOnScreen, TheCloseBoxSavesAndEndsTheWork) {
  form_->Protocol.Select(1);
  view_->close();
  EXPECT_NE(File().find("PROTOCOL= 1"), std::string::npos);
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

}  // namespace
}  // namespace keplo::qt
