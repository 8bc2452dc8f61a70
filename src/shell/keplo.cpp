#include "shell/keplo.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "config/read_settings.h"
#include "events/error_record.h"
#include "events/event_row.h"

namespace keplo {

namespace {

constexpr int kOpenAttempts = 5;
constexpr std::int32_t kPauseBetweenAttempts = 200000;  // microseconds

// The position of the event list, and the space taken by frame and status panel, twips.
constexpr int kListLeft = 120, kListTop = 2040;
constexpr int kListWidthMargin = 300, kListHeightMargin = 1900;

Data& CreateData(KeploMod& mod, const ui::Clock& clock) {
  mod.modData = std::make_unique<Data>(mod.AppPath, clock);
  return *mod.modData;
}

}  // namespace

Keplo::Keplo(KeploMod& mod, Win32Ser& line, const KeploWindows& windows, const ui::Clock& clock)
    : mod_(mod),
      line_(line),
      windows_(windows),
      clock_(clock),
      m_EventCollection(CreateData(mod, clock), clock) {
  m_EventCollection.TriggerInputEvent = [this](HostInputEvent& event) {
    if (TriggerInputEvent) TriggerInputEvent(event);
  };
  m_EventCollection.TriggerInputErrorCondition = [this](HostErrorRecord& record, bool&) {
    RaiseError(record);
  };
  RightClickMenu.Items = {{"EnableMenu", "Enable", [this] { EnableMenu_Click(); }},
                          {"DisableMenu", "Disable", [this] { DisableMenu_Click(); }},
                          {"MenuSpace1", "-", {}},
                          {"HelpMenu", "Help", [this] { HelpMenu_Click(); }}};
  Timer1.OnTimer = [this] { Timer1_Timer(); };
  LineTime = [] {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now);
  };
  ListView1.Left = kListLeft;
  ListView1.Top = kListTop;

  mod_.Settings.BeepOn = true;
  LoadConfig(mod_.Store);
  if (ReadSettings(mod_.Store, mod_.Settings).Complete()) OpenPort();
  Panel.ShowMonitoring(false);
  SetUpColumns(ListView1);
}

void Keplo::OpenPort() {
  triedPort_ = true;
  Panel.ShowComPort(mod_.Settings.ComPortNr);
  bool open = false;
  for (int attempt = 1; attempt <= kOpenAttempts; ++attempt) {
    open = line_.OpenCom(mod_.Settings.ComPortNr) == 1;
    if (open) break;
    if (attempt == 1 && windows_.PortRefused) windows_.PortRefused();
    line_.uDelay(kPauseBetweenAttempts);
  }
  SetRestingLines();
  Panel.ShowPortStatus(open);
  ShowInterface();
  const bool vexil = mod_.Settings.VexilMode != 0;
  Panel.ShowVexil(vexil);
  if (vexil) line_.SetMode(2);
  if (OnPortOpened) OnPortOpened();
}

void Keplo::SetRestingLines() {
  line_.RTS(-1);
  line_.TXD(0);
}

void Keplo::ShowInterface() {
  mod_.Settings.ReceiverKind = ReceiverKindOf(mod_.Settings.InterfaceType);
  Panel.ShowInterfaceType(mod_.Settings.InterfaceType);
}

void Keplo::RefreshStatusPanel() {
  Panel.ShowComPort(mod_.Settings.ComPortNr);
  Panel.ShowPortStatus(true);  // a refresh does not test the port
  SetRestingLines();
  Panel.ShowMonitoring(Monitoring);
  Panel.ShowVexil(mod_.Settings.VexilMode != 0);
  ShowInterface();
}

std::int32_t Keplo::InputInitialise(std::shared_ptr<void> velmora) {
  HostObject = std::move(velmora);
  ErrorDetails = std::make_shared<HostErrorRecord>();
  initialised_ = m_EventCollection.Initialise(ListView1);
  if (initialised_) listDiffersFromMap_ = false;
  return initialised_ ? 1 : 0;
}

void Keplo::ApplyExternalChanges() {
  if (inTick_ || windowOpen_ || terminated_ || !initialised_) return;
  if (mod_.modData->ChangedElsewhere() && m_EventCollection.ApplyExternalChanges())
    listDiffersFromMap_ = false;
  ReloadConfiguration();
}

bool Keplo::NeedsAnotherCheck() const {
  return initialised_ && !terminated_ && mod_.modData->NeedsAnotherCheck();
}

void Keplo::ReloadConfiguration() try {
  if (!HasFileChanged(mod_.Store)) return;
  const Reload reload = ReloadConfig(mod_.Store);
  if (reload == Reload::Contradicts) {
    throw Failure(ESTALE, mod_.Store.Path.string() +
                              " was changed by another program at places where this one has changes that are "
                              "not saved yet. Close the configuration window with OK to save them; what the "
                              "other program wrote is kept in a file beside it then.");
  }
  if (reload == Reload::NothingNew) return;
  reportedConfigurationFailure_.clear();
  mod_.Store.MergedOtherText = false;
  Settings settings = mod_.Settings;
  if (ReadSettings(mod_.Store, settings).Complete()) ReloadSettings(settings);
} catch (const std::exception& failure) {
  // The next check comes soon and would fail in the same way.
  if (std::exchange(reportedConfigurationFailure_, failure.what()) == failure.what()) return;
  ReportFailure("ApplyExternalChanges", failure);
}

void Keplo::ReloadSettings(const Settings& settings) {
  const bool otherPort = !triedPort_ || settings.ComPortNr != mod_.Settings.ComPortNr;
  const bool zonesSwitchedOn = settings.VexilMode != 0 && mod_.Settings.VexilMode == 0;
  mod_.Settings = settings;
  if (otherPort) return OpenPort();
  Panel.ShowVexil(mod_.Settings.VexilMode != 0);
  if (zonesSwitchedOn) line_.SetMode(2);
  ShowInterface();
}

std::string Keplo::InitialiseFailure() const {
  const std::shared_ptr<const HostErrorRecord> row = m_EventCollection.ErrorRecord();
  return row != nullptr ? row->ErrorDescription : mod_.modData->ErrorDetails().ErrorDescription;
}

std::int32_t Keplo::InputStartMonitoring() {
  Monitoring = true;
  RefreshStatusPanel();
  line_.RTS(-1);
  terminated_ = false;
  SetTimer();
  return 1;
}

std::int32_t Keplo::InputStopMonitoring() {
  ReportReleased(keys_.ReleaseAll());
  Monitoring = false;
  Timer1.SetEnabled(false);
  RefreshStatusPanel();
  return 1;
}

std::int32_t Keplo::InputTerminate() {
  // A host may not have stopped monitoring, or may call this from inside a tick; no further tick may read the
  // port.
  terminated_ = true;
  Timer1.SetEnabled(false);
  ReportReleased(keys_.ReleaseAll());
  HostObject.reset();
  ErrorDetails.reset();
  line_.CloseCom();
  return 1;
}

void Keplo::Resize(int width, int height) {
  FrameWidth = width;
  FrameHeight = height;
  ListView1.Width = std::max(0, width - kListWidthMargin);
  ListView1.Height = std::max(0, height - kListHeightMargin);
  if (ListView1.OnChanged) ListView1.OnChanged();
}

void Keplo::RaiseError(HostErrorRecord& record) const {
  bool stopping = false;  // no failure stops the plug-in
  try {
    if (TriggerInputErrorCondition) TriggerInputErrorCondition(record, stopping);
  } catch (...) {
    // The host's error handler failed too. ErrorDetails still has the record.
  }
}

std::int32_t Keplo::ReportFailure(std::string_view procedure, const std::exception& failure) noexcept try {
  // Keeps the record alive, since the host's handler may end in InputTerminate.
  const auto record = std::make_shared<HostErrorRecord>(
      ErrorRecordOf(failure, "InputKeplo.Keplo", std::string(procedure), ui::RecordDate(clock_.Now())));
  ErrorDetails = record;
  RaiseError(*record);
  return 0;
} catch (...) {
  return 0;  // out of memory
}

}  // namespace keplo
