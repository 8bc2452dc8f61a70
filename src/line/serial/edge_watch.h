#pragma once

#include <atomic>
#include <optional>
#include <thread>

#include "line/device_calls.h"
#include "line/serial/edge_log.h"

namespace keplo {

/// Waits in threads of its own for the edges of a port's carrier-detect line and for the port's going away,
/// and writes both into a log. Costs nothing while the line rests.
///
/// The driver wakes the thread some microseconds after each edge; its counter of edges tells of those that
/// fell between two calls, and proves that none was missed.
class EdgeWatch {
 public:
  /// @param descriptor an open port whose driver knows TIOCMIWAIT; outlives the watch, as the log does
  EdgeWatch(DeviceCalls& calls, int descriptor, EdgeLog& log);
  ~EdgeWatch();
  EdgeWatch(const EdgeWatch&) = delete;
  EdgeWatch& operator=(const EdgeWatch&) = delete;

  /// Lets the thread look whether the line has changed without waking it.
  void Look();
  /// Whether the driver has told an edge by itself. Nothing moves while a port is opened, so a driver that
  /// tells none is found out only later.
  bool Proven() const { return told_; }
  /// Whether the driver reports no edges, or so late that edges between two of its own looks are lost.
  bool Mute() const { return told_ ? lost_ >= kEnoughLost && !prompt_ : untold_ >= kEnoughUntold; }

  /// Lives while the owner reads the port, which makes some drivers report what they would not have reported
  /// by themselves.
  class OwnLook {
   public:
    explicit OwnLook(EdgeWatch* watch) : watch_(watch) {
      if (watch_ != nullptr) watch_->looking_ = true;
    }
    ~OwnLook() {
      if (watch_ == nullptr) return;
      watch_->looked_ = watch_->calls_.Now();
      watch_->looking_ = false;
    }
    OwnLook(const OwnLook&) = delete;
    OwnLook& operator=(const OwnLook&) = delete;

   private:
    EdgeWatch* watch_;
  };

 private:
  /// A single one may have come at the very moment of the look that found it.
  static constexpr int kEnoughUntold = 2;
  /// A receiver that is switched on, or a spark, gives edges too close together for any driver.
  static constexpr int kEnoughLost = 3;

  void WaitForEdges();
  void WaitForHangup();
  void Judge(std::chrono::nanoseconds at, bool woken);
  std::optional<std::uint32_t> TakeUp(std::chrono::nanoseconds at, bool timed);

  DeviceCalls& calls_;
  const int descriptor_;
  EdgeLog& log_;
  DeviceDescriptor stop_;
  std::atomic<bool> stopping_ = false;
  std::atomic<bool> edgesEnded_ = false;
  std::atomic<bool> looking_ = false;
  std::atomic<std::chrono::nanoseconds> looked_{std::chrono::nanoseconds::zero()};  // by the owner, last
  std::atomic<bool> told_ = false;    // an edge, by the driver itself
  std::atomic<bool> prompt_ = false;  // two that follow each other as in a signal
  std::atomic<int> lost_ = 0;         // looks that found edges of which the driver had counted one
  std::atomic<int> untold_ = 0;       // looks that found edges
  // Of the thread that waits:
  std::uint32_t counted_ = 0;  // edges, by the driver's counter
  bool level_ = false;         // after them
  std::chrono::nanoseconds toldAt_{0};
  std::thread edges_;
  std::thread hangup_;
};

}  // namespace keplo
