#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>

#include "component/event_sinks.h"
#include "host/component_entry.h"
#include "host/ivelmora_input_plugin.h"
#include "keplo_mod.h"
#include "qt/line_timer.h"
#include "station/changes_watch.h"
#include "station/log.h"
#include "station/station.h"

namespace keplo::component {

/// The control as an object of the component: implements the host's interfaces, and runs the timer in the
/// host's event loop.
class KeploObject final : public IComponentObject,
                          public IVelmoraInputPLugin,
                          public IControlView,
                          public IEventCatalogue,
                          public IUsedUpEventIDs,
                          public IPressTally,
                          public IStageTally,
                          public ISignalSender {
 public:
  /// @param released runs after the host has released the object and it has been deleted
  /// @throws Failure if a recording or keplo.cfg cannot be read
  KeploObject(const CreationContext& context, std::function<void()> released);
  virtual ~KeploObject();

  void* QueryInterface(std::string_view name) override;
  void Release() override;

  std::string InputIconFileName() override;
  HostVariant InputDisplayAboutBox() override;
  std::int32_t InputGetPluginMenuItems(std::vector<std::string>& mnuItems) override;
  HostVariant InputCallMenuItem(std::int16_t& index) override;
  std::int32_t InputQueryDeviceStatus(HostDevice& DevStruct) override;
  std::int32_t InputSetDeviceStatus(HostDevice& DevStruct) override;
  std::int32_t InputQueryAllDeviceStati(std::vector<std::string>& Stati) override;
  std::int32_t InputGetDevices(std::vector<HostDevice>& Devices) override;
  std::int32_t InputConfigurePlugin() override;
  std::int32_t InputInitialise(std::shared_ptr<IVelmoraHost>& Velmora) override;
  std::int32_t InputStartMonitoring() override;
  std::int32_t InputStopMonitoring() override;
  std::int32_t InputTerminate() override;
  std::int32_t InputAddEvent(HostInputEvent& objInputEvent) override;
  std::int32_t InputDeleteEvent(HostInputEvent& objInputEvent) override;
  bool InputMonitoring() override;
  std::int32_t InputModifyEvent(HostInputEvent& objInputEvent) override;
  std::shared_ptr<HostErrorRecord> InputErrorDetails() override;
  std::int32_t InputHouseKeepingGetEventIDs(std::vector<std::string>& EventIDs) override;
  std::int32_t InputGetPluginVersion(std::string& szVersion) override;
  std::int32_t InputGetHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                std::int32_t& lwidth, std::int32_t& lheight) override;
  std::int32_t InputPostHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                 std::int32_t& lwidth, std::int32_t& lheight) override;

  QWidget* CreateView(QWidget* parent) override;
  std::string HighlightedEvent() override;
  void WhenListIsShown(std::function<void()> shown) override { listShown_ = std::move(shown); }
  bool DescribeEvent(const std::string& eventID, EventDetails& details) override;
  bool ListDiffersFromMap() override { return control_.ListDiffersFromMap(); }
  std::uint64_t Revision() override { return control_.ListView1.Changes(); }
  std::string HighestUsedUp() override;
  Tally Presses() override;
  std::vector<IStageTally::Stage> Stages() override;
  std::string SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier) override;
  std::string SendCommand(const std::string& command) override;

 private:
  template <typename Result, typename Operation>
  Result Guarded(const char* name, Result otherwise, Operation operation);

  class Busy;
  /// Nesting depth of operations and ticks in progress, and whether a release is waiting for their end.
  struct Uses {
    int Depth = 0;
    bool ReleasePending = false;
  };

  void KeepAliveInMenu();
  void ReleaseLater();
  void CheckForChanges();
  void CheckSoon();
  KeploWindows Windows();
  void ShowWindow();
  void Tick();
  void ReportSignal(const TickReport& tick);
  std::string TrySending(const std::function<std::string()>& send);
  void ReportKey(KeyChange change, const KeyPress& press);
  void FinishReplay();

  const bool mayUseDisplay_;
  const bool inRealTime_;
  Log log_;
  std::function<void()> released_;
  std::function<void()> replayPlayed_;
  std::function<void()> listShown_;

  ui::SystemClock clock_;
  ChangesWatch changes_;
  KeploMod mod_;
  std::unique_ptr<ui::Boxes> boxes_;
  std::unique_ptr<EventDialogShower> eventDialog_;
  Station station_;
  Keplo& control_;
  std::function<void()> controlTick_;
  qt::LineTimer timer_;
  QTimer otherPrograms_;
  std::unique_ptr<QSocketNotifier> news_;
  HostSinks sinks_;
  Uses uses_;
};

}  // namespace keplo::component
