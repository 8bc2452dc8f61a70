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

/// What is news for a moment only: a stage of a key, a signal, or a message as it stands.
struct News {
  enum class Kind { Press, AfterPress, Signal };

  /// A key or a signal becomes its message when it is sent: to write it takes longer than a tick has time
  /// for.
  std::variant<Publication, KeyEvent, HeardSignal> Content;
  Kind Of = Kind::Press;
  std::chrono::steady_clock::time_point Made = std::chrono::steady_clock::now();
};

/// What a press and all that follows it are of: an event, else a topic.
const std::string& SubjectOf(const News& news);

/// A message from the broker.
struct Incoming {
  std::string Topic, Payload;
  bool Retained = false;
  std::chrono::steady_clock::time_point Came = std::chrono::steady_clock::now();
};

/// What is taken off the broker when the connection ends.
struct Forgotten {
  bool Device = false, Status = false;
};

/// What the connection has to tell its user.
struct Report {
  bool IsTrouble = false;  // something that its user may have to mend
  std::string Text;
};

/// Where the thread of the program and the thread of the connection meet. The one puts news in and takes out
/// what has come, the other the other way round; neither waits for the other.
class Mailbox {
 public:
  /// More than a second of keys on many remotes; what does not fit is dropped.
  static constexpr std::size_t kMostNews = 512;
  static constexpr std::size_t kMostReports = 64;

  /// @param mostIncoming messages that wait to be taken; what does not fit is dropped and counted
  Mailbox(std::function<void()> wake, std::size_t mostIncoming);

  // The program's side.
  void Put(News news);
  void SetDevice(std::string message);
  /// As the topics are other ones from then on.
  void ForgetAtEnd(Forgotten what);
  /// Nothing more is told, and the connection is to end.
  void Close();
  std::vector<Incoming> TakeIncoming();
  std::vector<Report> TakeReports();
  /// How many messages did not fit since this was asked last.
  std::size_t TakeOverflow();
  /// Whether the broker has let us in and is there still, as far as is known.
  bool IsUp() const;

  // The connection's side.
  std::deque<News> TakeNews();
  std::string Device() const;
  bool IsClosed() const;
  Forgotten ForgetsAtEnd() const;
  /// @return whether it fits; counted if it does not
  bool PutIncoming(Incoming message);
  /// Counts a message that is not even tried.
  void CountOverflow() { ++overflow_; }
  void PutReport(Report report);
  void SetUp(bool up);
  /// Counts news that the broker has confirmed.
  void CountTold(const News& news);
  /// Counts news that were not told, as the broker was away or slower than they came.
  void CountDropped(const News& news);
  /// Counts news that the broker did not take; that is told where it is seen, and no absence.
  void CountRefused(const News& news);
  /// Reports how many key presses were not told since it did so last; those still in here too once it is
  /// closed.
  void ReportUntold();
  /// Readable when there is something for the connection, until Calm.
  int WakeDescriptor() const { return wakeup_.Number(); }
  void Calm() const;

  /// Key presses that the broker has confirmed, and those that it was not told, so far.
  std::size_t ToldPresses() const;
  std::size_t DroppedPresses() const;

 private:
  void NoteDrop();
  void WakeConnection() const;
  void WakeProgram(std::unique_lock<std::mutex>& lock) const;

  Descriptor wakeup_;
  mutable std::mutex mutex_;
  std::function<void()> wake_;
  std::deque<News> news_;
  std::string device_;
  std::vector<Incoming> incoming_;
  std::vector<Report> reports_;
  std::set<std::string> overflown_;  // subjects whose last press did not fit; its release goes with it
  const std::size_t mostIncoming_;
  std::size_t told_ = 0, dropped_ = 0;
  std::size_t away_ = 0, late_ = 0;  // of the dropped ones: not yet reported, by what the broker was
  std::atomic<std::size_t> overflow_ = 0;
  bool closed_ = false, up_ = false;
  Forgotten forgets_;
};

}  // namespace keplo::broker
