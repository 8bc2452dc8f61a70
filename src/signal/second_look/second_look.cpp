#include "signal/second_look/second_look.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "signal/decode.h"
#include "signal/run_symbols.h"
#include "signal/second_look/frame_proof.h"
#include "signal/second_look/smooth_samples.h"

namespace keplo {

namespace robust {

namespace {

constexpr double kLeastUnit = 5;     // samples; with a shorter base time receivers leave spaces of one or two
constexpr double kOfRest = 0.85;     // of the longest rest; the others in a press are at least as long
constexpr double kFinestUnit = 3.5;  // samples; of shorter ones the first analysis reads wrong codes

/// Whether the runs of every length are within three samples, and none is a mere sample: noise has such.
bool IsFineAndClean(const Lengths& lengths) {
  constexpr int kFineSpread = 3;
  const auto end = lengths.Of.begin() + static_cast<std::ptrdiff_t>(lengths.Number);
  return lengths.Number > 0 && lengths.Short().Least > 1 &&
         std::all_of(lengths.Of.begin(), end,
                     [](const Length& length) { return length.Most - length.Least <= kFineSpread; });
}

bool IsFineSignal(const Body& body, double unit) {
  return body.MarkCount() >= kFewestMarks && IsFineAndClean(body.Marks) && IsFineAndClean(body.Spaces) &&
         !body.HasLengths(1, 1) && (unit < kLeastUnit || body.Spaces.Short().Least <= kInterference) &&
         body.Spaces.Short().Mean > kInterference + 0.5;
}

bool IsFineUnit(double unit) { return Within(unit, kFinestUnit, kLeastUnit + 1); }

/// Whether there are too many marks for even the finest unit, as in noise: three quarters of the marks and of
/// the spaces are no shorter than their lower quartile, from which the unit comes.
/// @param samples of the capture
bool IsTooDense(const PressRuns& runs, std::size_t samples) {
  constexpr double kLeastPair =
      0.75 * (2 * kFinestUnit) + 0.25 * (1 + 1);  // mean of a mark and a space, samples
  const std::size_t pairs = runs.Lengths.size() / 2;
  return static_cast<double>(pairs) * kLeastPair > static_cast<double>(samples);
}

/// Whether the first frame is left out: nothing shows where it began.
bool LosesFirst(const std::vector<Frame>& frames) { return LackLeaders(frames) && frames.size() == 1; }

/// The rest, samples, of a press whose frames each begin with a short mark and a rest, as long as the one
/// that separates them. Where the capture began after that first mark, three rests of about one length show
/// it.
/// @return none where the press is no such one
/// @param longest of the runs, or RoughLengths::kLongestTold
std::optional<int> RestOfFrames(const PressRuns& runs, int longest) {
  constexpr int kLongestMark = 15;                    // samples
  constexpr int kLeastRest = 80, kLongestRest = 220;  // samples; 4.4 and 12 ms
  constexpr std::size_t kFewestRuns = 60;             // of two frames
  constexpr int kFewestRests = 3;
  const RunSpan lengths = runs.Lengths;
  if (lengths.size() < kFewestRuns) return std::nullopt;
  if (lengths[0] <= kLongestMark && Within(lengths[1], kLeastRest, kLongestRest)) return lengths[1];
  static_assert(kLongestRest < RoughLengths::kLongestTold);
  if (!Within(longest, kLeastRest, kLongestRest)) return std::nullopt;
  const int least = static_cast<int>(std::ceil(kOfRest * longest));
  const auto rests =
      std::count_if(lengths.begin(), lengths.end(), [=](int length) { return length >= least; });
  return rests >= kFewestRests ? std::optional(longest) : std::nullopt;
}

/// Whether nothing but equal frames was found, each after a mark and a rest. Lost marks may leave such rests
/// in a longer frame too, so that a third frame is asked for where no longer silence follows the first.
bool AreFramesAfterRests(const Findings& found) {
  const std::vector<Frame>& frames = found.Frames;
  if (frames.empty()) return false;
  const std::size_t fewest = frames.front().Ends ? 2 : 3;
  const auto isSame = [&](const Frame& frame) {
    return frame.Clear && !frame.HasLeader() && frame.Kind() == kNec && frame.SameCode(frames.front());
  };
  const auto isLeaderOrCut = [](const OtherPiece& piece) { return piece.IsCut || piece.Of.IsSingle(); };
  return frames.size() >= fewest && std::all_of(frames.begin(), frames.end(), isSame) &&
         std::all_of(found.Others.begin(), found.Others.end(), isLeaderOrCut);
}

/// Places, from 1, of the digits in which the first frame differs from the next other one with as many.
std::vector<std::size_t> PlacesThatDiffer(const std::vector<Frame>& frames) {
  std::vector<std::size_t> places;
  for (const Frame& frame : frames) {
    const Frame& first = frames.front();
    if (frame.SameCode(first) || frame.Kind() != first.Kind()) continue;
    const std::string digits = DecodeCode(first.Symbols, first.Kind());
    const std::string others = DecodeCode(frame.Symbols, frame.Kind());
    if (digits.size() != others.size()) continue;
    for (std::size_t i = 0; i < digits.size(); ++i) {
      if (digits[i] != others[i]) places.push_back(i + 1);
    }
    break;
  }
  return places;
}

/// A leader space that reads as a digit belongs to the frame.
void WriteFrame(const Frame& frame, std::string& symbols) {
  const std::size_t digits = std::min(frame.Head.find_first_not_of(kMarks), frame.Head.size());
  symbols.assign(frame.Head.substr(digits)).append(frame.Symbols);
}

}  // namespace

}  // namespace robust

void RobustReading::Decode(std::string& digits) const {
  DecodeCode(Frame, ProtoKind, digits);
  if (OtherFrame.empty()) return;
  std::string other;
  DecodeCode(OtherFrame, ProtoKind, other);
  if (other < digits) digits.swap(other);
  digits += other;
}

bool CouldBeDigitsOf(const RobustReading& look, std::string_view digits, std::int16_t kind) {
  const std::size_t closing = kind == kNec ? 1 : 0;
  return kind != kRc5 && look.UnreadMarks > 0 && digits.size() + closing == look.UnreadMarks &&
         robust::HasBothDigits(digits, robust::kFewestOfEach);
}

bool TakeUnread(const RobustReading& look, bool noTiming, Timing& measured) {
  const bool refused = look.Proven != RobustReading::Proof::Unsure;
  if (look.BaseT == 0 || (!refused && !noTiming)) return false;
  measured.BaseT = look.BaseT;
  measured.ProtoKind = kUnknown;
  return true;
}

/// Makes a clean signal Unsure whose short spaces would be taken for interference.
void SecondLook::LookForFineSignal(const robust::PressRuns& runs, double unit) {
  if (!robust::IsFineUnit(unit)) return;
  robust::BodyReader& bodies = frames_.Bodies();
  robust::SplitPieces(runs, unit, finePieces_);
  const auto isFine = [&](const robust::Piece& piece) {
    return robust::IsFineSignal(bodies.Read(piece, 0), unit);
  };
  const auto fine = std::find_if(finePieces_.begin(), finePieces_.end(), isFine);
  if (fine == finePieces_.end()) return;
  look_.Proven = RobustReading::Proof::Unsure;
  look_.BaseT = static_cast<std::int16_t>(std::lround(unit));
  const std::size_t marks = fine->Size / 2 + 1;
  if (robust::HasLeaderInside(*fine))
    look_.UnreadMarks = marks - 1;
  else if (fine != finePieces_.begin() && robust::LeadsFrame(*(fine - 1), *fine))
    look_.UnreadMarks = marks;
  finePieces_.erase(std::remove_if(finePieces_.begin(), finePieces_.end(), std::not_fn(isFine)),
                    finePieces_.end());
  if (!robust::IsOneFrame(finePieces_)) look_.UnreadMarks = 0;
}

/// The frames of the shown kind as run symbols that begin at a mark.
/// @param only the frame whose equals are told alone; null for all
void SecondLook::WriteSymbols(const robust::Findings& found, const robust::Frame* only) {
  const std::size_t first = robust::LosesFirst(found.Frames) ? 1 : 0;
  if (first == found.Frames.size()) return;
  std::string& symbols = look_.Symbols;
  symbols = "g";
  for (std::size_t i = first; i < found.Frames.size(); ++i) {
    const robust::Frame& frame = found.Frames[i];
    if (frame.Kind() != look_.ProtoKind || (only != nullptr && !frame.SameCode(*only))) continue;
    symbols.append(frame.Head).append(frame.Symbols).append("g");
    for (int ditto = 0; ditto < frame.Dittos; ++ditto) symbols += "Gg1g";
  }
  // The silence before a leader is no border.
  if (std::string_view(symbols).substr(0, 2) == "gG") symbols.erase(0, 1);
}

/// Where a run begins, samples.
int SecondLook::PlaceOf(const int* run) const { return std::accumulate(firstRun_, run, 0); }

/// Whether runs of interference were joined within a frame.
bool SecondLook::HasInterference(const robust::Frame& frame, const SampleWords& samples) const {
  const int begin = PlaceOf(frame.First);
  const int end = std::accumulate(frame.First, frame.First + frame.Runs, begin);
  for (int sample = begin; sample < end; ++sample) {
    const auto place = static_cast<std::size_t>(sample);
    const std::uint64_t joined = samples.Words[place / kBitsPerWord] ^ smooth_.Words[place / kBitsPerWord];
    if ((joined >> place % kBitsPerWord & 1U) != 0) return true;
  }
  return false;
}

void SecondLook::ReadProof(const robust::Findings& found, const SampleWords* samples) {
  const std::vector<robust::Frame>& frames = found.Frames;
  const bool two = robust::AreTwoInTurns(found);
  const bool turns = robust::LackLeaders(frames) && robust::TakeTurns(frames);
  const robust::Frame* proven = two || turns ? nullptr : robust::ProvenFrame(found);
  // Interference may have turned a run of whole base times into another; in RC5 the pairs would show it.
  const bool alone = proven != nullptr && frames.size() == 1 && proven->Shape->HasWholeUnits;
  interfered_ = alone && proven->Kind() != kRc5 && samples != nullptr && HasInterference(*proven, *samples);
  if (interfered_) proven = nullptr;
  const robust::Frame& shown = proven != nullptr ? *proven : frames.front();
  look_.BaseT = static_cast<std::int16_t>(std::lround(shown.Unit));
  look_.ProtoKind = shown.Kind();
  look_.Dittos = std::any_of(frames.begin(), frames.end(), [](const auto& frame) { return frame.HeldOn; });
  look_.Leader = shown.Led.Mark;
  if (shown.Shape->HasToggle) TakeFlip(frames);
  WriteSymbols(found, proven);
  if (proven != nullptr || (two && frames.size() > 2)) {
    look_.Proven = RobustReading::Proof::Sure;
  } else if (two || robust::IsOnlyFrame(found)) {
    look_.Proven = RobustReading::Proof::Single;
  } else {
    return;
  }
  robust::WriteFrame(shown, look_.Frame);
  if (two) robust::WriteFrame(frames[1], look_.OtherFrame);
}

/// Frames of one code that are not equal differ in the toggle: the key was pressed again.
void SecondLook::TakeFlip(const std::vector<robust::Frame>& frames) {
  const robust::Frame& first = frames.front();
  const auto flipped = std::find_if(frames.begin(), frames.end(), [&](const robust::Frame& frame) {
    return frame.SameCode(first) && frame.Symbols != first.Symbols;
  });
  if (flipped == frames.end()) return;
  look_.FlipsAt =
      PlaceOf(flipped->First) - (flipped->HasLeader() ? flipped->Led.Mark + flipped->Led.Space : 0);
}

/// Reads frames that each begin with a short mark and a rest; they are taken if their code was learned.
/// @return false if there are no such frames
bool SecondLook::ReadAfterRests(const robust::PressRuns& runs, int rest) {
  const robust::Findings& found = frames_.Read(runs, robust::kOfRest * rest / robust::kGapUnits);
  if (!robust::AreFramesAfterRests(found)) return false;
  const robust::Frame& frame = found.Frames.front();
  look_.BaseT = static_cast<std::int16_t>(std::lround(frame.Unit));
  look_.ProtoKind = frame.Kind();
  WriteSymbols(found, &frame);
  robust::WriteFrame(frame, look_.Frame);
  look_.Proven = RobustReading::Proof::Single;
  return true;
}

const RobustReading& SecondLook::Read(const SampleWords& samples, RunSpan allRuns, double sampleTime) {
  look_.Proven = RobustReading::Proof::Refused;
  look_.BaseT = 0;
  look_.ProtoKind = kUnknown;
  look_.Dittos = false;
  look_.Leader = 0;
  look_.FlipsAt = 0;
  look_.Symbols.clear();
  look_.Frame.clear();
  look_.OtherFrame.clear();
  look_.UnreadMarks = 0;
  found_ = nullptr;
  interfered_ = false;
  frames_.Bodies().SetSampleTime(sampleTime);

  const bool joined = robust::HasInterference(allRuns);
  if (joined) robust::SmoothSamples(samples, smooth_);
  const RunSpan smoothRuns = joined ? smoothRuns_.Read(smooth_) : allRuns;
  firstRun_ = smoothRuns.data();
  const robust::PressRuns runs = robust::FromFirstMark(smoothRuns), all = robust::FromFirstMark(allRuns);
  const robust::RoughLengths rough = frames_.Bodies().Rough(runs);
  if (!joined) {
    LookForFineSignal(all, rough.Unit);
  } else if (!robust::IsTooDense(all, samples.Size)) {
    LookForFineSignal(all, frames_.Bodies().Rough(all).Unit);
  }
  if (look_.Proven == RobustReading::Proof::Unsure) return look_;
  const robust::Findings& found = frames_.Read(runs, rough.Unit);
  found_ = &found;
  if (!found.Frames.empty()) {
    ReadProof(found, joined ? &samples : nullptr);
  } else if (robust::IsOneFrame(found.Unknown)) {
    look_.Proven = RobustReading::Proof::Unsure;
    look_.BaseT = static_cast<std::int16_t>(std::lround(rough.Unit));
    // The first analysis may be able to read that one.
    look_.UnreadMarks = robust::HasOtherAsLong(found) ? 0 : found.UnknownMarks;
  }
  if (look_.Proven != RobustReading::Proof::Refused) return look_;
  // What was found last is what Heard tells.
  if (const auto rest = robust::RestOfFrames(runs, rough.Longest); rest && !ReadAfterRests(runs, *rest))
    frames_.Read(runs, rough.Unit);
  return look_;
}

FramesHeard SecondLook::Heard() {
  FramesHeard heard;
  heard.BaseT = look_.BaseT;
  heard.ProtoKind = look_.ProtoKind;
  heard.Proven = look_.Proven;
  heard.TooFine = found_ == nullptr && look_.Proven == RobustReading::Proof::Unsure;
  if (found_ == nullptr) return heard;
  heard.Frames = static_cast<int>(found_->Frames.size());
  heard.Others = static_cast<int>(found_->Others.size());
  for (const robust::Frame& frame : found_->Frames) {
    const auto alike = std::count_if(found_->Frames.begin(), found_->Frames.end(),
                                     [&](const robust::Frame& other) { return frame.SameCode(other); });
    heard.Alike = std::max(heard.Alike, static_cast<int>(alike));
  }
  heard.Differ = robust::PlacesThatDiffer(found_->Frames);
  if (heard.Frames > 0 && heard.Alike == heard.Frames)
    heard.Doubt = interfered_ ? robust::FrameDoubt::Interference
                              : robust::DoubtOf(found_->Frames.front(), heard.Frames);
  if (heard.Frames == 0 && heard.Others > 0) {
    const auto longest = std::max_element(
        found_->Others.begin(), found_->Others.end(),
        [](const robust::OtherPiece& a, const robust::OtherPiece& b) { return a.Of.Size < b.Of.Size; });
    const robust::Piece& piece = longest->Of;
    const robust::Body body = frames_.Bodies().Read(piece, robust::HasLeaderInside(piece) ? 2 : 0);
    heard.MarkLengths = body.Marks.Number;
    heard.SpaceLengths = body.Spaces.Number;
  }
  return heard;
}

}  // namespace keplo
