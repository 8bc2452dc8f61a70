#include "cli/broker_reporter.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "broker/identity.h"
#include "cli/outcome.h"
#include "events/event_row.h"
#include "program/local_time.h"
#include "station/on_air.h"

namespace keplo::cli {

namespace {

constexpr std::chrono::seconds kLongestLogin{5};
constexpr std::chrono::milliseconds kLoginPoll{10};

}  // namespace

broker::BrokerSettings RequireBroker(const std::filesystem::path& appPath) {
  try {
    return broker::RequireBrokerSettings(appPath);
  } catch (const Failure& failure) {
    if (failure.Number() == ENOENT) throw Refused(failure.what());
    throw;
  }
}

BrokerReporter::BrokerReporter(KeploMod& mod, Station& station, const Log& log)
    : mod_(mod),
      station_(station),
      log_(log),
      wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      bridge_(std::make_unique<broker::Bridge>(RequireBroker(mod.AppPath), broker::IdentityOf(mod.AppPath),
                                               Uses())),
      stages_([this](const broker::KeyEvent& event) { bridge_->Publish(event); }) {}

broker::Bridge::Uses BrokerReporter::Uses() {
  return {[this] {
            const std::uint64_t one = 1;
            static_cast<void>(!write(wakeup_.Number(), &one, sizeof one));
          },
          [this](const broker::SendRequest& request) { Send(request); },
          [this](const broker::Report& report) {
            log_.Write(report.IsTrouble ? LogLevel::Warning : LogLevel::Notice, report.Text);
          }};
}

void BrokerReporter::Send(const broker::SendRequest& request) {
  Win32Ser& line = station_.Line();
  std::string refusal = request.Timings.empty()
                            ? SendLearned(mod_, line, request.Command)
                            : SendLengths(mod_, line, request.Timings, request.Modulation);
  if (refusal.empty()) refusal = station_.WhyNotSent();
  if (!refusal.empty()) throw Failure(EIO, refusal);
}

void BrokerReporter::PublishEvents() {
  const ui::ListView& list = station_.Control().ListView1;
  if (published_ == list.Changes()) return;
  published_ = list.Changes();
  std::vector<broker::AnnouncedEvent> events;
  for (int row = 1; row <= list.Count(); ++row) {
    if (!IsTrue(list.Text(row, kActivated))) continue;
    events.push_back(
        {list.Text(row, kEventID), list.Text(row, kEventName), list.Text(row, kInfraredCommand)});
  }
  bridge_->SetEvents(std::move(events));
}

void BrokerReporter::Serve() {
  std::uint64_t count = 0;
  static_cast<void>(!read(wakeup_.Number(), &count, sizeof count));
  PublishEvents();
  bridge_->Serve();
}

void BrokerReporter::WaitUntilUp() {
  const auto until = std::chrono::steady_clock::now() + kLongestLogin;
  while (!bridge_->IsUp() && std::chrono::steady_clock::now() < until) {
    std::this_thread::sleep_for(kLoginPoll);
  }
  Serve();
}

void BrokerReporter::Publish(KeyChange change, const KeyPress& key) {
  if (change == KeyChange::Pressed) return stages_.Pressed(key.Place, key.Zone);
  if (change == KeyChange::Held) return stages_.Held(key.Place, key.Captures);
  stages_.Released(key.Place, key.Captures);
}

void BrokerReporter::Publish(const RaisedEvent& event) {
  stages_.Raised({{}, event.EventID, event.EventName, event.Command, event.Zone, {}, 1});
}

void BrokerReporter::Publish(const TickReport& tick) {
  const HeardSignal heard = HeardOnAir(mod_, station_.Line(), tick);
  bridge_->Publish(broker::HeardSignal{heard.Timings, std::nullopt, heard.Protocol, heard.Code, heard.Command,
                                       heard.Zone, LocalTime()});
}

}  // namespace keplo::cli
