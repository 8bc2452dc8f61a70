#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "line/device_calls.h"

namespace keplo {

/// A change of the carrier-detect line.
struct Edge {
  std::chrono::nanoseconds At;
  bool Level = false;  // after the change
};

/// The edges of a line on their way from the thread that waits for them to the one that captures.
class EdgeLog {
 public:
  explicit EdgeLog(DeviceCalls& calls);

  /// Forgets everything, for a device that was just opened.
  void Begin();
  /// @param missed edges that came between this one and the one before it and were not seen
  void Add(Edge edge, std::uint64_t missed);
  /// The device is gone, or the driver tells no edges: nothing more comes.
  void End();

  /// Becomes readable when an edge is added or the log ends.
  int Descriptor() const { return wake_.Get(); }
  bool Ended() const;
  bool Empty() const;
  /// The edges so far, the oldest first.
  std::vector<Edge> Edges() const;
  /// Forgets the oldest edges.
  void Drop(std::size_t count);
  void Clear();
  std::uint64_t Missed() const;

  /// Waits until something was added since the last wait, or the log ends.
  /// @return false if the time came first
  bool WaitUntil(std::chrono::nanoseconds time);
  /// Lets the descriptor rest until something is added.
  void Rest();

 private:
  static constexpr std::size_t kMostEdges = 4096;  // a lamp that flickers for weeks must not fill the memory

  void Wake();

  DeviceCalls& calls_;
  DeviceDescriptor wake_;
  mutable std::mutex mutex_;
  std::vector<Edge> edges_;
  std::uint64_t missed_ = 0;
  bool ended_ = false;
};

}  // namespace keplo
