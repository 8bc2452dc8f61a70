#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>

#include "component_loader/component_frame.h"
#include "host/application_path.h"
#include "host/ivelmora_input_plugin.h"

namespace keplo::tests {

namespace {

class Sink : public IHostEventSink {
 public:
  virtual ~Sink() = default;
  Texts Events, Errors;
  std::function<void()> OnEvent = [] {}, OnError = [] {};

  void TriggerInputEvent(HostInputEvent& event) override {
    Events.push_back(event.EventID + " " + std::get<std::string>(event.EventCommand));
    OnEvent();
  }
  void TriggerInputErrorCondition(HostErrorRecord& record, bool& /*stopping*/) override {
    Errors.push_back(record.ErrorSource + " " + record.ErrorProcedure);
    OnError();
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
  void Create(bool display, const Texts& replay) {
    CreationContext context;
    context.ApplicationPath = app_.Path().string();
    context.ReplayFiles = replay;
    context.MayUseDisplay = display;
    context.Log = [this](LogLevel, const std::string& text) { log_.push_back(text); };
    context.ReplayPlayed = [this] { played_.quit(); };
    object_ = component_->Create(kInputKeploClass, context);
    plugin_ = QueryInterface<IVelmoraInputPLugin>(*object_);
    events_ = QueryInterface<IHostEventSource>(*object_);
    events_->Subscribe(sink_);
    std::shared_ptr<IVelmoraHost> velmora;
    ASSERT_EQ(plugin_->InputInitialise(velmora), kInputDone);
  }

  /// Acts on the next modal window.
  void OnceShown(const std::function<void(QWidget&)>& act) {
    look_.callOnTimeout([this, act] {
      if (QApplication::activeModalWidget() == nullptr) return;
      look_.stop();
      act(*QApplication::activeModalWidget());
    });
    look_.start(1);
  }
  bool IsGone() {
    EXPECT_FALSE(component_->CanUnload()) << "at once";
    return QTest::qWaitFor([this] { return component_->CanUnload(); }, 60000);
  }

  ApplicationPath app_;
  Texts log_;
  QEventLoop played_;
  QTimer look_;
  Sink sink_;
  std::optional<Component> component_{std::in_place, KEPLO_COMPONENT};
  ComponentObject object_;
  IVelmoraInputPLugin* plugin_ = nullptr;
  IHostEventSource* events_ = nullptr;
};

TEST_F(PluginTest, AnswersWithoutADisplayAsIfCancelled) {
  app_.AddPowerEvent("[]");
  const std::string config = app_.Read("app/keplo.cfg") + "by hand";
  app_.Write("app/keplo.cfg", config);
  Create(false, {kMute});
  EXPECT_EQ(plugin_->InputIconFileName(), (app_.Path() / "inkeplo.ico").string());
  Texts texts;
  EXPECT_EQ(plugin_->InputQueryAllDeviceStati(texts), 1);
  EXPECT_EQ(texts, (Texts{"", ""}));
  HostDevice device{"id", "name", 5};
  EXPECT_EQ(plugin_->InputQueryDeviceStatus(device), 1);
  EXPECT_EQ(plugin_->InputSetDeviceStatus(device), 1);
  EXPECT_EQ(device.DeviceID + device.DeviceName, "idname");
  std::vector<HostDevice> devices(2);
  EXPECT_EQ(plugin_->InputGetDevices(devices), 3);
  EXPECT_EQ(devices.size(), 2U);

  HostInputEvent event;
  event.EventID = "17";
  std::int16_t item = 0;
  EXPECT_EQ(plugin_->InputModifyEvent(event), kInputCancelled);
  EXPECT_EQ(plugin_->InputAddEvent(event), kInputCancelled);
  EXPECT_EQ(plugin_->InputCallMenuItem(item), HostVariant(true));
  EXPECT_EQ(plugin_->InputConfigurePlugin(), kInputDone);
  EXPECT_EQ(app_.Read("app/keplo.cfg"), config);
  const auto needsDisplay = [](const std::string& line) { return line.find("needs a display") != line.npos; };
  EXPECT_EQ(std::count_if(log_.begin(), log_.end(), needsDisplay), 4);
  EXPECT_EQ(plugin_->InputDisplayAboutBox(), HostVariant());
  ExpectPart(log_.back(), "1.3.34");
  std::string version;
  plugin_->InputGetPluginVersion(version);
  EXPECT_EQ(version, "1.3.34");
  EXPECT_EQ(QueryInterface<IControlView>(*object_)->CreateView(nullptr), nullptr);
  EXPECT_EQ(plugin_->InputDeleteEvent(event), kInputDone);
  EXPECT_EQ(QueryInterface<IUsedUpEventIDs>(*object_)->HighestUsedUp(), "17");
}

TEST_F(PluginTest, RaisesEventsFromTheLoopBetweenStartAndStop) {
  app_.AddPowerEvent("[]");
  app_.AddEvents({kMuteEvent});
  Create(false, {kPower, kMute});
  Sink leaving;
  const std::uint32_t cookie = events_->Subscribe(leaving);
  leaving.OnEvent = [&] { events_->Unsubscribe(cookie); };
  ASSERT_NE(plugin_->InputErrorDetails(), nullptr);
  EXPECT_FALSE(plugin_->InputMonitoring());
  EXPECT_EQ(plugin_->InputStartMonitoring(), 1);
  sink_.OnEvent = [] { throw std::runtime_error("the host is out"); };
  EXPECT_TRUE(plugin_->InputMonitoring());
  played_.exec();
  EXPECT_EQ(sink_.Events, (Texts{"17 NEC&TV_POWER", "18 SONY&TV_MUTE"}));
  EXPECT_EQ(leaving.Events, Texts{"17 NEC&TV_POWER"});
  EXPECT_EQ(sink_.Errors, Texts(2, "InputKeplo.Keplo Timer1_Timer"));
  EXPECT_EQ(plugin_->InputStopMonitoring(), 1);
  EXPECT_FALSE(plugin_->InputMonitoring());
  EXPECT_EQ(plugin_->InputTerminate(), 1);
  EXPECT_EQ(plugin_->InputErrorDetails(), nullptr);

  EXPECT_FALSE(component_->CanUnload());
  object_.reset();
  EXPECT_TRUE(component_->CanUnload());
  EXPECT_TRUE(IsLoaded());
  component_.reset();
  EXPECT_FALSE(IsLoaded());
}

TEST_F(PluginTest, ContinuesWithThePortChosenInItsWindow) {
  app_.AddPowerEvent("[]");
  Create(true, {kPower});
  plugin_->InputStartMonitoring();
  OnceShown([](QWidget& window) {
    QTest::keyClick(window.findChild<QComboBox*>("ComList"), Qt::Key_Down);
    window.findChild<QAbstractButton*>("OKButton")->click();
  });
  std::int16_t item = 0;
  EXPECT_EQ(plugin_->InputCallMenuItem(item), HostVariant(true));
  EXPECT_NE(app_.Read("app/keplo.cfg").find("COMPORT= 2\r\n"), std::string::npos);
  EXPECT_EQ(sink_.Events, Texts());
  played_.exec();
  EXPECT_EQ(sink_.Events, Texts{"17 NEC&TV_POWER"});
  EXPECT_EQ(sink_.Errors, Texts());
}

TEST_F(PluginTest, SurvivesAReleaseDuringACall) {
  app_.AddPowerEvent("[]");
  Create(true, {kPower});
  OnceShown([this](QWidget& box) {
    object_.reset();
    box.close();
  });
  plugin_->InputDisplayAboutBox();
  EXPECT_TRUE(IsGone());

  Create(false, {kPower});
  const ui::SystemClock clock;
  ASSERT_EQ(Data(app_.Path(), clock).ExecuteSQLCommand("update colclsKeploEvents set Zone = 99999"), 1);
  sink_.OnError = [&] { object_.reset(); };
  std::shared_ptr<IVelmoraHost> velmora;
  EXPECT_EQ(plugin_->InputInitialise(velmora), kInputFailed);
  EXPECT_EQ(log_, Texts());
  EXPECT_TRUE(IsGone());
}

}  // namespace

}  // namespace keplo::tests
