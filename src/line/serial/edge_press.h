#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>

#include "formats/pulse_text.h"
#include "line/serial/edge_log.h"

namespace keplo {

/// A press read from the edges of a line.
struct EdgePress {
  PulseTrain Train;       // microseconds, mark first
  std::size_t Edges = 0;  // how many of the given ones it used up
  bool AllLight = false;  // one mark that never ended
};

/// The first edge at which a signal begins.
/// @param rest level of the line without a signal
/// @param inside the last edge before the given ones, where they may begin inside a signal: only a beginning
///        after a silence between frames counts then
/// @return its index; none if there is no such edge
std::optional<std::size_t> FindBeginning(std::span<const Edge> edges, bool rest,
                                         std::optional<std::chrono::nanoseconds> inside);

/// The marks and spaces from a beginning up to an end in time; a mark that has not ended then ends there.
EdgePress ReadPress(std::span<const Edge> edges, std::size_t beginning, bool rest,
                    std::chrono::nanoseconds end);

}  // namespace keplo
