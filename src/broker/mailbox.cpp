#include "broker/mailbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace keplo::broker {

namespace {

std::string DroppedText(std::size_t presses) {
  return presses == 1 ? "1 key press was not told" : std::to_string(presses) + " key presses were not told";
}

}  // namespace

const std::string& SubjectOf(const News& news) {
  if (const auto* key = std::get_if<KeyEvent>(&news.Content)) return key->EventID;
  static const std::string none;
  const auto* message = std::get_if<Publication>(&news.Content);
  return message == nullptr ? none : message->Topic;
}

Mailbox::Mailbox(std::function<void()> wake, std::size_t mostIncoming)
    : wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), wake_(std::move(wake)), mostIncoming_(mostIncoming) {}

void Mailbox::Put(News news) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    const std::string& subject = SubjectOf(news);
    if (news.Type == News::Kind::AfterPress && overflowed_.count(subject) > 0) return;
    const bool isPress = news.Type == News::Kind::Press;
    if (news_.size() >= kMostNews) {
      if (!isPress) return;
      CountDrop();
      overflowed_.insert(subject);
      return;
    }
    if (isPress) overflowed_.erase(subject);
    news_.push_back(std::move(news));
  }
  WakeConnection();
}

void Mailbox::SetDevice(std::string message) {
  {
    const std::lock_guard lock(mutex_);
    device_ = std::move(message);
  }
  WakeConnection();
}

void Mailbox::ForgetAtEnd(Forgotten what) {
  const std::lock_guard lock(mutex_);
  forgets_ = what;
}

void Mailbox::Close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    wake_ = nullptr;
  }
  WakeConnection();
}

std::vector<Incoming> Mailbox::TakeIncoming() {
  const std::lock_guard lock(mutex_);
  return std::exchange(incoming_, {});
}

std::vector<Report> Mailbox::TakeReports() {
  const std::lock_guard lock(mutex_);
  return std::exchange(reports_, {});
}

std::size_t Mailbox::TakeOverflow() { return overflow_.exchange(0); }

bool Mailbox::IsUp() const {
  const std::lock_guard lock(mutex_);
  return up_;
}

std::deque<News> Mailbox::TakeNews() {
  const std::lock_guard lock(mutex_);
  return std::exchange(news_, {});
}

std::string Mailbox::Device() const {
  const std::lock_guard lock(mutex_);
  return device_;
}

bool Mailbox::IsClosed() const {
  const std::lock_guard lock(mutex_);
  return closed_;
}

Forgotten Mailbox::ForgetsAtEnd() const {
  const std::lock_guard lock(mutex_);
  return forgets_;
}

bool Mailbox::PutIncoming(Incoming message) {
  std::unique_lock lock(mutex_);
  if (incoming_.size() >= mostIncoming_) {
    ++overflow_;
    return false;
  }
  // One call for the first message is enough, because all are taken at once.
  const bool isFirst = incoming_.empty();
  incoming_.push_back(std::move(message));
  if (isFirst) WakeProgram(lock);
  return true;
}

void Mailbox::PutReport(Report report) {
  std::unique_lock lock(mutex_);
  if (reports_.size() >= kMostReports) return;
  reports_.push_back(std::move(report));
  WakeProgram(lock);
}

void Mailbox::SetUp(bool up) {
  const std::lock_guard lock(mutex_);
  up_ = up;
}

void Mailbox::CountConfirmed(const News& news) {
  if (news.Type != News::Kind::Press) return;
  const std::lock_guard lock(mutex_);
  ++confirmed_;
}

void Mailbox::CountDropped(const News& news) {
  if (news.Type != News::Kind::Press) return;
  const std::lock_guard lock(mutex_);
  CountDrop();
}

/// Under the lock.
void Mailbox::CountDrop() {
  ++dropped_;
  ++(up_ ? droppedLate_ : droppedWhileAway_);
}

void Mailbox::CountRefused(const News& news) {
  if (news.Type != News::Kind::Press) return;
  const std::lock_guard lock(mutex_);
  ++dropped_;
}

void Mailbox::ReportDropped() {
  std::size_t away = 0, late = 0;
  {
    const std::lock_guard lock(mutex_);
    away = std::exchange(droppedWhileAway_, 0);
    late = std::exchange(droppedLate_, 0);
    if (closed_) {
      for (const News& news : std::exchange(news_, {})) away += news.Type == News::Kind::Press ? 1 : 0;
    }
  }
  if (away > 0) PutReport({/*IsTrouble=*/true, DroppedText(away) + " while the broker was away."});
  if (late > 0) PutReport({/*IsTrouble=*/true, DroppedText(late) + ", as the broker took no more in time."});
}

std::size_t Mailbox::ConfirmedPresses() const {
  const std::lock_guard lock(mutex_);
  return confirmed_;
}

std::size_t Mailbox::DroppedPresses() const {
  const std::lock_guard lock(mutex_);
  return dropped_;
}

void Mailbox::ClearWakeup() const {
  std::uint64_t count = 0;
  // If there is nothing to read, it is already clear.
  static_cast<void>(!read(wakeup_.Number(), &count, sizeof count));
}

void Mailbox::WakeConnection() const {
  const std::uint64_t one = 1;
  // If the counter is full, the write fails, but the descriptor is readable.
  static_cast<void>(!write(wakeup_.Number(), &one, sizeof one));
}

/// Called under the lock, so that there is no call after Close. The callback only posts.
void Mailbox::WakeProgram(std::unique_lock<std::mutex>& /*lock*/) const {
  if (wake_) wake_();
}

}  // namespace keplo::broker
