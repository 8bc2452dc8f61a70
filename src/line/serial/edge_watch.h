#pragma once

#include <pthread.h>

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
  bool Proven() const { return told_ > 0; }
  /// Whether edges came that the driver has counted but not told.
  bool Silent() const { return !Proven() && untold_ >= kEnoughUntold; }

 private:
  /// One may have come in the same moment as the look that found it.
  static constexpr int kEnoughUntold = 2;

  void WaitForEdges();
  void WaitForHangup();
  std::optional<std::uint32_t> TakeUp(std::chrono::nanoseconds at, bool woken);

  DeviceCalls& calls_;
  const int descriptor_;
  EdgeLog& log_;
  DeviceDescriptor stop_;
  std::atomic<bool> stopping_ = false;
  std::atomic<bool> edgesEnded_ = false;
  std::atomic<int> told_ = 0, untold_ = 0;  // looks that found edges, by what led to them
  std::uint32_t counted_ = 0;               // edges, by the driver's counter
  std::thread edges_;
  std::thread hangup_;
};

}  // namespace keplo
