#include "host_program/host_window.h"

#include <QAbstractItemView>
#include <QAction>
#include <QEventLoop>
#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

#include "doubles/expect.h"
#include "events/connection.h"
#include "host/application_path.h"
#include "host_program/log_output.h"

namespace keplo::host {

namespace {

/// The host's window over the real component.
class HostWindowTest : public ::testing::Test {
 protected:
  void Open(const std::string& actions) {
    app_.AddPowerEvent(actions);
    CreationContext context;
    context.ApplicationPath = app_.Path().string();
    context.ReplayFiles = {tests::kPower, tests::kMute};
    context.MayUseDisplay = true;
    context.ReplayPlayed = [this] { played_.quit(); };
    host_ =
        std::make_unique<PluginHost>(component_, context, book_, log_, std::vector<EventOutput*>{&reported_});
    host_->Start();
    window_ = std::make_unique<HostWindow>(*host_);
    window_->show();
    EXPECT_FALSE(Button("&Delete")->isEnabled()) << "no row is highlighted yet";
    played_.exec();
    Highlight(0);
  }

  QPushButton* Button(const QString& caption) const {
    for (auto* button : window_->findChildren<QPushButton*>()) {
      if (button->text() == caption) return button;
    }
    return nullptr;
  }

  /// As a click on the row does.
  void Highlight(int row) const {
    auto* list = window_->findChild<QAbstractItemView*>("ListView1");
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > row; }, kMostMs));
    list->setCurrentIndex(list->model()->index(row, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return Button("&Delete")->isEnabled(); }, kMostMs));
  }

  /// Clicks a button and answers the dialogs that come, one after the other.
  void Click(const QString& caption, const std::vector<std::function<void(QWidget&)>>& answers) {
    answers_ = {answers.rbegin(), answers.rend()};
    AnswerNext();
    QTest::mouseClick(Button(caption), Qt::LeftButton);
    EXPECT_TRUE(answers_.empty()) << caption.toStdString();
  }
  void AnswerNext() {
    QTimer::singleShot(0, qApp, [this] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      const auto answer = answers_.back();
      answers_.pop_back();
      if (!answers_.empty()) AnswerNext();
      answer(*dialog);
    });
  }

  static void Yes(QWidget& box) { dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click(); }
  static void Return(QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); }  // means No
  static std::function<void(QWidget&)> Type(const QString& text) {
    return [text](QWidget& dialog) {
      dynamic_cast<QInputDialog&>(dialog).setTextValue(text);
      dynamic_cast<QInputDialog&>(dialog).accept();
    };
  }
  std::string Message() const { return window_->statusBar()->currentMessage().toStdString(); }
  std::string Actions() { return EventBook(app_.Path() / "host.json").ActionsOf("17").dump(); }

  static constexpr int kMostMs = 60000;

  tests::ApplicationPath app_;
  QEventLoop played_;
  EventBook book_{app_.Path() / "host.json"};
  const HostLog log_{false, {}};
  LogOutput reported_{log_};
  const Component component_{KEPLO_COMPONENT};
  std::unique_ptr<PluginHost> host_;
  std::unique_ptr<HostWindow> window_;
  std::vector<std::function<void(QWidget&)>> answers_;
};

TEST_F(HostWindowTest, ShowsEventsAndAddsAndDeletesThem) {
  Open("[]");
  const auto* log = window_->findChild<QListWidget*>();
  ASSERT_EQ(log->count(), 2);
  EXPECT_TRUE(log->item(0)->text().endsWith("event 17  Lamp on  NEC&TV_POWER  zone 5"));
  EXPECT_TRUE(log->item(1)->text().contains(": heard, but no event: "));
  QStringList captions;
  for (QAction* menu : window_->menuBar()->actions()) {
    for (QAction* item : menu->menu()->actions()) captions << item->text();
  }
  EXPECT_TRUE(captions.contains("Configure Infrared Interface"));

  Click("&Add...", {[](QWidget& dialog) { dialog.findChild<QPushButton*>("OKButton")->click(); }});
  EXPECT_EQ(Message(), "The event was added");
  EXPECT_EQ(host_->EventIDs(), (std::vector<std::string>{"17", "18"}));
  Click("&Delete", {Return});
  EXPECT_EQ(Message(), "") << "of the click before";
  EXPECT_EQ(host_->EventIDs().size(), 2U);
  Highlight(1);
  Click("&Delete", {Yes});
  EXPECT_EQ(Message(), "The event was deleted");
  EXPECT_EQ(host_->EventIDs(), std::vector<std::string>{"17"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return !Button("&Delete")->isEnabled(); }, kMostMs));
}

TEST_F(HostWindowTest, AsksForTheProgramOfAnEvent) {
  Open(R"([{"kind": "shell", "command": "true # <b>lamp</b>"}])");
  const std::string before = Actions();
  Click("P&rogram...", {[](QWidget& box) {
          EXPECT_TRUE(dynamic_cast<QMessageBox&>(box).text().contains("<b>lamp</b>"));
          EXPECT_EQ(dynamic_cast<QMessageBox&>(box).textFormat(), Qt::PlainText);
          Return(box);
        }});
  EXPECT_EQ(Actions(), before);
  Click("P&rogram...", {Yes, Type("lamp \"living room\" on")});
  EXPECT_EQ(Actions(), R"([{"arguments":["living room","on"],"kind":"run","program":"lamp"}])");
  EXPECT_EQ(Message(), "The program of the event was changed");
  Click("P&rogram...", {[](QWidget& dialog) {
          EXPECT_EQ(dynamic_cast<QInputDialog&>(dialog).textValue(), "lamp \"living room\" on");
          EXPECT_TRUE(dynamic_cast<QInputDialog&>(dialog).labelText().contains("Lamp on (17)"));
          dynamic_cast<QInputDialog&>(dialog).reject();
        }});
}

TEST_F(HostWindowTest, KeepsTheProgramIfALockPreventsTheDeletion) {
  const std::string lamp = R"([{"kind":"run","program":"lamp"}])";
  Open(lamp);
  Connection other;
  other.Open((app_.Path() / "inputKeplo.mdb").string());
  other.Execute("begin exclusive");
  Click("&Delete", {Yes});
  tests::ExpectPart(Message(), "taken off the list");
  EXPECT_EQ(Actions(), lamp);
}

TEST_F(HostWindowTest, ReportsADeletedEventWhoseBookCannotBeSaved) {
  Open("[]");
  app_.Write("app/host.json", "damaged");
  Click("&Delete", {Yes, [](QWidget& warning) {
                      EXPECT_TRUE(dynamic_cast<QMessageBox&>(warning).text().contains("not whole JSON"));
                      dynamic_cast<QMessageBox&>(warning).accept();
                    }});
  EXPECT_TRUE(host_->EventIDs().empty());
}

}  // namespace

}  // namespace keplo::host
