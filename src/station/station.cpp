#include "station/station.h"

#include <cerrno>
#include <utility>

#include "config/check_config.h"
#include "failure.h"
#include "station/press_reasons.h"

namespace keplo {

namespace {

LineSpec WithSettings(LineSpec spec, const Settings& settings) {
  spec.Options.ReadBy = &settings.Analysis;
  spec.PortOfSettings = &settings.ComPortNr;
  return spec;
}

constexpr std::chrono::milliseconds kQuiet{500};  // between two captures
constexpr std::uint64_t kFewLosses = 50;          // samples for each one that may have been filled in
constexpr int kMostCodeless = 6;                  // consecutive captures of a key that cannot be read

KeploWindows WithPortRefused(KeploWindows windows, std::function<void()> portRefused) {
  windows.PortRefused = std::move(portRefused);
  return windows;
}

}  // namespace

Station::Station(KeploMod& mod, const LineSpec& spec, const KeploWindows& windows, const ui::Clock& clock,
                 const Log& log)
    : Station(mod,
              OpenLine(WithSettings(spec, mod.Settings), mod.AppPath, mod.Settings.ReceiverKind,
                       [this](const std::string& text) { HandleLineMessage(text); }),
              windows, clock, log) {}

Station::Station(KeploMod& mod, OpenedLine line, const KeploWindows& windows, const ui::Clock& clock,
                 const Log& log)
    : log_(log),
      line_(std::move(line)),
      control_(mod, *line_.Line, WithPortRefused(windows, [this] { ReportPortFailure(); }), clock) {
  if (const std::string damage = CheckConfig(mod.Store); !damage.empty())
    log_.Write(LogLevel::Warning, damage);
  for (const std::string& damage : mod.Store.Raw.Damage) log_.Write(LogLevel::Warning, damage);
  for (const std::string& remark : line_.Remarks) log_.Write(LogLevel::Warning, remark);
  ReportPortFailure();
  control_.OnPortOpened = [this] { ReportPortFailure(); };
  if (line_.Device != nullptr) rest_.emplace(*line_.Device, control_);
  if (PressSource* const presses = line_.Presses) control_.LineTime = [presses] { return presses->Now(); };
  control_.MayBeep = [this] { return codeless_ <= kMostCodeless || !IsLightContinuing(); };
  control_.OnPress = [this](const TickReport& tick) {
    if (line_.Device != nullptr) ReportLosses(tick);
    // An empty capture of a device means that it was unplugged, or that the light was over too soon.
    if (line_.Device == nullptr || (tick.Reading.Ended != Stage::Empty && !IsLamp(tick))) CountPress(tick);
  };
}

void Station::ReportPortFailure() {
  if (line_.Device == nullptr) return;
  const std::string why = line_.Device->WhyNot();
  if (why.empty()) opened_ = true;
  if (std::exchange(reportedPortFailure_, why) != why && !why.empty()) log_.Write(LogLevel::Warning, why);
}

/// A lost device is reported to the host as an error; other messages are only logged.
void Station::HandleLineMessage(const std::string& text) {
  if (line_.Device->WhyNot().empty()) opened_ = true;
  if (OnLineMessage) OnLineMessage(text);
  if (text != line_.Device->WhyNot()) return log_.Write(LogLevel::Warning, text);
  control_.ReportFailure("DCD", Failure(ENODEV, text));
}

std::string Station::EventMapFailure() const {
  return "The event map cannot be loaded: " + control_.InitialiseFailure();
}

std::string Station::WhyNotSent() const {
  if (line_.Device == nullptr) return "this line has no transmitter";
  if (line_.Device->Sent()) return {};
  const std::string why = line_.Device->WhyNot();
  return why.empty() ? "the line did not send it whole" : why;
}

/// Whether the current signal follows the last capture closely.
bool Station::IsLightContinuing() const { return control_.LineTime() - lastHeard_ < kQuiet; }

/// Recognises continuous light without a code, which does not count as presses until the line has been quiet.
/// Dittos of a held key, which have no code for the first analysis, are not such light.
bool Station::IsLamp(const TickReport& tick) {
  const bool isSignal = tick.Reading.Ended == Stage::Code || tick.Reading.Ended == Stage::Raw;
  const bool continues = IsLightContinuing();
  lastHeard_ = control_.LineTime();
  codeless_ = isSignal || control_.HasOnlyDittos() ? 0 : continues ? codeless_ + 1 : 1;
  if (codeless_ == kMostCodeless + 1) {
    log_.Write(LogLevel::Warning,
               "Light without a signal goes on: a lamp? Shade the receiver, or turn it "
               "away. Until the line is quiet this counts for no press.");
  }
  return codeless_ > kMostCodeless;
}

/// Warns, once, if a press could not be read because the machine was too busy to capture all of it.
void Station::ReportLosses(const TickReport& tick) {
  LineLosses before = std::exchange(losses_, line_.Device->Losses());
  if (losses_.Samples < before.Samples || losses_.MissedEdges < before.MissedEdges) before = {};
  const auto filled = losses_.FilledSamples - before.FilledSamples;
  const bool few =
      losses_.MissedEdges == before.MissedEdges && filled * kFewLosses <= losses_.Samples - before.Samples;
  if (few || tick.Reading.HasCode() || std::exchange(lossesReported_, true)) return;
  log_.Write(
      LogLevel::Warning,
      "A press was not taken whole: some of it was missed, as on a busy machine. keplo ports tells how "
      "to give captures priority.");
}

void Station::CountPress(const TickReport& tick) {
  tally_.Presses += tick.Taps;
  tally_.AtStage.at(static_cast<std::size_t>(tick.Reading.Ended)) += tick.Taps;
  tally_.Events += tick.Dispatched.Raised;
  const std::string reason = WhyNoEvent(tick);
  if (reason.empty()) return;
  tally_.WithoutEvent += tick.Taps;
  const PlayedPress* press = line_.Presses == nullptr ? nullptr : line_.Presses->LastPress();
  const std::string place =
      press == nullptr ? "a press" : press->Path + " press " + std::to_string(press->Number);
  log_.Write(LogLevel::Notice, place + ": heard, but no event: " + reason);
}

}  // namespace keplo
