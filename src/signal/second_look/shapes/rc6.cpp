#include "signal/rc6.h"

#include <array>

#include "signal/first_analysis.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

// Half bits of one base time, 10 for a one and 01 for a zero, and a toggle of two base times each half after
// the fourth digit: runs of one to three base times.
//
//   leader              1     0     0     0     toggle      1
//    ________________    __       __    __    __ ____       __
//  _|                |__|  |_____|  |__|  |__|       |_____|  |__

constexpr std::size_t kMostHalves = 76;  // of 36 digits, and the toggle

/// The half bits of a body; empty if a run is none of one to three base times.
std::string_view HalvesOf(const Body& body, double unit, double excess, std::array<char, kMostHalves>& room) {
  std::size_t size = 0;
  for (std::size_t i = 0; i < body.Size; ++i) {
    const bool mark = i % 2 == 0;
    const int units = UnitsOf(body.First[i], mark ? excess : -excess, unit);
    if (units < 1 || units > 3 || size + static_cast<std::size_t>(units) > room.size()) return {};
    for (int left = units; left > 0; --left) room.at(size++) = mark ? '1' : '0';
  }
  return {room.data(), size};
}

std::optional<Frame> ReadRc6Halves(const Body& body, const Leader* leader) {
  if (leader == nullptr || body.Marks.Number < 2 || body.Spaces.Number < 2) return std::nullopt;
  const double unit = body.ShortestPair() / 2;
  const double excess = body.Marks.Short().Mean - unit;
  if (!leader->MarkIsWithin(excess, 5.2 * unit, 6.9 * unit)) return std::nullopt;
  if (!Within((leader->Space + excess) / unit, 1.5, 2.5)) return std::nullopt;
  std::array<char, kMostHalves> room{};
  const std::optional<Rc6Frame> read = ReadRc6(HalvesOf(body, unit, excess, room));
  if (!read) return std::nullopt;
  Frame frame;
  frame.Unit = unit;
  frame.Excess = excess;
  frame.Clear = true;
  frame.Digits = read->Size;
  return frame;
}

void TakeRc6Leader(Frame& frame, const Leader& /*leader*/, const Body& /*body*/) { frame.Head = "Gg"; }

/// It has a leader of its own, and its length and all its pairs are exact.
bool Rc6ProvesItself(const Frame& frame) {
  return Within(frame.UnitUs, 380, 520);  // 444 where clocks are right
}

}  // namespace

const LineShape kRc6Shape = {
    .Kind = kRc6,
    .RestUnits = 6,
    .BeginsAtLeader = true,
    .ShowsLostRuns = true,
    .HalvesLookWhole = false,
    .TellsLeader = true,
    .HasToggle = true,
    .HasWholeUnits = true,
    .Read = ReadRc6Halves,
    .TakeLeader = TakeRc6Leader,
    .ProvesItself = Rc6ProvesItself,
};

}  // namespace keplo::robust
