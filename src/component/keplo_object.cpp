#include "component/keplo_object.h"

#include <QApplication>
#include <algorithm>
#include <exception>
#include <utility>

#include "qt/control_view.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"
#include "qt/qt_event_dialog.h"
#include "signal/stage_text.h"
#include "station/on_air.h"
#include "station/silent_boxes.h"

namespace keplo::component {

namespace {

constexpr std::chrono::seconds kCare{1};  // between checks whether the device was unplugged or plugged in
constexpr std::chrono::milliseconds kRetryTime{400};  // after a check that an operation has prevented

LineSpec LineSpecOf(const CreationContext& context) {
  LineSpec spec;
  spec.ReplayFiles = context.ReplayFiles;
  spec.InRealTime = context.ReplayInRealTime;
  if (context.SampleTime > 0) spec.Options.SampleTime = context.SampleTime;
  if (context.HoldMs >= 0) spec.Options.HoldMs = context.HoldMs;
  spec.Options.Shape = context.ShapeReplay;
  if (context.Port > 0) spec.Port = context.Port;
  return spec;
}

std::unique_ptr<ui::Boxes> MakeBoxes(bool mayUseDisplay, const Log& log) {
  if (mayUseDisplay) return std::make_unique<qt::QtBoxes>();
  return std::make_unique<LoggedBoxes>(log);
}

std::unique_ptr<EventDialogShower> MakeEventDialog(bool mayUseDisplay, const Log& log) {
  if (mayUseDisplay) return std::make_unique<qt::QtEventDialog>();
  return std::make_unique<CancelledEventDialog>(log);
}

}  // namespace

/// Delays a release during its lifetime: a handler may release the object inside the tick or operation that
/// raised the event.
class KeploObject::Busy {
 public:
  explicit Busy(KeploObject& object) : object_(object) { ++object_.uses_.Depth; }
  ~Busy() {
    if (--object_.uses_.Depth > 0) return;
    if (object_.uses_.ReleasePending) {
      object_.ReleaseLater();
    } else if (object_.control_.NeedsAnotherCheck()) {
      object_.CheckSoon();
    }
  }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  KeploObject& object_;
};

KeploObject::KeploObject(const CreationContext& context, std::function<void()> released)
    : mayUseDisplay_(context.MayUseDisplay),
      inRealTime_(context.ReplayInRealTime),
      log_(context.Log),
      released_(std::move(released)),
      replayPlayed_(context.ReplayPlayed),
      changes_(context.ApplicationPath),
      mod_(context.ApplicationPath),
      boxes_(MakeBoxes(mayUseDisplay_, log_)),
      eventDialog_(MakeEventDialog(mayUseDisplay_, log_)),
      station_(mod_, LineSpecOf(context), Windows(), clock_, log_),
      control_(station_.Control()),
      controlTick_(std::exchange(control_.Timer1.OnTimer, [this] { Tick(); })),
      timer_(control_.Timer1, station_.Rest()) {
  otherPrograms_.setSingleShot(true);
  otherPrograms_.callOnTimeout([this] { CheckForChanges(); });
  otherPrograms_.start(changes_.TimeToNextCheck());
  if (const int news = changes_.Descriptor(); news >= 0) {
    news_ = std::make_unique<QSocketNotifier>(news, QSocketNotifier::Read);
    QObject::connect(news_.get(), &QSocketNotifier::activated, &otherPrograms_, [this] {
      changes_.Notice();
      otherPrograms_.start(changes_.TimeToNextCheck());
    });
  }
  control_.TriggerInputEvent = [this](HostInputEvent& event) {
    const Busy busy(*this);
    sinks_.Events.ForEach([&](IHostEventSink& sink) { sink.TriggerInputEvent(event); });
  };
  control_.OnHeard = [this](const TickReport& tick) { ReportSignal(tick); };
  control_.OnKey = [this](KeyChange change, const KeyPress& press) { ReportKey(change, press); };
  control_.TriggerInputErrorCondition = [this](HostErrorRecord& record, bool& stopping) {
    const Busy busy(*this);
    sinks_.Events.ForEach([&](IHostEventSink& sink) { sink.TriggerInputErrorCondition(record, stopping); });
  };
  KeepAliveInMenu();
}

KeploObject::~KeploObject() = default;

/// A menu entry may show a box, which runs an event loop, or report a failure to the host, which may then
/// release the object.
void KeploObject::KeepAliveInMenu() {
  for (ui::MenuItem& item : control_.RightClickMenu.Items) {
    if (!item.OnClick) continue;
    item.OnClick = [this, click = std::move(item.OnClick)] {
      const Busy busy(*this);
      click();
    };
  }
}

void KeploObject::CheckForChanges() {
  // This may be called from the event loop of a dialog that an operation shows.
  if (uses_.Depth == 0 && changes_.IsDue()) {
    const Busy busy(*this);
    control_.ApplyExternalChanges();
  }
  otherPrograms_.start(std::max(changes_.TimeToNextCheck(), kRetryTime));
}

void KeploObject::CheckSoon() {
  changes_.CheckSoon();
  otherPrograms_.start(changes_.TimeToNextCheck());
}

KeploWindows KeploObject::Windows() {
  return {*boxes_, *eventDialog_,
          [this] {
            if (mayUseDisplay_) {
              ShowWindow();
            } else {
              log_.Write(LogLevel::Warning, "The configuration window needs a display; it counts as closed.");
            }
          },
          mayUseDisplay_};
}

/// There are no ticks while the window is open, so a timer looks after the device.
void KeploObject::ShowWindow() {
  LineRest* const line = station_.Rest();
  QTimer care;
  care.callOnTimeout([line] { line->LookAfterDevice(); });
  if (line != nullptr) care.start(kCare);
  qt::ShowMainWindow(
      mod_, station_.Line(), [this] { return station_.DescribeLine(); }, station_.OnLineMessage,
      QApplication::activeWindow());
  // Whatever was received meanwhile is out of date.
  if (line != nullptr) line->Forget();
}

void* KeploObject::QueryInterface(std::string_view name) {
  if (name == IVelmoraInputPLugin::kInterfaceName) return static_cast<IVelmoraInputPLugin*>(this);
  if (name == IHostEventSource::kInterfaceName) return static_cast<IHostEventSource*>(&sinks_.Events);
  if (name == ISignalSource::kInterfaceName) return static_cast<ISignalSource*>(&sinks_.Signals);
  if (name == ISignalSender::kInterfaceName) return static_cast<ISignalSender*>(this);
  if (name == IKeySource::kInterfaceName) return static_cast<IKeySource*>(&sinks_.Keys);
  if (name == IControlView::kInterfaceName) return static_cast<IControlView*>(this);
  if (name == IEventCatalogue::kInterfaceName) return static_cast<IEventCatalogue*>(this);
  if (name == IUsedUpEventIDs::kInterfaceName) return static_cast<IUsedUpEventIDs*>(this);
  if (name == IPressTally::kInterfaceName) return static_cast<IPressTally*>(this);
  if (name == IStageTally::kInterfaceName) return static_cast<IStageTally*>(this);
  return nullptr;
}

/// Deletes the object from the event loop, since it owns the timer whose tick may be running.
void KeploObject::ReleaseLater() {
  control_.Timer1.SetEnabled(false);
  QTimer::singleShot(0, &otherPrograms_, [this] { Release(); });
}

void KeploObject::Release() {
  uses_.ReleasePending = uses_.Depth > 0;
  if (uses_.ReleasePending) {
    // No more calls to a host that has released the object.
    sinks_.Clear();
    replayPlayed_ = nullptr;
    listShown_ = nullptr;
    log_.Silence();
    return;
  }
  const std::function<void()> released = std::move(released_);
  delete this;
  released();
}

/// Runs an operation of the control. Exceptions never reach the host; it gets an error record instead.
template <typename Result, typename Operation>
Result KeploObject::Guarded(const char* name, Result otherwise, Operation operation) try {
  const Busy busy(*this);
  return operation();
} catch (const std::exception& failure) {
  control_.ReportFailure(name, failure);
  return otherwise;
}

std::string KeploObject::InputIconFileName() { return control_.InputIconFileName(); }

HostVariant KeploObject::InputDisplayAboutBox() {
  return Guarded("InputDisplayAboutBox", HostVariant(), [&] {
    control_.InputDisplayAboutBox();
    return HostVariant();
  });
}

std::int32_t KeploObject::InputGetPluginMenuItems(std::vector<std::string>& mnuItems) {
  return control_.InputGetPluginMenuItems(mnuItems);
}

HostVariant KeploObject::InputCallMenuItem(std::int16_t& index) {
  return Guarded("InputCallMenuItem", HostVariant(true),
                 [&] { return HostVariant(control_.InputCallMenuItem(index)); });
}

std::int32_t KeploObject::InputQueryDeviceStatus(HostDevice& /*DevStruct*/) { return kInputDone; }

std::int32_t KeploObject::InputSetDeviceStatus(HostDevice& /*DevStruct*/) { return kInputDone; }

std::int32_t KeploObject::InputQueryAllDeviceStati(std::vector<std::string>& Stati) {
  Stati.assign(2, "");
  return kInputDone;
}

std::int32_t KeploObject::InputGetDevices(std::vector<HostDevice>& /*Devices*/) { return kInputNoDevices; }

std::int32_t KeploObject::InputConfigurePlugin() {
  return Guarded("InputConfigurePlugin", kInputFailed, [&] { return control_.InputConfigurePlugin(); });
}

std::int32_t KeploObject::InputInitialise(std::shared_ptr<IVelmoraHost>& Velmora) {
  return Guarded("InputInitialise", kInputFailed, [&] {
    const std::int32_t result = control_.InputInitialise(Velmora);
    if (result != kInputDone) log_.Write(LogLevel::Error, station_.EventMapFailure());
    return result;
  });
}

std::int32_t KeploObject::InputStartMonitoring() {
  timer_.setInterval(station_.Played() || inRealTime_ ? control_.Timer1.Interval : 0);
  if (LineRest* const line = station_.Rest()) line->Forget();
  return Guarded("InputStartMonitoring", kInputFailed, [&] { return control_.InputStartMonitoring(); });
}

std::int32_t KeploObject::InputStopMonitoring() {
  return Guarded("InputStopMonitoring", kInputFailed, [&] { return control_.InputStopMonitoring(); });
}

std::int32_t KeploObject::InputTerminate() {
  return Guarded("InputTerminate", kInputFailed, [&] { return control_.InputTerminate(); });
}

std::int32_t KeploObject::InputAddEvent(HostInputEvent& objInputEvent) {
  return Guarded("InputAddEvent", kInputFailed, [&] { return control_.InputAddEvent(objInputEvent); });
}

std::int32_t KeploObject::InputDeleteEvent(HostInputEvent& objInputEvent) {
  return Guarded("InputDeleteEvent", kInputFailed, [&] { return control_.InputDeleteEvent(objInputEvent); });
}

bool KeploObject::InputMonitoring() { return control_.InputMonitoring(); }

std::int32_t KeploObject::InputModifyEvent(HostInputEvent& objInputEvent) {
  return Guarded("InputModifyEvent", kInputFailed, [&] { return control_.InputModifyEvent(objInputEvent); });
}

std::shared_ptr<HostErrorRecord> KeploObject::InputErrorDetails() { return control_.InputErrorDetails(); }

std::int32_t KeploObject::InputHouseKeepingGetEventIDs(std::vector<std::string>& EventIDs) {
  return control_.InputHouseKeepingGetEventIDs(EventIDs);
}

std::int32_t KeploObject::InputGetPluginVersion(std::string& szVersion) {
  return control_.InputGetPluginVersion(szVersion);
}

std::int32_t KeploObject::InputGetHTMLPage(std::string& szHTML, HostPageRequest& /*Request*/,
                                           std::int32_t& /*Btype*/, std::int32_t& /*lwidth*/,
                                           std::int32_t& /*lheight*/) {
  return control_.InputGetHTMLPage(szHTML);
}

std::int32_t KeploObject::InputPostHTMLPage(std::string& szHTML, HostPageRequest& /*Request*/,
                                            std::int32_t& /*Btype*/, std::int32_t& /*lwidth*/,
                                            std::int32_t& /*lheight*/) {
  return control_.InputPostHTMLPage(szHTML);
}

QWidget* KeploObject::CreateView(QWidget* parent) {
  if (!mayUseDisplay_) return nullptr;
  auto* view = new qt::ControlView(control_, parent);
  view->WhenListIsShown([this] {
    if (listShown_) listShown_();
  });
  return view;
}

std::string KeploObject::HighlightedEvent() { return station_.HighlightedEvent(); }

bool KeploObject::DescribeEvent(const std::string& eventID, EventDetails& details) {
  return station_.DescribeEvent(eventID, details);
}

std::string KeploObject::HighestUsedUp() {
  const auto read = [&] { return std::to_string(control_.HighestUsedUpEventID()); };
  return Guarded("HighestUsedUp", std::string("0"), read);
}

IPressTally::Tally KeploObject::Presses() {
  const PressTally& tally = station_.Tally();
  return {tally.Presses, tally.Events, tally.WithoutEvent};
}

std::vector<IStageTally::Stage> KeploObject::Stages() {
  std::vector<IStageTally::Stage> stages;
  const auto& tally = station_.Tally().AtStage;
  for (std::size_t i = 0; i < tally.size(); ++i) {
    const auto stage = static_cast<keplo::Stage>(i);
    if (tally[i] > 0)
      stages.push_back({std::string(StageName(stage)), std::string(MeaningOf(stage)), tally[i]});
  }
  return stages;
}

void KeploObject::ReportKey(KeyChange change, const KeyPress& press) {
  const Busy busy(*this);
  const auto held = std::chrono::duration_cast<std::chrono::milliseconds>(press.Held);
  const HeardKey key = {press.Command,  "G" + press.Signature.Digits,
                        press.Captures, static_cast<int>(held.count()),
                        press.Place,    press.Zone};
  sinks_.Keys.ForEach([&](IKeySink& sink) {
    if (change == KeyChange::Pressed) return sink.KeyPressed(key);
    if (change == KeyChange::Held) return sink.KeyHeld(key);
    sink.KeyReleased(key);
  });
}

void KeploObject::ReportSignal(const TickReport& tick) {
  if (sinks_.Signals.IsEmpty()) return;
  const Busy busy(*this);
  const HeardSignal heard = HeardOnAir(mod_, station_.Line(), tick);
  if (heard.Timings.empty()) return;
  sinks_.Signals.ForEach([&](ISignalSink& sink) { sink.SignalHeard(heard); });
}

std::string KeploObject::SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier) {
  return TrySending([&] { return SendLengths(mod_, station_.Line(), timings, carrier); });
}

std::string KeploObject::SendCommand(const std::string& command) {
  return TrySending([&] { return SendLearned(mod_, station_.Line(), command); });
}

std::string KeploObject::TrySending(const std::function<std::string()>& send) {
  if (uses_.Depth > 0) return "the plug-in is busy";
  return Guarded("SendSignal", std::string("it failed"), [&] {
    std::string refusal = send();
    return refusal.empty() ? station_.WhyNotSent() : refusal;
  });
}

void KeploObject::Tick() {
  const Busy busy(*this);
  controlTick_();
  if (station_.Played()) FinishReplay();
}

void KeploObject::FinishReplay() {
  timer_.setInterval(control_.Timer1.Interval);
  if (const auto played = std::exchange(replayPlayed_, nullptr)) played();
}

}  // namespace keplo::component
