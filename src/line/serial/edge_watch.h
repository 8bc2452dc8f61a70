#pragma once

#include <pthread.h>

#include <atomic>
#include <thread>

#include "line/device_calls.h"
#include "line/serial/edge_log.h"

namespace keplo {

/// Waits in threads of its own for the edges of a port's carrier-detect line and for the port's going away,
/// and writes both into a log. Costs nothing while the line rests.
///
/// The driver wakes the thread some microseconds after each edge; its counter of edges proves that none was
/// missed.
class EdgeWatch {
 public:
  /// @param descriptor an open port whose driver knows TIOCMIWAIT; outlives the watch, as the log does
  EdgeWatch(DeviceCalls& calls, int descriptor, EdgeLog& log);
  ~EdgeWatch();
  EdgeWatch(const EdgeWatch&) = delete;
  EdgeWatch& operator=(const EdgeWatch&) = delete;

 private:
  void WaitForEdges();
  void WaitForHangup();
  bool Counted(std::uint32_t& count) const;

  DeviceCalls& calls_;
  const int descriptor_;
  EdgeLog& log_;
  DeviceDescriptor stop_;
  std::atomic<bool> stopping_ = false;
  std::atomic<bool> edgesEnded_ = false;
  std::thread edges_;
  std::thread hangup_;
};

}  // namespace keplo
