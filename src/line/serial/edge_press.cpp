#include "line/serial/edge_press.h"

#include "line/node_line.h"

namespace keplo {

namespace {

std::int64_t Microseconds(std::chrono::nanoseconds time) {
  return std::chrono::round<std::chrono::microseconds>(time).count();
}

}  // namespace

std::optional<std::size_t> FindBeginning(std::span<const Edge> edges, bool rest,
                                         std::optional<std::chrono::nanoseconds> inside) {
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (edges[i].Level != rest && (!inside || edges[i].At - *inside >= kFrameGap)) return i;
    if (inside) inside = edges[i].At;
  }
  return std::nullopt;
}

EdgePress ReadPress(std::span<const Edge> edges, std::size_t beginning, bool rest,
                    std::chrono::nanoseconds end) {
  EdgePress press;
  std::size_t i = beginning;
  auto from = edges[i].At;
  // Two edges of the same direction tell of two that were missed between them; the line is where the later
  // says.
  for (++i; i < edges.size() && edges[i].At < end; ++i) {
    const bool expected = press.Train.size() % 2 == 0 ? rest : !rest;
    if (edges[i].Level != expected) continue;
    press.Train.push_back(static_cast<int>(Microseconds(edges[i].At) - Microseconds(from)));
    from = edges[i].At;
  }
  press.Edges = i;
  if (press.Train.size() % 2 == 0) {
    press.AllLight = press.Train.empty();
    press.Train.push_back(static_cast<int>(Microseconds(end) - Microseconds(from)));
  }
  return press;
}

}  // namespace keplo
