#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "line/device_calls.h"

namespace keplo {

/// A change of the carrier-detect line.
struct Edge {
  std::chrono::nanoseconds At{0};
  bool Level = false;  // after the change
};

/// The edges of a line on their way from the thread that waits for them to the one that captures. Neither
/// ever waits for the other: one puts edges into a ring, the other takes them out.
class EdgeLog {
 public:
  static constexpr std::size_t kMostEdges = 4096;  // a lamp that flickers for weeks must not fill the memory

  explicit EdgeLog(DeviceCalls& calls);

  /// Forgets everything, for a device that was just opened.
  void Begin();

  /// For the thread that waits. The edges before it stay as they are when there is no room.
  /// @param missed edges that came between this one and the one before it and were not seen
  void Add(Edge edge, std::uint64_t missed);
  /// The device is gone, or the driver tells no edges: nothing more comes. For any thread.
  void End();

  // The rest is for the thread that captures.

  /// Becomes readable when an edge is added or the log ends.
  int Descriptor() const { return wake_.Get(); }
  bool Ended() const { return ended_; }
  /// The edges so far, the oldest first; they stay until the next call.
  std::span<const Edge> Edges();
  /// Adds an edge that nobody has waited for.
  void Put(Edge edge);
  /// Forgets the oldest edges.
  void Drop(std::size_t count);
  std::uint64_t Missed() const { return missed_; }

  /// Waits until something was added since the last wait, or the log ends, or the time comes.
  void WaitUntil(std::chrono::nanoseconds time);
  /// Lets the descriptor rest until something is added.
  void Rest();

 private:
  void Wake();

  DeviceCalls& calls_;
  DeviceDescriptor wake_;
  std::array<Edge, kMostEdges> ring_;
  std::atomic<std::size_t> added_ = 0, taken_ = 0;  // edges since the device was opened
  std::vector<Edge> edges_;
  std::atomic<std::uint64_t> missed_ = 0;
  std::atomic<bool> ended_ = false;
};

}  // namespace keplo
