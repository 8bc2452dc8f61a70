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
  bool Ends = true;        // the signal ends here, or is silent for longer than lost marks could explain
  int After = 0;           // the space after, samples
  bool ThenLeader = true;  // what follows, if anything, begins with a leader
  int Dittos = 0;          // right after it: NEC's sign that the key is still held
  bool HeldOn = false;     // right after it: NEC's sign or that of another remote

  std::int16_t Kind() const;
  bool HasLeader() const { return !Head.empty(); }
  /// Whether both have one code. Some remotes send the leader with the first frame only.
  bool SameCode(const Frame& other) const;
};

/// A line code: how the second look recognises it, and what makes it believe a frame.
struct LineShape {
  std::int16_t Kind;     // generic protocol, in whose symbols its frames are written
  double RestUnits;      // silence that lost marks could not explain, base times; ends a frame
  bool BeginsAtLeader;   // a frame without a leader may have lost its beginning
  bool ShowsLostRuns;    // a stray or a lost run spoils the frame; else it may read as another one
  bool HalvesLookWhole;  // a lost mark may split a frame into two equal ones
  bool TellsLeader;      // Read itself tells a leader from the mark of a digit, so that it may be short
  bool HasToggle;        // a digit that is no part of the code flips from press to press
  bool HasWholeUnits;    // each run is a whole number of base times, and two lengths differ by one

  /// The frame of a body whose lengths fit the line code, without what TakeLeader sets.
  /// @param leader the one in front of the body; null without one
  std::optional<Frame> (*Read)(const Body& body, const Leader* leader);
  /// Takes the leader into a frame that Read gave for it: Head, Leads and Digits.
  void (*TakeLeader)(Frame& frame, const Leader& leader, const Body& body);
  /// Whether a clear frame is believed without a second one like it: its number of digits is one that lost
  /// marks or a cut do not leave. The many user-defined codes have any number, and need their repeat.
  bool (*ProvesItself)(const Frame& frame);
};

inline std::int16_t Frame::Kind() const { return Shape->Kind; }

/// The digits of a frame of pulse distance or width. They are stored in place, since every press needs them
/// and should allocate nothing.
class FrameDigits {
 public:
  explicit FrameDigits(const Frame& frame);

  std::string_view Text() const { return {digits_.data(), size_}; }

 private:
  std::array<char, kMostRuns / 2 + 1> digits_{};
  std::size_t size_;
};

/// How many zeros and how many ones a code must have at least if only its repeat proves it.
inline constexpr std::ptrdiff_t kFewestOfEach = 3;

/// Whether there are so many zeros and so many ones. Pulses of one length read as equal digits, with one or
/// two odd ones where a pulse fails.
bool HasBothDigits(std::string_view digits, std::ptrdiff_t fewest);

}  // namespace keplo::robust
