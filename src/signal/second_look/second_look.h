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
    Unsure,  // a clean signal, but of none of the line codes, or too short a base time
    Refused  // noise, pieces of frames, or frames that contradict each other: there is no code to be had
  };

  Proof Proven = Proof::Refused;
  std::int16_t BaseT = 0;  // base time T, samples; rounded. Of a clean signal too, and 0 without one
  std::int16_t ProtoKind = kUnknown;
  bool Dittos = false;  // a frame was repeated by signs without digits
  int Leader = 0;       // mark of the leader of Frame, samples; 0 without one
  int FlipsAt = 0;      // where the first frame with the other toggle begins, samples; 0 without one

  /// Run symbols of the whole frames in the order received, beginning at a mark, as DecodeFrames takes them;
  /// those of the code alone, if one frame is proven. Empty if there is none, or only one without a leader
  /// that is not biphase.
  std::string Symbols;

  /// Run symbols of the frame that is proven or alone, as DecodeCode takes them.
  std::string Frame;
  /// The same for the second frame, where two alternating frames make one command; else empty.
  std::string OtherFrame;

  /// At Unsure how many marks follow the leader in a frame that was sent twice; 0 if that is not known. What
  /// another analysis reads must fit that number.
  std::size_t UnreadMarks = 0;

  bool HasFrames() const { return !Symbols.empty(); }
  /// Writes the digits of the frame that is proven or alone; those of two alternating frames in an order
  /// that does not depend on which of them was heard first.
  void Decode(std::string& digits) const;
};

/// What a reading is based on, for telling a person why it ended as it did.
struct FramesHeard {
  std::int16_t BaseT = 0;  // as RobustReading has them
  std::int16_t ProtoKind = kUnknown;
  int Frames = 0;        // whole ones of a line code
  int Alike = 0;         // the most of them that have the same digits
  int Others = 0;        // pieces that are no frame, such as half of one
  bool TooFine = false;  // the base time is so short that receivers lose its spaces
  /// Places, from 1, of the digits in which the first frame differs from the next one with as many; empty
  /// without such a one.
  std::vector<std::size_t> Differ;
  /// Where no frame is one of a line code: into how many lengths the runs of the longest piece fall; 0 where
  /// some stand between two lengths.
  std::size_t MarkLengths = 0, SpaceLengths = 0;
  RobustReading::Proof Proven = RobustReading::Proof::Refused;
  robust::FrameDoubt Doubt = robust::FrameDoubt::None;
};

/// Whether the digits that another analysis read from an unsure signal may be right: one for each mark of its
/// frame, and enough zeros and ones. A mark that it took for a border, or for two marks, changes the number.
bool CouldBeDigitsOf(const RobustReading& look, std::string_view digits, std::int16_t kind);

/// Of a signal that neither analysis could read, takes the base time of the second look if that one tells
/// why: if it refuses the signal, or if the first analysis found no base time.
/// @param noTiming whether the first analysis found none
/// @return whether it was taken; the kind is unknown then
bool TakeUnread(const RobustReading& look, bool noTiming, Timing& measured);

/// Reads captures frame by frame; reuses its buffers from one to the next.
///
/// Frames are split at long spaces. Within a frame a leader stands well above the other marks; what is left
/// must fall into at most two lengths of mark and two of space, and those be the lengths of one of the line
/// codes. Frames that are cut, or that fit none of these, are left out.
///
/// Runs of up to two samples are taken for interference. A clean signal with a base time of less than 5
/// samples, whose short spaces may be as short, is not read: it has no frame and is Unsure.
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
