#include <algorithm>
#include <cstdlib>

#include "host/running_host.h"

namespace keplo::tests {

namespace {

/// Resident memory of a process, KiB; 0 when it has ended.
long ResidentOf(qint64 id) {
  std::ifstream status("/proc/" + std::to_string(id) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return 0;
}

int Captures() {
  const char* asked = std::getenv("KEPLO_SOAK_CAPTURES");
  return asked == nullptr ? 10000 : std::stoi(asked);
}

// The address sanitizer keeps freed memory, up to 256 MiB, to find who still uses it.
#ifdef __SANITIZE_ADDRESS__
constexpr long kMostGrowth = 512 * 1024;  // KiB
#else
constexpr long kMostGrowth = 3 * 1024;  // KiB
#endif

TEST(Soak, LosesNoEventAndKeepsItsMemoryBesideWebRequests) {
  const int captures = Captures();
  const ApplicationPath app;
  app.AddEvents({kPowerEvent, kMuteEvent});
  RunningHost host(app);
  host.Start({"--json", "--once", "--replay", app.Presses("nec_tv_power", captures)});
  const std::uint16_t port = host.Port();
  ASSERT_NE(port, 0);

  std::vector<long> memory;
  int pages = 0;
  while (host.Runs()) {
    pages += Ask(port, HttpRequest("GET /InputKeplo", port)).find("Lamp on") != std::string::npos ? 1 : 0;
    if (const long resident = ResidentOf(host.Id()); resident > 0) memory.push_back(resident);
  }
  EXPECT_EQ(host.Wait(), 0) << host.Log();
  const auto events = host.Output();
  EXPECT_EQ(events.size(), static_cast<std::size_t>(captures));
  EXPECT_TRUE(std::all_of(events.begin(), events.end(), [](const std::string& event) {
    return event.find("\"event_id\":\"17\"") != std::string::npos;
  }));
  ASSERT_GT(pages, 10);
  const auto settled = memory.begin() + static_cast<std::ptrdiff_t>(memory.size() / 4);
  EXPECT_LT(*std::max_element(settled, memory.end()) - *settled, kMostGrowth) << pages << " pages";
}

}  // namespace

}  // namespace keplo::tests
