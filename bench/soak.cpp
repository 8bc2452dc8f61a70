#include <QCoreApplication>
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "host/running_host.h"

namespace keplo::tests {

namespace {

constexpr long kMostGrowth = 3 * 1024;  // KiB

/// Resident memory of a process, KiB; 0 when it has ended.
long ResidentOf(qint64 id) {
  std::ifstream status("/proc/" + std::to_string(id) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return 0;
}

/// Growth from the first quarter of a run on, by when everything that is kept has been made.
long GrowthOf(const std::vector<long>& memory) {
  const auto settled = memory.begin() + static_cast<std::ptrdiff_t>(memory.size() / 4);
  return memory.empty() ? 0 : *std::max_element(settled, memory.end()) - *settled;
}

/// Plays presses to the host, asking for its page all the while.
/// @return 0 if each press has raised its event and the host's memory has settled
int Soak(int presses) {
  const ApplicationPath app;
  app.AddPowerEvent("[]");
  RunningHost host(app);
  std::vector<std::string> options(static_cast<std::size_t>(presses), kPower);
  options.insert(options.begin(), {"--json", "--once", "--replay"});
  host.Start(options);
  const std::uint16_t port = host.Port();
  std::vector<long> memory;
  int pages = 0;
  while (port != 0 && host.Runs()) {
    const std::string page = Client(port).Ask(HttpRequest("GET /InputKeplo", port));
    pages += page.find("Lamp on") != std::string::npos ? 1 : 0;
    if (const long resident = ResidentOf(host.Id()); resident > 0) memory.push_back(resident);
  }
  const int status = host.Wait();
  const auto events = host.Output();
  const auto raised = std::count_if(events.begin(), events.end(), [](const std::string& event) {
    return event.find("\"event_id\":\"17\"") != std::string::npos;
  });
  const long growth = GrowthOf(memory);
  std::cout << "soak: " << presses << " presses, " << raised << " events, " << pages
            << " pages, memory grew by " << growth << " KiB\n";
  if (status != 0) std::cerr << host.Log();
  return status == 0 && raised == presses && pages > 0 && growth < kMostGrowth ? 0 : 1;
}

}  // namespace

}  // namespace keplo::tests

/// soak [PRESSES]: whether the host loses no event and grows no more in a long run.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return keplo::tests::Soak(argc > 1 ? std::atoi(argv[1]) : 10000);
}
