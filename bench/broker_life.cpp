#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

#include "broker/bridge.h"
#include "broker/mosquitto_server.h"

namespace keplo::broker {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr const char* kIdentity = "0123abcd";
constexpr const char* kTopic = "keplo/0123abcd/event/1";

double Microseconds(Clock::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

double Share(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

long ResidentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return 0;
}

/// Of this thread, microseconds.
double OwnCpuTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// A bridge whose presses are numbered by their commands.
class Presser {
 public:
  explicit Presser(int port) : bridge_(Settings(port), kIdentity, {[] {}, [](const auto&) {}, Log}) {
    bridge_.SetEvents({{"1", "Lamp", "NEC&A"}});
  }

  void Press() {
    const double cpu = OwnCpuTime();
    const Clock::time_point now = Clock::now();
    bridge_.Publish(KeyEvent{KeyStage::Press, "1", "Lamp", std::to_string(made_.size()), 0, "now", 1});
    spent_.push_back(Microseconds(Clock::now() - now));
    cpu_.push_back(OwnCpuTime() - cpu);
    made_.push_back(now);
  }
  bool WaitUntilUp() {
    return tests::Until([&] {
      bridge_.Serve();
      return bridge_.IsUp();
    });
  }
  Bridge& Link() { return bridge_; }
  const std::vector<Clock::time_point>& Made() const { return made_; }
  const std::vector<double>& Spent() const { return spent_; }
  const std::vector<double>& Cpu() const { return cpu_; }

 private:
  static BrokerSettings Settings(int port) {
    BrokerSettings settings;
    settings.Host = "127.0.0.1";
    settings.Port = static_cast<std::uint16_t>(port);
    return settings;
  }
  static void Log(const Report& report) { std::cerr << report.Text << '\n'; }

  std::vector<Clock::time_point> made_;
  std::vector<double> spent_, cpu_;
  Bridge bridge_;
};

std::size_t NumberOf(const Observer::Seen& seen) {
  const std::string key = "\"command\":\"";
  return std::stoul(seen.Payload.substr(seen.Payload.find(key) + key.size()));
}

/// What a press costs the thread that heard it, and when somebody else has it.
void Latency(int presses) {
  const TestFolder folder;
  const MosquittoServer server(folder, "allow_anonymous true\nset_tcp_nodelay true\n");
  Observer observer(server.Port());
  Presser presser(server.Port());
  presser.WaitUntilUp();
  for (int i = 0; i < presses; ++i) {
    presser.Press();
    std::this_thread::sleep_for(20ms);
  }
  observer.Sees(kTopic, static_cast<std::size_t>(presses));
  std::vector<double> delays;
  for (const auto& seen : observer.All(kTopic)) {
    delays.push_back(Microseconds(seen.At - presser.Made().at(NumberOf(seen))));
  }
  std::cout << presses << " presses: the tick's thread spends " << Share(presser.Spent(), 0.5) << " us (p99 "
            << Share(presser.Spent(), 0.99) << ", of processor time " << Share(presser.Cpu(), 0.5)
            << "), a subscriber has it after " << Share(delays, 0.5) << " us (p99 " << Share(delays, 0.99)
            << ")\n";
}

/// Ten presses a second while the broker goes again and again.
/// @return whether none came late or twice, none was missed while connected, and all the others were counted
bool Outages(int outages) {
  const TestFolder folder;
  MosquittoServer server(folder);
  Presser presser(server.Port());
  std::vector<std::unique_ptr<Observer>> observers;
  std::set<std::size_t> connected;  // presses that were made well within a connection
  const auto pressFor = [&](std::chrono::milliseconds time, bool counts) {
    for (const auto until = Clock::now() + time; Clock::now() < until; std::this_thread::sleep_for(100ms)) {
      presser.Link().Serve();
      if (counts && presser.Link().IsUp() && Clock::now() + 300ms < until)
        connected.insert(presser.Made().size());
      presser.Press();
    }
  };
  for (int outage = 0; outage < outages; ++outage) {
    presser.WaitUntilUp();
    observers.push_back(std::make_unique<Observer>(server.Port()));
    pressFor(3s, true);
    switch (outage % 3) {
      case 0:
        server.Stop();
        pressFor(5s, false);
        server.GoOn();
        break;
      case 1:
        server.Kill();
        pressFor(5s, false);
        server.Start();
        break;
      default:
        server.End();
        pressFor(5s, false);
        server.Kill();
        server.Start();
    }
    pressFor(3s, false);
  }
  presser.WaitUntilUp();
  observers.push_back(std::make_unique<Observer>(server.Port()));
  pressFor(2s, false);
  std::this_thread::sleep_for(2s);

  std::map<std::size_t, int> came;
  double latest = 0;
  std::set<std::pair<std::size_t, Clock::time_point::rep>> all;
  for (const auto& observer : observers) {
    std::set<std::size_t> own;
    for (const auto& seen : observer->All(kTopic)) {
      const std::size_t number = NumberOf(seen);
      latest = std::max(latest, Microseconds(seen.At - presser.Made().at(number)) / 1e6);
      if (!own.insert(number).second) ++came[number];
      came.try_emplace(number, 1);
    }
  }
  const auto twice = std::count_if(came.begin(), came.end(), [](const auto& one) { return one.second > 1; });
  const auto missing = std::count_if(connected.begin(), connected.end(),
                                     [&](std::size_t number) { return came.count(number) == 0; });
  const std::size_t told = presser.Link().ConfirmedPresses(), dropped = presser.Link().DroppedPresses();
  std::cout << outages << " outages, " << presser.Made().size() << " presses: " << told << " told, "
            << dropped << " dropped, latest after " << latest << " s, " << twice << " twice, " << missing
            << " of " << connected.size() << " pressed while connected missing\n";
  return latest <= 2 && twice == 0 && missing == 0 && told + dropped == presser.Made().size();
}

/// Presses with the broker there and without.
/// @return whether the memory has settled in the first quarter of each
bool Memory(int presses) {
  const TestFolder folder;
  MosquittoServer server(folder);
  bool flat = true;
  const auto run = [&](const char* what, bool paced) {
    BrokerSettings settings;
    settings.Host = "127.0.0.1";
    settings.Port = static_cast<std::uint16_t>(server.Port());
    Bridge bridge(settings, kIdentity, {[] {}, [](const auto&) {}, [](const auto&) {}});
    if (paced) tests::Until([&] { return bridge.IsUp(); });
    long settled = 0, most = 0;
    for (int i = 0; i < presses; ++i) {
      bridge.Publish(KeyEvent{KeyStage::Press, "1", "Lamp", "NEC&A", 0, "now", 1});
      while (paced &&
             bridge.ConfirmedPresses() + bridge.DroppedPresses() + 200 < static_cast<std::size_t>(i)) {
        std::this_thread::sleep_for(1ms);
      }
      if (i % 1000 != 0) continue;
      bridge.Serve();
      if (i <= presses / 4) settled = std::max(settled, ResidentKiB());
      most = std::max(most, ResidentKiB());
    }
    tests::Until([&] {
      return bridge.ConfirmedPresses() + bridge.DroppedPresses() == static_cast<std::size_t>(presses);
    });
    std::cout << presses << " presses, broker " << what << ": " << bridge.ConfirmedPresses() << " told, "
              << bridge.DroppedPresses() << " dropped, memory grew by " << most - settled << " KiB of "
              << settled << "\n";
    flat = flat && most - settled < 1024;
  };
  run("there", true);
  server.Kill();
  run("away", false);
  return flat;
}

}  // namespace

}  // namespace keplo::broker

/// broker_life latency|outages|memory [COUNT]
int main(int argc, char** argv) {
  using namespace keplo::broker;
  const std::string what = argc > 1 ? argv[1] : "latency";
  const int count = argc > 2 ? std::atoi(argv[2]) : 0;
  if (what == "latency") return Latency(count > 0 ? count : 500), 0;
  if (what == "outages") return Outages(count > 0 ? count : 10) ? 0 : 1;
  return Memory(count > 0 ? count : 100'000) ? 0 : 1;
}
