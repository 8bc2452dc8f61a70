#include "line/open_line.h"

#include "line/replay_line.h"

namespace keplo {

OpenedLine OpenLine(const LineSpec& spec, const std::int16_t& receiverKind) {
  std::vector<Recording> recordings;
  recordings.reserve(spec.ReplayFiles.size());
  for (const std::string& file : spec.ReplayFiles) recordings.push_back(LoadRecording(file));
  auto line = std::make_unique<ReplayLine>(std::move(recordings), receiverKind, spec.Options);
  if (spec.InRealTime) line->PlayAgainst(std::make_unique<SteadyLineClock>());
  if (spec.HeldCaptures > 0) line->HoldLastPress(spec.HeldCaptures);
  line->SetPorts(spec.Ports);
  PressSource* const presses = line.get();
  return {std::move(line), presses};
}

}  // namespace keplo
