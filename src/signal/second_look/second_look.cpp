#include "signal/second_look/second_look.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "signal/second_look/frame_proof.h"

namespace keplo {

namespace robust {

namespace {

constexpr double kLeastUnit = 5;     // samples; of a shorter base time receivers leave spaces of one or two
constexpr double kFinestUnit = 3.5;  // samples; of shorter ones the first analysis reads wrong codes

/// Whether the runs of every length are within three samples, and none is a mere sample: noise has such.
bool IsFineAndClean(const Lengths& lengths) {
  constexpr int kFineSpread = 3;
  const auto end = lengths.Of.begin() + static_cast<std::ptrdiff_t>(lengths.Number);
  return lengths.Number > 0 && lengths.Short().Least > 1 &&
         std::all_of(lengths.Of.begin(), end,
                     [](const Length& length) { return length.Most - length.Least <= kFineSpread; });
}

/// Whether a capture holds a clean signal whose short spaces would be taken for interference.
bool IsTooFine(std::string_view samples) {
  const RunList runs = ReadRuns(samples, 0);
  const double unit = RoughUnit(runs.Lengths.data(), runs.Lengths.size());
  if (!Within(unit, kFinestUnit, kLeastUnit + 1)) return false;
  const std::vector<Piece> pieces = SplitPieces(runs);
  return std::any_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
    const Body body = BodyOf(piece, 0);
    return body.MarkCount() >= kFewestMarks && IsFineAndClean(body.Marks) && IsFineAndClean(body.Spaces) &&
           !body.HasLengths(1, 1) && (unit < kLeastUnit || body.Spaces.Short().Least <= kInterference) &&
           body.Spaces.Short().Mean > kInterference + 0.5;
  });
}

/// The frames of one kind as run symbols that begin at a mark.
std::string SymbolsOf(const std::vector<Frame>& frames, std::int16_t kind) {
  std::string symbols = "g";
  for (const Frame& frame : frames) {
    if (frame.Kind != kind) continue;
    symbols.append(frame.Head).append(frame.Symbols).append("g");
    for (int ditto = 0; ditto < frame.Dittos; ++ditto) symbols += "Gg1g";
  }
  // The silence before a leader is no mark of the signal.
  if (symbols.substr(0, 2) == "gG") symbols.erase(0, 1);
  return symbols;
}

void ReadProof(const Findings& found, RobustReading& look) {
  const std::vector<Frame>& frames = found.Frames;
  const bool turns = LackLeaders(frames) && TakeTurns(frames);
  const Frame* proven = turns ? nullptr : ProvenFrame(found);
  const Frame& shown = proven != nullptr ? *proven : frames.front();
  look.BaseT = static_cast<std::int16_t>(std::lround(shown.Unit));
  look.ProtoKind = shown.Kind;
  if (turns) look.Proven = RobustReading::Proof::Unsure;
  if (proven != nullptr) look.Proven = RobustReading::Proof::Sure;
  const bool single = proven == nullptr && IsSingleFrame(found);
  if (single) look.Proven = RobustReading::Proof::Single;
  if (proven != nullptr || single) look.Frame = (shown.HasLeader() ? shown.Head : "g") + shown.Symbols + "g";
}

}  // namespace

}  // namespace robust

RobustReading ReadRobustly(std::string_view samples) {
  using namespace robust;
  const RunList runs = ReadRuns(samples);
  Findings found = ReadFrames(runs);
  std::vector<Frame>& frames = found.Frames;
  RobustReading look;
  if (IsTooFine(samples)) {
    look.Proven = RobustReading::Proof::Unsure;
    return look;
  }
  if (frames.empty()) {
    if (IsOneFrame(found.Unknown)) look.Proven = RobustReading::Proof::Unsure;
    return look;
  }
  ReadProof(found, look);
  // Of frames that take turns the first analysis knows those from the second one on.
  if (LackLeaders(frames) && (frames.size() == 1 || TakeTurns(frames))) frames.erase(frames.begin());
  if (!frames.empty()) look.Symbols = SymbolsOf(frames, look.ProtoKind);
  return look;
}

}  // namespace keplo
