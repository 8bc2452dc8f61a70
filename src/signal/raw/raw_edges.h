#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace keplo {

/// What the edges of two signals lie apart. Each edge strays by itself, whereas of a length that differs all
/// edges behind it lie elsewhere: so edges tell signals apart whose lengths hardly do.
class RawEdges {
 public:
  /// What of the pace of a remote is taken off: a clock without a crystal may wander from frame to frame.
  enum class Pace : std::uint8_t { OfAll, OfEachFrame };

  /// Begins a frame: the silence ahead of it tells nothing.
  void BeginFrame();
  /// Adds the edge behind a length of the frame.
  /// @param off what the length differs by, microseconds
  void Add(float length, float off);
  void Add(const RawEdges& other);

  /// Sum of what the edges lie apart, squared, once the beginning of each frame and the pace of all are
  /// taken off; square microseconds.
  float Squares() const;
  /// How far the edges of a stretch lie apart together, as a multiple of what single ones stray by: up to
  /// some 5 in two hearings of one key, more where a length is another.
  float Step(Pace pace) const;
  /// How far the length that differs most does so, as a multiple of what lengths differ by mostly: some 3 in
  /// two hearings of one key, whatever its remote's clock does meanwhile.
  float Furthest() const;

 private:
  struct Edge {
    float At = 0;     // behind the beginning of its frame
    float Apart = 0;  // microseconds
  };
  struct Frame {
    std::size_t Begin, End;  // in edges
  };

  std::vector<Frame> Frames() const;
  static void TakePaceOff(std::span<Edge> edges);
  /// The edges with the beginnings of their frames and the pace taken off.
  std::vector<Edge> Fitted(Pace pace) const;
  /// By what lengths differ, sizes alone.
  std::vector<float> Offs() const;
  float Stray() const;

  std::vector<Edge> edges_;
  std::vector<std::size_t> begins_;
};

}  // namespace keplo
