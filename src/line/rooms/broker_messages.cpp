#include "line/rooms/broker_messages.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <thread>
#include <utility>

#include "broker/announcement.h"
#include "broker/broker_link.h"
#include "broker/broker_settings.h"
#include "broker/identity.h"
#include "broker/settings_watch.h"
#include "disk/descriptor.h"
#include "failure.h"

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
  BrokerMessages(std::filesystem::path appPath, const std::string& filter)
      : appPath_(std::move(appPath)),
        filter_(filter),
        watch_(appPath_),
        settings_(broker::RequireBrokerSettings(appPath_)),
        wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    Connect(broker::IdentityOf(appPath_));
  }

  int WakeDescriptor() const override { return wakeup_.Number(); }

  News Take() override {
    std::uint64_t count = 0;
    static_cast<void>(!read(wakeup_.Number(), &count, sizeof count));
    News news;
    FollowSettings(news);
    for (const broker::Report& report : link_->TakeReports()) {
      whyNot_ = report.IsTrouble && !link_->IsUp() ? report.Text : std::string();
      news.Words.push_back(report.Text);
    }
    for (broker::Incoming& message : link_->TakeIncoming()) {
      news.Messages.push_back({std::move(message.Topic), std::move(message.Payload), message.Retained,
                               message.Came.time_since_epoch()});
    }
    news.Lost = link_->TakeOverflow();
    return news;
  }

  bool IsUp() const override { return link_->IsUp(); }
  std::string WhyNot() const override { return whyNot_; }

  bool Publish(const std::string& topic, const std::string& payload) override {
    const auto until = std::chrono::steady_clock::now() + kLongestPublish;
    // A program that sends once may be faster than its connection; one that has lost it waits for nothing.
    while (!link_->IsUp() && whyNot_.empty() && std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(kLookForAnswer);
    }
    if (!link_->IsUp()) return false;
    const std::size_t told = link_->ConfirmedPresses(), dropped = link_->DroppedPresses();
    link_->Publish({broker::Publication{topic, payload}, broker::News::Kind::Press});
    while (link_->ConfirmedPresses() == told && link_->DroppedPresses() == dropped &&
           std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(kLookForAnswer);
    }
    return link_->ConfirmedPresses() > told;
  }

  bool IsPublic(const std::string& topic) const override {
    return topic.starts_with(settings_.Prefix + "/") && topic.ends_with("/signal");
  }
  bool IsOwn(const std::string& topic) const override { return topic == own_; }

 private:
  void Connect(const std::string& identity) {
    const broker::Topics topics(settings_, identity);
    own_ = topics.Signal();
    link_ = std::make_unique<broker::BrokerLink>(settings_, identity, PurposeOf(settings_, topics, filter_),
                                                 [this] { Wake(); });
  }

  /// Goes over to another broker, or another way to it, when the settings say so.
  void FollowSettings(News& news) {
    if (leaving_ && leaving_->HasEnded()) leaving_.reset();
    const auto now = std::chrono::steady_clock::now();
    if (leaving_ || now - looked_ < broker::SettingsWatch::kPollTime) return;
    looked_ = now;
    if (!watch_.TakeChange()) return;
    std::string identity;
    try {
      auto settings = broker::RequireBrokerSettings(appPath_);
      if (settings == settings_) return;
      identity = broker::IdentityOf(appPath_);
      settings_ = std::move(settings);
    } catch (const Failure& failure) {
      news.Words.push_back(std::string(failure.what()) + " Until then " + filter_ +
                           " is heard from the broker as it was.");
      return;
    }
    leaving_ = std::move(link_);
    leaving_->End();
    whyNot_.clear();
    Connect(identity);
  }

  void Wake() const {
    const std::uint64_t one = 1;
    static_cast<void>(!write(wakeup_.Number(), &one, sizeof one));
  }

  const std::filesystem::path appPath_;
  const std::string filter_;
  broker::SettingsWatch watch_;
  broker::BrokerSettings settings_;
  std::string own_, whyNot_;
  std::chrono::steady_clock::time_point looked_ = std::chrono::steady_clock::now();
  Descriptor wakeup_;
  std::unique_ptr<broker::BrokerLink> leaving_;  // while the connection before says goodbye
  std::unique_ptr<broker::BrokerLink> link_;
};

}  // namespace

OpenRoomMessages BrokerMessagesOf(const std::filesystem::path& appPath) {
  return [appPath](const std::string& filter) -> std::unique_ptr<RoomMessages> {
    return std::make_unique<BrokerMessages>(appPath, filter);
  };
}

}  // namespace keplo
