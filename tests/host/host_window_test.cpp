#include "host_program/host_window.h"

#include <QAction>
#include <QEventLoop>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

#include "host/application_path.h"

namespace keplo::host {

namespace {

/// The host's window over the real component.
class HostWindowTest : public ::testing::Test {
 protected:
  HostWindowTest() { app_.AddEvents({tests::kPowerEvent}); }

  void Open() {
    CreationContext context;
    context.ApplicationPath = app_.Path().string();
    context.ReplayFiles = {tests::ApplicationPath::Sample("nec_tv_power")};
    context.MayUseDisplay = true;
    context.ReplayPlayed = [this] { played_.quit(); };
    host_ = std::make_unique<PluginHost>(component_, context, book_, actions_, log_);
    host_->Start();
    window_ = std::make_unique<HostWindow>(*host_);
    window_->show();
  }

  void Click(const QString& caption) const {
    for (auto* button : window_->findChildren<QPushButton*>()) {
      if (button->text() == caption) return QTest::mouseClick(button, Qt::LeftButton);
    }
    FAIL() << "no button " << caption.toStdString();
  }

  static void AnswerWith(const std::function<void(QWidget&)>& answer) {
    QTimer::singleShot(0, qApp, [answer] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      answer(*dialog);
    });
  }

  QStringList Events() const {
    QStringList events;
    const auto* list = window_->findChild<QComboBox*>();
    for (int place = 0; place < list->count(); ++place) events << list->itemText(place);
    return events;
  }

  tests::ApplicationPath app_;
  QEventLoop played_;
  EventBook book_{app_.Path() / "host.json"};
  const HostLog log_{false, {}};
  EventActions actions_{log_};
  const Component component_{KEPLO_COMPONENT};
  std::unique_ptr<PluginHost> host_;
  std::unique_ptr<HostWindow> window_;
};

TEST_F(HostWindowTest, ShowsEventsAsTheyAreRaised) {
  Open();
  played_.exec();
  const auto* log = window_->findChild<QListWidget*>();
  ASSERT_EQ(log->count(), 1);
  EXPECT_TRUE(log->item(0)->text().endsWith("event 17  Lamp on  NEC&TV_POWER  zone 0"));
}

TEST_F(HostWindowTest, AddsAndDeletesEvents) {
  Open();
  AnswerWith([](QWidget& dialog) { dialog.findChild<QPushButton*>("OKButton")->click(); });
  Click("&Add...");
  EXPECT_EQ(window_->statusBar()->currentMessage(), "The event was added");
  ASSERT_EQ(Events().size(), 2);
  EXPECT_EQ(Events().front(), "Lamp on (17)");
  EXPECT_TRUE(Events().back().endsWith("(18)"));

  AnswerWith([](QWidget& box) { dynamic_cast<QMessageBox&>(box).button(QMessageBox::No)->click(); });
  Click("&Delete");
  EXPECT_EQ(Events().size(), 2);
  AnswerWith([](QWidget& box) { dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click(); });
  Click("&Delete");
  ASSERT_EQ(Events().size(), 1);
  EXPECT_TRUE(Events().front().endsWith("(18)"));
}

TEST_F(HostWindowTest, KeepsTheProgramOfAnEvent) {
  Open();
  AnswerWith([](QWidget& dialog) {
    dynamic_cast<QInputDialog&>(dialog).setTextValue("lamp \"living room\" on");
    dynamic_cast<QInputDialog&>(dialog).accept();
  });
  Click("P&rogram...");
  EXPECT_EQ(EventBook(app_.Path() / "host.json").ActionsOf("17").dump(),
            R"([{"arguments":["living room","on"],"kind":"run","program":"lamp"}])");
  QString shown;
  AnswerWith([&](QWidget& dialog) {
    shown = dynamic_cast<QInputDialog&>(dialog).textValue();
    dynamic_cast<QInputDialog&>(dialog).reject();
  });
  Click("P&rogram...");
  EXPECT_EQ(shown, "lamp \"living room\" on");
}

TEST_F(HostWindowTest, AsksBeforeItReplacesWhatItCannotShow) {
  Open();
  const std::string byHand =
      R"({"version": 1, "events": {"17": {"actions": [{"kind": "shell", "command": "true # <b>lamp</b>"}]}}})";
  app_.Write("app/host.json", byHand);
  AnswerWith([](QWidget& box) {
    EXPECT_TRUE(dynamic_cast<QMessageBox&>(box).text().contains("<b>lamp</b>"));
    EXPECT_EQ(dynamic_cast<QMessageBox&>(box).textFormat(), Qt::PlainText);
    dynamic_cast<QMessageBox&>(box).button(QMessageBox::No)->click();
  });
  Click("P&rogram...");
  EXPECT_EQ(app_.Read("app/host.json"), byHand);

  AnswerWith([](QWidget& box) {
    AnswerWith([](QWidget& dialog) {
      dynamic_cast<QInputDialog&>(dialog).setTextValue("lamp on");
      dynamic_cast<QInputDialog&>(dialog).accept();
    });
    dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click();
  });
  Click("P&rogram...");
  EXPECT_EQ(EventBook(app_.Path() / "host.json").ActionsOf("17").dump(),
            R"([{"arguments":["on"],"kind":"run","program":"lamp"}])");
}

TEST_F(HostWindowTest, ShowsWhatIsLeftWhenTheBookOfADeletedEventCannotBeSaved) {
  Open();
  app_.Write("app/host.json", "damaged");
  AnswerWith([](QWidget& box) {
    AnswerWith([](QWidget& warning) {
      EXPECT_TRUE(dynamic_cast<QMessageBox&>(warning).text().contains("host.json is not whole JSON"));
      dynamic_cast<QMessageBox&>(warning).accept();
    });
    dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click();
  });
  Click("&Delete");
  EXPECT_EQ(Events(), QStringList());
}

TEST_F(HostWindowTest, OffersThePlugInsMenu) {
  Open();
  QStringList captions;
  for (QAction* menu : window_->menuBar()->actions()) {
    for (QAction* item : menu->menu()->actions()) captions << item->text();
  }
  EXPECT_TRUE(captions.contains("Configure Infrared Interface"));
  EXPECT_TRUE(captions.contains("&About InputKeplo"));
}

}  // namespace

}  // namespace keplo::host
