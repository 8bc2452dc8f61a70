#include "line/open_line.h"

#include <string_view>
#include <utility>

#include "line/port_line.h"
#include "line/replay_line.h"
#include "line/rooms/broker_messages.h"

namespace keplo {

namespace {

/// What stands in for a line that does not transmit either.
std::string DescribeReplay(const ReplayLine& line, bool hasRecordings) {
  if (!hasRecordings) {
    return "There is no receiver and no transmitter: nothing will be heard, and what is sent goes nowhere. "
           "--replay FILE plays recordings.";
  }
  return std::string("Recordings stand in for a receiver") +
         (line.Done() ? ", and all of them have been played" : "") + "; what is sent goes nowhere.";
}

std::string Joined(const std::vector<std::string>& remarks) {
  std::string text;
  for (const std::string& remark : remarks) text += remark + ". ";
  return text;
}

OpenedLine OpenReplay(const LineSpec& spec, const std::int16_t& receiverKind) {
  std::vector<Recording> recordings;
  recordings.reserve(spec.ReplayFiles.size());
  for (const std::string& file : spec.ReplayFiles) recordings.push_back(LoadRecording(file));
  auto line = std::make_unique<ReplayLine>(std::move(recordings), receiverKind, spec.Options);
  if (spec.InRealTime) line->PlayAgainst(std::make_unique<SteadyLineClock>());
  if (spec.HeldCaptures > 0) line->HoldLastPress(spec.HeldCaptures);
  line->SetPorts(spec.Ports);
  ReplayLine* const presses = line.get();
  const bool hasRecordings = !spec.ReplayFiles.empty();
  return {std::move(line), presses, nullptr, {}, [presses, hasRecordings] {
            return DescribeReplay(*presses, hasRecordings);
          }};
}

}  // namespace

OpenedLine OpenLine(const LineSpec& spec, const std::filesystem::path& appPath,
                    const std::int16_t& receiverKind, TellUser tell) {
  if (!spec.ReplayFiles.empty() || !spec.Ports.empty()) return OpenReplay(spec, receiverKind);
  std::vector<std::string> mistakes = LoadPortMap(appPath).Mistakes;
  auto line = std::make_unique<PortLine>(
      std::make_unique<KernelCalls>(),
      [appPath] {
        PortMap map = LoadPortMap(appPath);
        map.AppPath = appPath.string();
        return map;
      },
      receiverKind, spec.Options, std::move(tell), BrokerMessagesOf(appPath));
  line->FollowSettings(spec.PortOfSettings, spec.Port);
  PortLine* const device = line.get();
  const std::string remarks = Joined(mistakes);
  return {std::move(line), nullptr, device, std::move(mistakes),
          [device, remarks] { return remarks + device->What(); }};
}

}  // namespace keplo
