#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "signal/second_look/body.h"

namespace keplo::robust {

struct LineShape;

inline constexpr std::size_t kMostRuns = 600;  // of one frame; more is noise

/// Leaders of common protocols, their mark and space in base times.
enum class LeaderKind : std::uint8_t {
  Other,
  Long,   // 16 and 8 or 4: NEC
  Even,   // 8 and 8: NEC's kin and RCA
  Short,  // 8 and 4
  Width   // 4 and 1: SONY
};

/// Symbols of a run.
struct RunText {
  static constexpr std::size_t kRoom = 4;  // they are written as one number

  constexpr explicit RunText(std::string_view text) : Size(text.size()) {
    for (std::size_t i = 0; i < Size; ++i) Symbols[i] = text[i];
  }

  std::array<char, kRoom> Symbols{};
  std::size_t Size;
};

/// Symbols of runs.
struct RunAlphabet {
  using ShortAndLong = std::array<RunText, 2>;

  ShortAndLong Marks, Spaces;
};

/// One whole frame.
struct Frame {
  const LineShape* Shape = nullptr;
  const RunAlphabet* Alphabet = nullptr;  // null where each base time of a run is a symbol
  double Unit = 0;                        // base time, samples
  double UnitUs = 0;                      // ... and microseconds
  double StepUnits = 0;   // from the shorter to the longer length of its digits, base times; 0 for equal ones
  double Excess = 0;      // by which marks are longer and spaces shorter than whole base times, samples
  std::string_view Head;  // symbols of the leader; empty without one
  std::string_view Symbols;  // between the marks
  std::size_t Digits = 0;
  Lengths Marks, Spaces;       // of its runs
  const int* First = nullptr;  // runs without the leader
  std::size_t Runs = 0;
  bool Clear = false;  // no run is anywhere near the middle between two lengths
  LeaderKind Leads = LeaderKind::Other;
  Leader Led;              // as it was heard; no length without one
  bool Ends = true;        // the signal ends after it, or rests for longer than lost marks would make it
  int After = 0;           // the space after, samples
  bool ThenLeader = true;  // what comes after it begins with one, if anything comes
  int Dittos = 0;          // right after it: NEC's sign that the key is still held
  bool HeldOn = false;     // right after it: NEC's sign or that of another remote

  std::int16_t Kind() const;
  bool HasLeader() const { return !Head.empty(); }
  /// Whether both have one code. Some remotes send the leader with the first frame only.
  bool SameCode(const Frame& other) const;
};

/// A line code, as the second look tells it from others and believes it.
struct LineShape {
  std::int16_t Kind;     // generic protocol, in whose symbols its frames are written
  double RestUnits;      // silence after a frame, base times, that no lost marks would leave
  bool BeginsAtLeader;   // a frame without one may have lost its head
  bool ShowsLostRuns;    // a stray or a lost run spoils the frame; else it may read as another one
  bool HalvesLookWhole;  // a lost mark may part a frame into two equal ones
  bool TellsLeader;      // Read takes no mark of a digit for a leader, however short that is
  bool HasToggle;        // a digit that is no part of the code flips from press to press
  bool HasWholeUnits;    // each run of a frame is some base times, and two lengths are one apart

  /// The frame of a body whose lengths are those of the line code, but for its leader.
  /// @param leader the one in front of the body; null without one
  std::optional<Frame> (*Read)(const Body& body, const Leader* leader);
  /// Takes the leader into a frame that Read gave for it: Head, Leads and Digits.
  void (*TakeLeader)(Frame& frame, const Leader& leader, const Body& body);
  /// Whether a clear frame may be taken without an equal one beside it. A frame that lost marks or was cut
  /// has other lengths than these; what the many user-defined codes have is proven by their repeats.
  bool (*ProvesItself)(const Frame& frame);
};

inline std::int16_t Frame::Kind() const { return Shape->Kind; }

/// The digits of a frame of pulse distance or width. They are kept in place: what is asked of each press gets
/// no memory for it.
class FrameDigits {
 public:
  explicit FrameDigits(const Frame& frame);

  std::string_view Text() const { return {digits_.data(), size_}; }

 private:
  std::array<char, kMostRuns / 2 + 1> digits_{};
  std::size_t size_;
};

/// Digits of either kind in a code that nothing but its repeat proves, at least.
inline constexpr std::ptrdiff_t kFewestOfEach = 3;

/// Whether there are so many digits of either kind. Pulses of one length make equal digits, and those that
/// fail now and then one or two odd ones.
bool HasBothDigits(std::string_view digits, std::ptrdiff_t fewest);

}  // namespace keplo::robust
