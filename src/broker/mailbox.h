#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "broker/messages.h"
#include "broker/mosquitto_client.h"
#include "disk/descriptor.h"

namespace keplo::broker {

/// Something to publish soon or never: a stage of a key, a signal, or a finished message.
struct News {
  enum class Kind { Press, AfterPress, Signal };

  /// The messages of keys and signals are composed when they are sent, because a tick has no time for that.
  std::variant<Publication, KeyEvent, HeardSignal> Content;
  Kind Type = Kind::Press;
  std::chrono::steady_clock::time_point Made = std::chrono::steady_clock::now();
};

/// What connects a press to the news that follow it: the event, or else the topic.
const std::string& SubjectOf(const News& news);

/// A message from the broker.
struct Incoming {
  std::string Topic, Payload;
  bool Retained = false;
  std::chrono::steady_clock::time_point Came = std::chrono::steady_clock::now();
};

/// Which retained messages are removed from the broker when the connection ends.
struct Forgotten {
  bool Device = false, Status = false;
};

/// A message for the user.
struct Report {
  bool IsTrouble = false;  // something that the user may have to fix
  std::string Text;
};

/// Exchanges data between the program's thread and the connection's thread; neither waits for the other.
class Mailbox {
 public:
  /// More than a second of keys on many remotes; further news are dropped.
  static constexpr std::size_t kMostNews = 512;
  static constexpr std::size_t kMostReports = 64;

  /// @param mostIncoming messages that may wait to be taken; further ones are dropped and counted
  Mailbox(std::function<void()> wake, std::size_t mostIncoming);

  // Called by the program:
  void Put(News news);
  void SetDevice(std::string message);
  /// Requests the removal of retained messages, because the topics will change.
  void ForgetAtEnd(Forgotten what);
  /// Asks the connection to end; no more news are accepted.
  void Close();
  std::vector<Incoming> TakeIncoming();
  std::vector<Report> TakeReports();
  /// How many incoming messages were dropped since the last call.
  std::size_t TakeOverflow();
  /// Whether the connection is established, as far as is known.
  bool IsUp() const;

  // Called by the connection:
  std::deque<News> TakeNews();
  std::string Device() const;
  bool IsClosed() const;
  Forgotten ForgetsAtEnd() const;
  /// @return false if it was dropped and counted
  bool PutIncoming(Incoming message);
  /// Counts a message that was dropped without trying PutIncoming.
  void CountOverflow() { ++overflow_; }
  void PutReport(Report report);
  void SetUp(bool up);
  // These count presses and ignore other news.
  /// Counts confirmed news.
  void CountConfirmed(const News& news);
  /// Counts news that were not published because the broker was away or too slow.
  void CountDropped(const News& news);
  /// Counts news that the broker refused. ReportDropped omits them, because each refusal is reported.
  void CountRefused(const News& news);
  /// Reports how many key presses were dropped since the last report; after Close, this includes those that
  /// are still waiting.
  void ReportDropped();
  /// Readable while there is something for the connection, until ClearWakeup.
  int WakeDescriptor() const { return wakeup_.Number(); }
  void ClearWakeup() const;

  /// Key presses that the broker has confirmed so far, and those that it did not get.
  std::size_t ConfirmedPresses() const;
  std::size_t DroppedPresses() const;

 private:
  void CountDrop();
  void WakeConnection() const;
  void WakeProgram(std::unique_lock<std::mutex>& lock) const;

  Descriptor wakeup_;
  mutable std::mutex mutex_;
  std::function<void()> wake_;
  std::deque<News> news_;
  std::string device_;
  std::vector<Incoming> incoming_;
  std::vector<Report> reports_;
  std::set<std::string> overflowed_;  // subjects whose last press was dropped for lack of space
  const std::size_t mostIncoming_;
  std::size_t confirmed_ = 0, dropped_ = 0;
  std::size_t droppedWhileAway_ = 0, droppedLate_ = 0;  // not yet reported
  std::atomic<std::size_t> overflow_ = 0;
  bool closed_ = false, up_ = false;
  Forgotten forgets_;
};

}  // namespace keplo::broker
