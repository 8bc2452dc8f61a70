#include "line/rooms/broker_messages.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <random>
#include <thread>
#include <utility>

#include "broker/announcement.h"
#include "broker/broker_link.h"
#include "broker/broker_settings.h"
#include "broker/identity.h"
#include "disk/descriptor.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""ms;

/// Five seconds of ten rooms.
constexpr std::size_t kMostMessages = 500;
constexpr std::chrono::milliseconds kLongestPublish{3000}, kLookForAnswer{2};

broker::LinkPurpose PurposeOf(const broker::BrokerSettings& settings, const broker::Topics& topics,
                              const std::string& filter) {
  broker::LinkPurpose purpose;
  // A host and a monitor may listen at the same time, and neither may throw the other off.
  std::random_device random;
  purpose.ClientId = (settings.ClientId.empty() ? topics.Node() : settings.ClientId) + "-line-" +
                     std::to_string(random() % 1'000'000);
  purpose.Topics = {filter};
  purpose.SpeaksForDevice = false;
  purpose.MostIncoming = kMostMessages;
  purpose.Up = "Listening to " + filter + " on the broker at " + NameOf(settings) + ".";
  purpose.WhileAway = "nothing is heard from " + filter;
  return purpose;
}

class BrokerMessages : public RoomMessages {
 public:
  BrokerMessages(const broker::BrokerSettings& settings, const std::string& identity,
                 const std::string& filter)
      : prefix_(settings.Prefix + "/"),
        own_(broker::Topics(settings, identity).Signal()),
        wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
        link_(settings, identity, PurposeOf(settings, broker::Topics(settings, identity), filter),
              [this] { Wake(); }) {}

  int WakeDescriptor() const override { return wakeup_.Number(); }

  News Take() override {
    std::uint64_t count = 0;
    static_cast<void>(!read(wakeup_.Number(), &count, sizeof count));
    News news;
    for (const broker::Report& report : link_.TakeReports()) {
      whyNot_ = report.IsTrouble && !link_.IsUp() ? report.Text : std::string();
      news.Words.push_back(report.Text);
    }
    for (broker::Incoming& message : link_.TakeIncoming()) {
      news.Messages.push_back({std::move(message.Topic), std::move(message.Payload), message.Retained,
                               message.Came.time_since_epoch()});
    }
    news.Lost = link_.TakeOverflow();
    return news;
  }

  bool IsUp() const override { return link_.IsUp(); }
  std::string WhyNot() const override { return whyNot_; }

  bool Publish(const std::string& topic, const std::string& payload) override {
    const auto until = std::chrono::steady_clock::now() + kLongestPublish;
    // A program that sends once may be faster than its connection; one that has lost it waits for nothing.
    while (!link_.IsUp() && whyNot_.empty() && std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(kLookForAnswer);
    }
    if (!link_.IsUp()) return false;
    const std::size_t told = link_.ToldPresses(), dropped = link_.DroppedPresses();
    link_.Tell({broker::Publication{topic, payload}, broker::News::Kind::Press});
    while (link_.ToldPresses() == told && link_.DroppedPresses() == dropped &&
           std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(kLookForAnswer);
    }
    return link_.ToldPresses() > told;
  }

  bool IsPublic(const std::string& topic) const override {
    return topic.starts_with(prefix_) && topic.ends_with("/signal");
  }
  bool IsOwn(const std::string& topic) const override { return topic == own_; }

 private:
  void Wake() const {
    const std::uint64_t one = 1;
    static_cast<void>(!write(wakeup_.Number(), &one, sizeof one));
  }

  const std::string prefix_, own_;
  std::string whyNot_;
  Descriptor wakeup_;
  broker::BrokerLink link_;
};

}  // namespace

OpenRoomMessages BrokerMessagesOf(const std::filesystem::path& appPath) {
  return [appPath](const std::string& filter) -> std::unique_ptr<RoomMessages> {
    return std::make_unique<BrokerMessages>(broker::RequireBrokerSettings(appPath),
                                            broker::IdentityOf(appPath), filter);
  };
}

}  // namespace keplo
