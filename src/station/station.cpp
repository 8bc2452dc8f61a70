#include "station/station.h"

#include <cerrno>
#include <utility>

#include "config/check_config.h"
#include "failure.h"
#include "station/press_words.h"

namespace keplo {

namespace {

LineSpec ReadAsSet(LineSpec spec, const Settings& settings) {
  spec.Options.ReadBy = &settings.Analysis;
  spec.PortOfSettings = &settings.ComPortNr;
  return spec;
}

constexpr std::chrono::milliseconds kQuiet{500};  // from one capture to the next
constexpr std::uint64_t kFewLosses = 50;          // one sample of so many may be filled in
constexpr int kMostCodeless = 6;                  // captures one after the other, of a key that is not read

KeploWindows With(KeploWindows windows, std::function<void()> portRefused) {
  windows.PortRefused = std::move(portRefused);
  return windows;
}

}  // namespace

Station::Station(KeploMod& mod, const LineSpec& spec, const KeploWindows& windows, const ui::Clock& clock,
                 const Log& log)
    : Station(mod,
              OpenLine(ReadAsSet(spec, mod.Settings), mod.AppPath, mod.Settings.ReceiverKind,
                       [this](const std::string& text) { TellOfLine(text); }),
              windows, clock, log) {}

Station::Station(KeploMod& mod, OpenedLine line, const KeploWindows& windows, const ui::Clock& clock,
                 const Log& log)
    : log_(log),
      line_(std::move(line)),
      control_(mod, *line_.Line, With(windows, [this] { TellWhyNotOpen(); }), clock) {
  if (const std::string damage = CheckConfig(mod.Store); !damage.empty())
    log_.Write(LogLevel::Warning, damage);
  for (const std::string& damage : mod.Store.Raw.Damage) log_.Write(LogLevel::Warning, damage);
  for (const std::string& remark : line_.Remarks) log_.Write(LogLevel::Warning, remark);
  TellWhyNotOpen();
  control_.OnPortOpened = [this] { TellWhyNotOpen(); };
  if (line_.Device != nullptr) rest_.emplace(*line_.Device, control_);
  if (PressSource* const presses = line_.Presses) control_.LineTime = [presses] { return presses->Now(); };
  control_.MayBeep = [this] { return codeless_ <= kMostCodeless || !LightGoesOn(); };
  control_.OnPress = [this](const TickReport& tick) {
    if (line_.Device != nullptr) TellLosses(tick);
    // The device went, or the light was over before it could be looked at.
    if (line_.Device == nullptr || (tick.Reading.Ended != Stage::Empty && !IsLamp(tick))) CountPress(tick);
  };
}

void Station::TellWhyNotOpen() {
  if (line_.Device == nullptr) return;
  const std::string why = line_.Device->WhyNot();
  if (why.empty()) opened_ = true;
  if (std::exchange(toldWhy_, why) != why && !why.empty()) log_.Write(LogLevel::Warning, why);
}

/// A device that is gone is an error, which the host tells; other words of a line are for the log.
void Station::TellOfLine(const std::string& text) {
  if (line_.Device->WhyNot().empty()) opened_ = true;
  if (OnLineTold) OnLineTold(text);
  if (text != line_.Device->WhyNot()) return log_.Write(LogLevel::Warning, text);
  control_.ReportFailure("DCD", Failure(ENODEV, text));
}

std::string Station::WhyNoEventMap() const {
  return "The event map cannot be loaded: " + control_.WhyNotInitialised();
}

std::string Station::WhyNotSent() const {
  if (line_.Device == nullptr) return "this line has no transmitter";
  if (line_.Device->Sent()) return {};
  const std::string why = line_.Device->WhyNot();
  return why.empty() ? "the line did not send it whole" : why;
}

/// Whether what is heard now goes on with the capture before.
bool Station::LightGoesOn() const { return control_.LineTime() - lastHeard_ < kQuiet; }

/// Light that goes on without a code in it counts for no press until the line has been quiet. The signs of a
/// held key, which have no code for the first analysis, are no such light.
bool Station::IsLamp(const TickReport& tick) {
  const bool isSignal = tick.Reading.Ended == Stage::Code || tick.Reading.Ended == Stage::Raw;
  const bool goesOn = LightGoesOn();
  lastHeard_ = control_.LineTime();
  codeless_ = isSignal || control_.HeardHeldSigns() ? 0 : goesOn ? codeless_ + 1 : 1;
  if (codeless_ == kMostCodeless + 1) {
    log_.Write(LogLevel::Warning,
               "Light without a signal goes on: a lamp? Shade the receiver, or turn it "
               "away. Until the line is quiet this counts for no press.");
  }
  return codeless_ > kMostCodeless;
}

/// That a press was not read for the machine's sake is not seen by what was read.
void Station::TellLosses(const TickReport& tick) {
  LineLosses before = std::exchange(losses_, line_.Device->Losses());
  if (losses_.Samples < before.Samples || losses_.MissedEdges < before.MissedEdges) before = {};
  const auto filled = losses_.FilledSamples - before.FilledSamples;
  const bool few =
      losses_.MissedEdges == before.MissedEdges && filled * kFewLosses <= losses_.Samples - before.Samples;
  if (few || tick.Reading.HasCode() || std::exchange(lossesTold_, true)) return;
  log_.Write(
      LogLevel::Warning,
      "A press was not taken whole: some of it was missed, as on a busy machine. keplo ports tells how "
      "to give captures priority.");
}

void Station::CountPress(const TickReport& tick) {
  ++tally_.Presses;
  ++tally_.AtStage.at(static_cast<std::size_t>(tick.Reading.Ended));
  tally_.Events += tick.Dispatched.Raised;
  const std::string reason = WhyNoEvent(tick);
  if (reason.empty()) return;
  ++tally_.WithoutEvent;
  const PlayedPress* press = line_.Presses == nullptr ? nullptr : line_.Presses->LastPress();
  const std::string place =
      press == nullptr ? "a press" : press->Path + " press " + std::to_string(press->Number);
  log_.Write(LogLevel::Notice, place + ": heard, but no event: " + reason);
}

}  // namespace keplo
