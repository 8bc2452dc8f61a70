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
using Texts = std::vector<std::string>;

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

  /// A click of a user who waits until the window has dealt with the last one.
  void Click(const char* button) {
    for (int turn = 0; turn < 4; ++turn) QCoreApplication::processEvents();
    QTest::mouseClick(&Find(button), Qt::LeftButton);
  }

  void PressRemote(const std::string& digits = kDigits) {
    line_.Captures.push_back(tests::Bytes(tests::Runs(tests::NecRuns(digits))));
  }

  std::string Shown(const char* field) {
    if (auto* line = view_->findChild<QLineEdit*>(QLatin1String(field))) return line->text().toStdString();
    if (auto* list = view_->findChild<QComboBox*>(QLatin1String(field)))
      return list->currentText().toStdString();
    return Find<QLabel>(field).text().toStdString();
  }

  std::string Ground(const char* field) {
    const QPalette colours = Find(field).palette();
    const auto role =
        view_->findChild<QComboBox*>(QLatin1String(field)) != nullptr ? QPalette::Button : QPalette::Base;
    return colours.color(role).name().toStdString();
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

TEST_F(MainWindowOnScreen, EveryControlStandsWhereTheTableHasIt) {
  const TwipScale& scale = view_->Scale();
  for (const ControlRow& row : Controls()) {
    const QWidget& view = Find(row.Name);
    const QRect place(scale.ToPixels(row.At.Left), scale.ToPixels(row.At.Top), scale.ToPixels(row.At.Width),
                      std::max(scale.ToPixels(row.At.Height), 1));
    EXPECT_EQ(view.geometry(), place) << row.Name;
    EXPECT_EQ(view.parentWidget()->objectName().toStdString(), row.Frame);
    EXPECT_EQ(view.toolTip().toStdString(), row.Tip);
  }
  EXPECT_EQ(view_->size(), view_->maximumSize());
  EXPECT_EQ(view_->width(), scale.ToPixels(kFullInner.Width));
  EXPECT_EQ(view_->windowTitle().toStdString(), "Orlo's Keplo v" + VersionText);
}

TEST_F(MainWindowOnScreen, IsWholeAndReadableForEveryUser) {
  form_->ReceiverType.SetText("IRMouse");
  form_->GProt.SetText("UNKNOWN");
  form_->Frame1.SetText("SONY params");
  for (ui::Label* value : {&form_->AddrVal, &form_->CmdVal}) value->SetText("32767");
  form_->ZoneNr.SetVisible(true);
  form_->Zone.SetVisible(true);
  for (const double fontScale : {1.0, 2.0}) {
    for (const bool dark : {false, true}) {
      const tests::UserLooks looks(fontScale, dark);
      Show();
      EXPECT_EQ(tests::ClippedIn(*view_), Texts{}) << fontScale;
      EXPECT_EQ(tests::FaintIn(*view_), Texts{}) << (dark ? "dark" : "light");
      EXPECT_EQ(tests::NamelessIn(*view_), Texts{});
    }
  }
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
  EXPECT_EQ(WalkByTab(), (Texts{"MinButton", "SendButton", "Protocol", "SendCmd"}));
}

TEST_F(MainWindowOnScreen, TheSmallSizeShowsTheSendingCornerAndComesBack) {
  const QSize full = view_->size();
  Click("MinButton");
  EXPECT_EQ(view_->windowTitle().toStdString(), "Keplo Send v" + VersionText);
  EXPECT_EQ(view_->width(), view_->Scale().ToPixels(kSmallOuter.Width - kWindowEdges.Width));
  const QWidget* inside = Find("MinButton").parentWidget();
  for (const char* corner : {"Protocol", "SendCmd", "SendButton", "Zone", "MinButton"}) {
    EXPECT_TRUE(inside->rect().contains(Find(corner).geometry())) << corner;
  }
  Click("MinButton");
  EXPECT_EQ(view_->size(), full);
}

TEST_F(MainWindowOnScreen, ARecordedPressIsExplainedStoredAndForgotten) {
  PressRemote();
  Click("RecButton");
  EXPECT_EQ(Shown("CodeStr"), "G" + kDigits);
  EXPECT_EQ(Shown("GProt") + " " + Shown("BitNr") + " " + Shown("IRCommand"), "NEC 32 ?");
  EXPECT_EQ(Ground("CodeStr"), "#ff0000");
  EXPECT_EQ(Ground("GProt"), "#00ff00");
  EXPECT_TRUE(Find("plen1").toolTip().contains(QString::fromStdString(Shown("plen1"))));
  PressRemote();
  Click("RecButton");
  EXPECT_EQ(Ground("CodeStr"), "#00ff00");

  boxes_.Names = {"VOL_UP"};
  Click("SaveCmdButton");
  EXPECT_EQ(Shown("SendCmd"), "VOL_UP");
  PressRemote();
  Click("RecButton");
  EXPECT_EQ(Shown("IRCommand"), "Mine&VOL_UP");
  EXPECT_EQ(Ground("SendCmd"), "#00ffff");
  EXPECT_EQ(File(), Config(Protocol("Mine", {"G10,EMPTY", "G" + kDigits + ",VOL_UP"})));
  Click("DeleteCmdButton");
  EXPECT_EQ(Find<QComboBox>("SendCmd").count(), 1);
  EXPECT_EQ(Shown("SendCmd"), "EMPTY");
}

TEST_F(MainWindowOnScreen, TheTraceLiesOnTheBoxWithADotASampleAndEdges) {
  EXPECT_EQ(Levels(15, 500), std::string(500, '.'));
  PressRemote();
  Click("RecButton");
  EXPECT_EQ(Levels(21, 6), "..|111") << "the first sample stands at 23";
  EXPECT_EQ(Levels(181, 4), "11|0") << "160 samples later";
  EXPECT_EQ(Levels(262, 4), "0|11");

  const QImage drawn = Box();
  view_->hide();
  view_->show();
  EXPECT_EQ(Box(), drawn) << "covered and uncovered";
}

TEST_F(MainWindowOnScreen, TheTraceFollowsZoomAndScrollBar) {
  PressRemote();
  Click("RecButton");
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

TEST_F(MainWindowOnScreen, AButtonAtWorkShowsIt) {
  auto& record = Find<QPushButton>("RecButton");
  record.setFocus();
  Texts seen;
  form_->RecButton.OnClick = [&] {
    form_->RecButton.SetEnabled(false);
    seen.emplace_back(record.isEnabled() ? "enabled" : "disabled");
    const QCursor* cursor = QApplication::overrideCursor();
    seen.emplace_back(cursor != nullptr && cursor->shape() == Qt::WaitCursor ? "busy" : "idle");
    form_->RecButton.SetEnabled(true);
  };
  QTest::keyClick(&record, Qt::Key_Space);
  EXPECT_EQ(seen, (Texts{"disabled", "busy"}));
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(Focus(), "RecButton");
}

}  // namespace
}  // namespace keplo::qt
