#include "line/open_line.h"

#include <string_view>
#include <utility>

#include "line/port_line.h"
#include "line/replay_line.h"

namespace keplo {

namespace {

constexpr std::string_view kNoDevices =
    "there is no receiver on the line, so nothing will be heard; --replay FILE plays recordings";

OpenedLine OpenReplay(const LineSpec& spec, const std::int16_t& receiverKind) {
  std::vector<Recording> recordings;
  recordings.reserve(spec.ReplayFiles.size());
  for (const std::string& file : spec.ReplayFiles) recordings.push_back(LoadRecording(file));
  auto line = std::make_unique<ReplayLine>(std::move(recordings), receiverKind, spec.Options);
  if (spec.InRealTime) line->PlayAgainst(std::make_unique<SteadyLineClock>());
  if (spec.HeldCaptures > 0) line->HoldLastPress(spec.HeldCaptures);
  line->SetPorts(spec.Ports);
  PressSource* const presses = line.get();
  return {std::move(line), presses, nullptr, {}};
}

}  // namespace

OpenedLine OpenLine(const LineSpec& spec, const std::filesystem::path& appPath,
                    const std::int16_t& receiverKind, TellUser tell) {
  if (!spec.ReplayFiles.empty() || !spec.Ports.empty()) return OpenReplay(spec, receiverKind);
  PortMap map = LoadPortMap(appPath);
  if (map.Ports.empty() && map.Mistakes.empty()) {
    OpenedLine standIn = OpenReplay(spec, receiverKind);
    standIn.Remarks = {std::string(kNoDevices)};
    return standIn;
  }
  std::vector<std::string> mistakes = map.Mistakes;
  auto line = std::make_unique<PortLine>(std::make_unique<KernelCalls>(), std::move(map), receiverKind,
                                         spec.Options, std::move(tell));
  line->InsteadOfAnyPort = spec.Port;
  DeviceLine* const device = line.get();
  return {std::move(line), nullptr, device, std::move(mistakes)};
}

}  // namespace keplo
