#include "signal/held_signs.h"

#include <algorithm>
#include <cstdlib>

#include "signal/frame_times.h"

namespace keplo {

namespace {

constexpr double kLeastSpace = 0.18, kMostDittoSpace = 0.34, kMostSpace = 1.1;  // of the leader

bool IsWithin(int space, double leader, double most) {
  return space >= kLeastSpace * leader && space <= most * leader;
}

/// NEC's by the base time of its code: of the frame's own leader the beginning may have been missed.
bool IsNecSign(RunSpan piece, int baseT) {
  const double usual = 16.0 * baseT;
  const double slack = 0.15 * usual + 4;  // receivers stretch and shrink any run by up to 150 us
  return IsDitto(piece[0], piece[1], piece[2]) && std::abs(piece[0] - usual) <= slack;
}

}  // namespace

bool IsDitto(int leader, int space, int mark) {
  return leader >= 8 * mark && IsWithin(space, leader, kMostDittoSpace);
}

bool IsHeldSign(int leader, int space, int mark, int usual) {
  const double slack = std::max(3.0, 0.1 * usual);  // samples
  return usual > 0 && std::abs(leader - usual) <= slack && leader >= 4 * mark &&
         IsWithin(space, usual, kMostSpace);
}

bool AreDittos(RunSpan runs, int baseT, int leader, double sampleTime) {
  constexpr std::size_t kSize = 3;
  int whole = 0;
  bool lastIsWhole = true;
  const std::vector<TimedPiece> pieces = PiecesIn(runs, sampleTime);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const RunSpan piece = pieces[i].Runs;
    if ((i > 1 && !lastIsWhole) || piece.size() > kSize) return false;
    lastIsWhole = piece.size() == kSize &&
                  (IsNecSign(piece, baseT) || IsHeldSign(piece[0], piece[1], piece[2], leader));
    whole += lastIsWhole ? 1 : 0;
  }
  return whole > 0;
}

}  // namespace keplo
