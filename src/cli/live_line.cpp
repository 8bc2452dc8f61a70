#include "cli/live_line.h"

#include <algorithm>

#include "cli/outcome.h"
#include "config/read_settings.h"

namespace keplo::cli {

LiveLine::LiveLine(KeploMod& mod, std::optional<std::int32_t> port, const LineOptions& options) {
  Settings& settings = mod.Settings;
  ReadSettings(mod.Store, settings);
  settings.ReceiverKind = ReceiverKindOf(settings.InterfaceType);
  const std::int32_t number = port.value_or(settings.ComPortNr);
  name_ = "COM " + std::to_string(number);
  LineSpec spec;
  spec.Options = options;
  spec.Options.ReadBy = &settings.Analysis;
  line_ = OpenLine(spec, mod.AppPath, settings.ReceiverKind, [](const std::string& text) { Tell(text); });
  for (const std::string& remark : line_.Remarks) Tell(remark);
  if (Line().OpenCom(number) != 1) throw Refused(WhyNot());
  Line().RTS(-1);
  Line().TXD(0);
}

bool LiveLine::TakeStop() {
  if (!HeldSignals::Pending()) return false;
  signals_.Take();
  return true;
}

std::optional<MappedPort> PortOf(const KeploMod& mod, std::int32_t port) {
  const PortMap map = LoadPortMap(mod.AppPath);
  const auto mapped = std::find_if(map.Ports.begin(), map.Ports.end(),
                                   [port](const MappedPort& candidate) { return candidate.Port == port; });
  return mapped == map.Ports.end() ? std::nullopt : std::optional(*mapped);
}

}  // namespace keplo::cli
