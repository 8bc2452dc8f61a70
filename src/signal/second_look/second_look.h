#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "signal/first_analysis.h"
#include "signal/runs.h"
#include "signal/second_look/frame_proof.h"
#include "signal/second_look/frame_reader.h"

namespace keplo {

/// What a second look at a capture found.
struct RobustReading {
  /// How far the frames of the capture prove a code.
  enum class Proof : std::uint8_t {
    Sure,    // Frame holds the code
    Single,  // Frame holds the code of the only frame, or of the only two; nothing contradicts it, and it
             // proves too little by itself
    Unsure,  // a clean signal, but of none of the line codes, or too fine
    Refused  // noise, pieces of frames, or frames that contradict each other: there is no code to be had
  };

  Proof Proven = Proof::Refused;
  std::int16_t BaseT = 0;  // base time T, samples; rounded. Of a clean signal too, and 0 without one
  std::int16_t ProtoKind = kUnknown;
  bool Dittos = false;  // a frame was repeated by signs without digits
  int Leader = 0;       // mark of the leader of Frame, samples; 0 without one
  int FlipsAt = 0;      // where a frame with the other toggle begins, samples; 0 without one

  /// Run symbols of the whole frames in the order received, beginning at a mark, as DecodeFrames takes them;
  /// those of the code alone, if one frame is proven. Empty if there is none, or only one without a leader
  /// that is not biphase.
  std::string Symbols;

  /// Run symbols of the frame that is proven or alone, as DecodeCode takes them.
  std::string Frame;
  /// The same of the other one, where two alternating frames are one command; else empty.
  std::string OtherFrame;

  /// At Unsure the number of marks in a frame that was sent twice, after its leader; 0 if nothing tells it.
  /// What another analysis reads must have so many.
  std::size_t UnreadMarks = 0;

  bool HasFrames() const { return !Symbols.empty(); }
  /// Writes the digits of the frame that is proven or alone; those of two alternating frames in an order
  /// that does not depend on which of them was heard first.
  void Decode(std::string& digits) const;
};

/// What a reading goes by, for those who tell a person why it ended as it did.
struct FramesHeard {
  std::int16_t BaseT = 0;  // as RobustReading has them
  std::int16_t ProtoKind = kUnknown;
  int Frames = 0;        // whole ones of a line code
  int Alike = 0;         // the most of them that have the same digits
  int Others = 0;        // pieces that are none, such as half a frame
  bool TooFine = false;  // the base time is too short for receivers to keep its spaces
  /// Places, from 1, of the digits in which the first frame differs from the next one with as many; empty
  /// without such a one.
  std::vector<std::size_t> Differ;
  /// Where no frame is one of a line code: into how many lengths the runs of the longest piece fall; 0 where
  /// some stand between two lengths.
  std::size_t MarkLengths = 0, SpaceLengths = 0;
  RobustReading::Proof Proven = RobustReading::Proof::Refused;
  robust::FrameDoubt Doubt = robust::FrameDoubt::None;
};

/// Whether another analysis may have read digits from an unsure signal: a digit for each mark of its frame,
/// and enough of either kind. Marks that it took for borders, or for two, leave other numbers.
bool CouldBeDigitsOf(const RobustReading& look, std::string_view digits, std::int16_t kind);

/// Of two analyses that read nothing the one that has come further tells why: the second look where it
/// refuses a signal, or where the first found no base time.
/// @param noTiming whether the first analysis found none
/// @return true if it is the second look, whose base time is measured then
bool TakeUnread(const RobustReading& look, bool noTiming, Timing& measured);

/// Reads captures frame by frame; keeps its memory from one to the next.
///
/// Frames are split at long spaces. Within a frame a leader stands well above the other marks; what is left
/// must fall into at most two lengths of mark and two of space, and those be the lengths of one of the line
/// codes. Frames that are cut, or that fit none of these, are left out.
///
/// Runs of up to two samples are taken for interference. A clean signal with a base time of less than 5
/// samples, whose short spaces may be as short, is not read: there is no frame, and Unsure.
class SecondLook {
 public:
  /// @param allRuns those of the samples; must outlive what is asked about the reading
  /// @param sampleTime microseconds
  /// @return valid until the next call
  const RobustReading& Read(const SampleWords& samples, RunSpan allRuns,
                            double sampleTime = kNominalSampleTime);

  /// What the last reading went by.
  FramesHeard Heard();

 private:
  void LookForFineSignal(const robust::PressRuns& runs, double unit);
  /// @param samples whose interference was joined; null without any
  void ReadProof(const robust::Findings& found, const SampleWords* samples);
  int PlaceOf(const int* run) const;
  bool HasInterference(const robust::Frame& frame, const SampleWords& samples) const;
  void TakeFlip(const std::vector<robust::Frame>& frames);
  bool ReadAfterRests(const robust::PressRuns& runs, int rest);
  void WriteSymbols(const robust::Findings& found, const robust::Frame* only);

  SampleWords smooth_;
  RunReader smoothRuns_;
  const int* firstRun_ = nullptr;  // of the smooth samples
  robust::FrameReader frames_;
  bool interfered_ = false;                  // the only frame of the last reading was
  const robust::Findings* found_ = nullptr;  // by the last reading; null where it went for no frames
  std::vector<robust::Piece> finePieces_;
  RobustReading look_;
};

}  // namespace keplo
