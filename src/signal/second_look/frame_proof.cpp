#include "signal/second_look/frame_proof.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "signal/first_analysis.h"
#include "signal/second_look/digit_checks.h"
#include "signal/second_look/frame_parts.h"
#include "signal/second_look/length_fit.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

/// Whether two pieces are the same frame, sent twice.
bool IsRepeat(const Piece& one, const Piece& other) {
  constexpr int kSameRun = 3;  // samples
  return one.Size == other.Size && std::equal(one.First, one.First + one.Size, other.First,
                                              [](int a, int b) { return std::abs(a - b) <= kSameRun; });
}

bool MayProveItself(const Frame& frame) { return frame.Clear && frame.Shape->ProvesItself(frame); }

/// Whether a code that fails its protocol's check by one digit was misheard: one of the suspect digits is
/// longer or shorter than usual, or no remote sends such codes.
bool IsOneDigitOff(const Frame& frame, const LengthFit& fit) {
  if (frame.Kind() != kNec) return false;
  const SuspectDigits suspects = SuspectsOf(FrameDigits(frame).Text());
  return suspects.SpoilCode ||
         !std::all_of(suspects.Places.begin(), suspects.Places.begin() + suspects.Number,
                      [&](std::size_t place) { return fit.IsUsual(2 * place + 1); });
}

bool ProvesItself(const Frame& frame) {
  if (!MayProveItself(frame)) return false;
  const LengthFit fit(frame);
  return fit.IsClose() && !IsOneDigitOff(frame, fit);
}

/// Whether a frame has zeros and ones, and without the leader of a common protocol enough of both. A lamp
/// makes pulses of one length, with one or two odd ones.
bool IsVaried(const Frame& frame) {
  if (frame.Alphabet == nullptr) return true;
  if (frame.Kind() == kRc5) return frame.Shape->ProvesItself(frame);
  if (frame.Leads != LeaderKind::Other) return frame.StepUnits > 0;
  return HasBothDigits(FrameDigits(frame).Text(), kFewestOfEach);
}

/// Whether a frame with the leader of a common protocol is a digit or two short: marks that are lost at its
/// ends or between short spaces may leave the same digits twice. A first digit that is lost becomes a part of
/// the leader's space.
bool MayLackDigits(const Frame& frame) {
  constexpr std::array<std::size_t, 12> kShort = {14, 15, 19, 23, 27, 30, 31, 35, 41, 46, 47, 55};
  constexpr std::array<std::size_t, 4> kShortWidths = {13, 14, 18, 19};
  const auto isOneOf = [&](const auto& digits) {
    return std::find(digits.begin(), digits.end(), frame.Digits) != digits.end();
  };
  const double leader = (frame.Led.Mark - frame.Excess) / frame.Unit;
  if (frame.Kind() == kSony) return Within(leader, 3.2, 4.8) && isOneOf(kShortWidths);
  const double space = (frame.Led.Space + frame.Excess) / frame.Unit;
  const bool common = Within(leader, 7, 9.2) || Within(leader, 14, 18.4);
  const bool swallowed = Within(space, 9.3, 13) || (Within(space, 5.3, 6.7) && frame.Digits > 40);
  return frame.Kind() == kNec && (frame.Leads != LeaderKind::Other || (common && swallowed)) &&
         isOneOf(kShort);
}

bool ArePartOf(const Findings& found, const std::vector<Frame>& frames) {
  return std::all_of(found.Others.begin(), found.Others.end(), [&](const OtherPiece& piece) {
    return std::any_of(frames.begin(), frames.end(),
                       [&](const Frame& frame) { return piece.IsCut && IsPartOf(piece, frame); });
  });
}

/// Whether a frame was sent more than once. Two equal halves of a frame that a lost mark has split do not
/// count.
bool IsRepeated(const std::vector<Frame>& frames, const Frame& wanted) {
  const auto isSame = [&](const Frame& frame) {
    return frame.SameCode(wanted) && (frame.Ends || !frame.Shape->HalvesLookWhole);
  };
  const auto first = std::find_if(frames.begin(), frames.end(), isSame);
  return first != frames.end() && std::find_if(first + 1, frames.end(), isSame) != frames.end();
}

/// Whether a frame is longer than every piece of the press that differs from it: lost marks make frames
/// shorter.
bool IsLongest(const Frame& frame, const Findings& found) {
  return frame.Runs > found.MostUnread &&
         std::all_of(found.Frames.begin(), found.Frames.end(),
                     [&](const Frame& other) { return other.SameCode(frame) || other.Runs < frame.Runs; });
}

/// Whether a frame that was sent more than once is only a part of what was sent: the beginning of a longer
/// message, or one of two alternating frames. One odd piece beside three equal frames is not enough for that.
bool IsOnlyPart(const Frame& frame, const Findings& found) {
  const auto isSame = [&](const Frame& other) { return other.SameCode(frame); };
  const auto isLonger = [&](const Frame& other) {
    return other.Clear && other.HasLeader() && other.Runs > frame.Runs && !isSame(other);
  };
  const auto& frames = found.Frames;
  if (std::any_of(frames.begin(), frames.end(), isLonger)) return true;
  return 2 * CountTelling(found, frame) >= std::count_if(frames.begin(), frames.end(), isSame);
}

/// Whether a single frame is in doubt for what else the press holds: the rest of another frame, or runs that
/// cast doubt on their neighbours. Frames of equal pulses, as lamps make them, must have nothing beside them.
bool IsInDoubt(const Frame& frame, const Findings& found) {
  const bool equal = frame.StepUnits == 0;
  return found.Stray || !IsLongest(frame, found) ||
         std::any_of(found.Others.begin(), found.Others.end(), [&](const OtherPiece& piece) {
           return TellsOfAnother(piece, frame) ||
                  (&piece == &found.Others.front() && IsEndOfAnother(piece, frame)) ||
                  (equal && !piece.IsCut);
         });
}

/// Whether two frames differ by more than damage: a stretched run makes another digit of one.
bool DifferAsTwo(const Frame& one, const Frame& other) {
  constexpr int kFewest = 2;          // digits
  constexpr double kSameUnit = 0.05;  // of a base time; a remote has one clock, but short runs stray
  if (std::abs(one.Unit - other.Unit) > kSameUnit * one.Unit || !one.Led.IsLike(other.Led)) return false;
  const FrameDigits ofOne(one), ofOther(other);
  const std::string_view digits = ofOne.Text(), others = ofOther.Text();
  if (digits.size() != others.size()) return false;
  int differ = 0;
  for (std::size_t i = 0; i < digits.size(); ++i) differ += digits[i] != others[i] ? 1 : 0;
  return differ >= kFewest;
}

}  // namespace

const Frame* ProvenFrame(const Findings& found) {
  const std::vector<Frame>& frames = found.Frames;
  const Frame* proven = nullptr;
  for (const Frame& frame : frames) {
    if (!IsRepeated(frames, frame)) continue;
    if (proven == nullptr) proven = &frame;
    if (!proven->SameCode(frame)) return nullptr;
  }
  if (proven != nullptr) {
    const bool believed =
        (IsLongest(*proven, found) && IsVaried(*proven) && !MayLackDigits(*proven)) || ProvesItself(*proven);
    return believed && !IsOnlyPart(*proven, found) ? proven : nullptr;
  }
  if (frames.size() > 1 || !ProvesItself(frames.front())) return nullptr;
  return !frames.front().Shape->ShowsLostRuns && IsInDoubt(frames.front(), found) ? nullptr : &frames.front();
}

bool IsOnlyFrame(const Findings& found) {
  const Frame& first = found.Frames.front();
  const auto isWholeAndSame = [&](const Frame& frame) {
    return frame.Clear && frame.Ends && frame.SameCode(first);
  };
  const auto beginsAgain = [&](const OtherPiece& piece) { return BeginsAgainIn(piece, first); };
  const bool mayLackHead = !first.HasLeader() && found.Frames.size() == 1 &&
                           !std::all_of(found.Others.begin(), found.Others.end(), beginsAgain);
  // A stretched run may turn the code of one key into that of another.
  const bool sound = found.Frames.size() > 1 || LengthFit(first).IsClose();
  return sound && !mayLackHead && ArePartOf(found, found.Frames) &&
         std::all_of(found.Frames.begin(), found.Frames.end(), isWholeAndSame);
}

bool AreTwoInTurns(const Findings& found) {
  const std::vector<Frame>& frames = found.Frames;
  const auto isDistance = [](const Frame& frame) { return frame.Kind() == kNec; };
  if (!std::all_of(frames.begin(), frames.end(), isDistance)) return false;
  if (frames.size() < 2 || frames[0].SameCode(frames[1])) return false;
  if (!DifferAsTwo(frames[0], frames[1]) || !ArePartOf(found, frames)) return false;
  // Either both frames of a remote do, or neither; if only one does, the other was damaged.
  if (MayProveItself(frames[0]) != MayProveItself(frames[1])) return false;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const Frame& frame = frames[i];
    const bool whole = frame.Clear && frame.Ends && frame.HasLeader();
    if (!whole || !LengthFit(frame).IsClose() || frame.Head != frames[0].Head ||
        frame.Digits != frames[0].Digits)
      return false;
    if (i >= 2 && !frame.SameCode(frames[i - 2])) return false;
  }
  return true;
}

FrameDoubt DoubtOf(const Frame& frame, int equal) {
  const bool asksUnit = equal == 1 || frame.Kind() == kRc5;
  const bool isUsual = frame.Shape->HasToggle ? frame.Shape->ProvesItself(frame) : HasUsualUnit(frame);
  if (asksUnit && HasUsualExcess(frame) && !isUsual) return FrameDoubt::BaseTime;
  if (equal > 1) return MayLackDigits(frame) ? FrameDoubt::FewDigits : FrameDoubt::None;
  const LengthFit fit(frame);
  if (!fit.IsClose()) return FrameDoubt::OddLength;
  return IsOneDigitOff(frame, fit) ? FrameDoubt::OneDigit : FrameDoubt::None;
}

bool IsOneFrame(const std::vector<Piece>& pieces) {
  return pieces.size() > 1 && std::all_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
           return IsRepeat(piece, pieces.front());
         });
}

bool HasOtherAsLong(const Findings& found) {
  constexpr std::size_t kLeader = 2;  // runs
  const Piece& frame = found.Unknown.front();
  return std::any_of(found.Others.begin(), found.Others.end(), [&](const OtherPiece& other) {
    return !other.IsCut && other.Of.Size + kLeader >= frame.Size && !IsRepeat(other.Of, frame);
  });
}

bool TakeTurns(const std::vector<Frame>& frames) {
  if (frames.size() < 3 || frames[0].SameCode(frames[1])) return false;
  for (std::size_t i = 2; i < frames.size(); ++i) {
    if (!frames[i].SameCode(frames[i - 2])) return false;
  }
  return true;
}

bool LackLeaders(const std::vector<Frame>& frames) {
  return !frames.front().HasLeader() && frames.front().Shape->BeginsAtLeader;
}

}  // namespace keplo::robust
