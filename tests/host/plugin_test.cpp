#include <QAbstractButton>
#include <QApplication>
#include <QEventLoop>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <fstream>
#include <iterator>

#include "component_loader/component_frame.h"
#include "failure.h"
#include "host/application_path.h"
#include "host/ivelmora_input_plugin.h"

namespace keplo::tests {

namespace {

class Sink : public IHostEventSink {
 public:
  virtual ~Sink() = default;
  std::vector<std::string> Events, Errors;
  std::function<void()> OnEvent = [] {};

  void TriggerInputEvent(HostInputEvent& event) override {
    Events.push_back(event.EventID + " " + std::get<std::string>(event.EventCommand));
    OnEvent();
  }
  void TriggerInputErrorCondition(HostErrorRecord& record, bool& /*stopping*/) override {
    Errors.push_back(record.ErrorSource + " " + record.ErrorProcedure);
  }
};

bool IsLoaded() {
  std::ifstream maps("/proc/self/maps");
  const std::string text((std::istreambuf_iterator<char>(maps)), {});
  return text.find("inputkeplo.so") != std::string::npos;
}

/// The real component, its object and a host that listens.
class PluginTest : public ::testing::Test {
 protected:
  void Create(bool display, const std::vector<std::string>& replay = {}) {
    CreationContext context;
    context.ApplicationPath = app_.Path().string();
    context.ReplayFiles = replay;
    context.MayUseDisplay = display;
    context.Log = [this](LogLevel, const std::string& text) { log_.push_back(text); };
    context.ReplayPlayed = [this] { played_.quit(); };
    object_ = component_.Create(kInputKeploClass, context);
    plugin_ = QueryInterface<IVelmoraInputPLugin>(*object_);
    QueryInterface<IHostEventSource>(*object_)->Subscribe(sink_);
  }

  void Initialise() {
    std::shared_ptr<IVelmoraHost> velmora;
    ASSERT_EQ(plugin_->InputInitialise(velmora), kInputDone);
  }

  std::vector<std::string> EventIDs() {
    std::vector<std::string> eventIDs{"old"};
    EXPECT_EQ(plugin_->InputHouseKeepingGetEventIDs(eventIDs), 1);
    return eventIDs;
  }

  std::string Page() {
    HostPageRequest request{"/InputKeplo", "", "posted=1"};
    std::int32_t browser = 7, width = 8, height = 9;
    std::string html = "old";
    EXPECT_EQ(plugin_->InputGetHTMLPage(html, request, browser, width, height), 1);
    EXPECT_EQ(browser + width + height, 24);
    return html;
  }

  /// Types a name into the event dialog that the operation opens, and presses a button of it.
  static void WhenTheDialogOpens(const QString& name, const QString& button) {
    QTimer::singleShot(0, qApp, [=] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      auto* eventName = dialog->findChild<QLineEdit*>(QStringLiteral("EventName"));
      eventName->selectAll();
      QTest::keyClicks(eventName, name);
      dialog->findChild<QAbstractButton*>(button)->click();
    });
  }

  ApplicationPath app_;
  std::vector<std::string> log_;
  QEventLoop played_;
  Sink sink_;
  Component component_{KEPLO_COMPONENT};
  ComponentObject object_;
  IVelmoraInputPLugin* plugin_ = nullptr;
};

TEST_F(PluginTest, AnswersWhatNeedsNoUser) {
  Create(false);
  EXPECT_EQ(plugin_->InputIconFileName(), (app_.Path() / "inkeplo.ico").string());
  std::vector<std::string> texts;
  EXPECT_EQ(plugin_->InputGetPluginMenuItems(texts), 1);
  EXPECT_EQ(texts, std::vector<std::string>{"Configure Infrared Interface"});
  EXPECT_EQ(plugin_->InputQueryAllDeviceStati(texts), 1);
  EXPECT_EQ(texts, (std::vector<std::string>{"", ""}));
  HostDevice device{"id", "name", 5};
  EXPECT_EQ(plugin_->InputQueryDeviceStatus(device), 1);
  EXPECT_EQ(plugin_->InputSetDeviceStatus(device), 1);
  EXPECT_EQ(device.DeviceID + device.DeviceName, "idname");
  std::vector<HostDevice> devices(2);
  EXPECT_EQ(plugin_->InputGetDevices(devices), 3);
  EXPECT_EQ(devices.size(), 2U);
  std::string version;
  EXPECT_EQ(plugin_->InputGetPluginVersion(version), 1);
  EXPECT_EQ(version, "1.3.34");
}

TEST_F(PluginTest, RaisesEventsFromTheLoopBetweenStartAndStop) {
  app_.AddEvents({kPowerEvent, kMuteEvent});
  Create(false, {ApplicationPath::Sample("nec_tv_power"), ApplicationPath::Sample("sony_tv_mute")});
  Initialise();
  ASSERT_NE(plugin_->InputErrorDetails(), nullptr);
  EXPECT_FALSE(plugin_->InputMonitoring());
  EXPECT_EQ(plugin_->InputStartMonitoring(), 1);
  EXPECT_TRUE(plugin_->InputMonitoring());
  played_.exec();
  EXPECT_EQ(sink_.Events, (std::vector<std::string>{"17 NEC&TV_POWER", "18 SONY&TV_MUTE"}));
  EXPECT_EQ(plugin_->InputStopMonitoring(), 1);
  EXPECT_FALSE(plugin_->InputMonitoring());
  EXPECT_EQ(plugin_->InputTerminate(), 1);
  EXPECT_EQ(plugin_->InputErrorDetails(), nullptr);
}

TEST_F(PluginTest, LetsASinkLeaveWithinAnEvent) {
  app_.AddEvents({kPowerEvent});
  Create(false, {app_.Presses("nec_tv_power", 2)});
  auto* events = QueryInterface<IHostEventSource>(*object_);
  Sink leaving;
  const std::uint32_t cookie = events->Subscribe(leaving);
  leaving.OnEvent = [&] { events->Unsubscribe(cookie); };
  Initialise();
  plugin_->InputStartMonitoring();
  played_.exec();
  EXPECT_EQ(leaving.Events.size(), 1U);
  EXPECT_EQ(sink_.Events.size(), 2U);
}

TEST_F(PluginTest, AddsModifiesAndDeletesEventsByItsDialog) {
  Create(true);
  Initialise();
  HostInputEvent event;
  event.EventID = "21";

  WhenTheDialogOpens("Unwanted", "CancelButton");
  EXPECT_EQ(plugin_->InputAddEvent(event), kInputCancelled);
  EXPECT_EQ(event.EventName, "");
  EXPECT_EQ(EventIDs(), std::vector<std::string>{""});

  WhenTheDialogOpens("Lamp", "OKButton");
  EXPECT_EQ(plugin_->InputAddEvent(event), kInputDone);
  EXPECT_EQ(event.EventName, "Lamp");
  EXPECT_EQ(EventIDs(), std::vector<std::string>{"21"});

  WhenTheDialogOpens("Fan", "OKButton");
  EXPECT_EQ(plugin_->InputModifyEvent(event), kInputDone);
  EXPECT_EQ(event.EventName, "Fan");
  EXPECT_NE(Page().find(">Fan<"), std::string::npos);

  EXPECT_EQ(plugin_->InputDeleteEvent(event), kInputDone);
  EXPECT_EQ(plugin_->InputDeleteEvent(event), kInputFailed);
  EXPECT_EQ(plugin_->InputModifyEvent(event), kInputFailed);
  EXPECT_EQ(sink_.Errors, std::vector<std::string>{"InputKeplo.Keplo InputModifyEvent"});
  EXPECT_EQ(plugin_->InputErrorDetails()->ErrorProcedure, "InputModifyEvent");
}

TEST_F(PluginTest, AnswersAsAfterACancelWithoutADisplay) {
  app_.AddEvents({kPowerEvent});
  Create(false);
  Initialise();
  HostInputEvent event;
  event.EventID = "17";
  std::int16_t item = 0;
  EXPECT_EQ(plugin_->InputModifyEvent(event), kInputCancelled);
  EXPECT_EQ(plugin_->InputAddEvent(event), kInputCancelled);
  EXPECT_EQ(plugin_->InputCallMenuItem(item), HostVariant(true));
  EXPECT_EQ(plugin_->InputConfigurePlugin(), kInputDone);
  const auto needsDisplay = [](const std::string& line) { return line.find("needs a display") != line.npos; };
  EXPECT_EQ(std::count_if(log_.begin(), log_.end(), needsDisplay), 4);
  EXPECT_EQ(plugin_->InputDisplayAboutBox(), HostVariant());
  EXPECT_NE(log_.back().find("1.3.34"), std::string::npos);
  EXPECT_EQ(QueryInterface<IControlView>(*object_)->CreateView(nullptr), nullptr);
}

TEST_F(PluginTest, ShowsItsViewInTheHostsProcess) {
  Create(true);
  const std::unique_ptr<QWidget> view(QueryInterface<IControlView>(*object_)->CreateView(nullptr));
  ASSERT_NE(view, nullptr);
  EXPECT_GT(view->sizeHint().width(), 0);
}

TEST_F(PluginTest, GivesTheTwoPages) {
  app_.AddEvents({{"17", "<b>\"A\" & B</b>", "", "NEC&TV_POWER", false, 2}});
  Create(false);
  Initialise();
  const std::string cell = "<td align=\"center\"><font face=\"Verdana\" size=\"2\">";
  const std::string get = Page();
  EXPECT_NE(get.find(cell + "<b>\"A\" & B</b></font></td>\r\n" + cell + "</font></td>\r\n" + cell +
                     "NEC&TV_POWER</font></td>\r\n" + cell + "False</font></td>\r\n"),
            std::string::npos)
      << get;
  HostPageRequest request;
  std::int32_t browser = 0, width = 0, height = 0;
  std::string post;
  EXPECT_EQ(plugin_->InputPostHTMLPage(post, request, browser, width, height), 1);
  EXPECT_EQ(post.size(), get.size() + std::string("<th bordercolor=\"#000080\" bgcolor=\"#C0C0C0\">").size());
}

TEST(Unloading, WaitsForTheLastObject) {
  const ApplicationPath app;
  CreationContext context;
  context.ApplicationPath = app.Path().string();
  {
    const Component component{KEPLO_COMPONENT};
    ComponentObject object = component.Create(kInputKeploClass, context);
    EXPECT_FALSE(component.CanUnload());
    object.reset();
    EXPECT_TRUE(component.CanUnload());
    EXPECT_TRUE(IsLoaded());
  }
  EXPECT_FALSE(IsLoaded());
}

}  // namespace

}  // namespace keplo::tests
