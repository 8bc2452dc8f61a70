#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "formats/remote.h"
#include "signal/protocol_params.h"

namespace keplo {

/// How a section of keplo.cfg sends its codes.
struct SectionSignal {
  std::int16_t ProtoKind = 0;  // GPROTO=
  ProtocolParams Params;
};

/// The section that sends a coding, without its repeats.
/// @return none if two digit patterns cannot say it
std::optional<SectionSignal> SectionOf(const CodedSignal& signal);

/// The first frame that a section sends of these digits, as marks and spaces; RC5 with 0 for the toggle.
PulseTrain SentFrame(const SectionSignal& section, const std::string& digits);

/// The whole press that a section sends of these digits.
PulseTrain SentPress(const SectionSignal& section, const std::string& digits);

/// Whether a section sends the frame of a signal: each mark and space within half a slot.
bool SendsFrame(const SectionSignal& section, const CodedSignal& signal);

/// Some keys that one section can send.
class SectionGroup {
 public:
  explicit SectionGroup(SectionSignal section) : section_(std::move(section)) {}

  /// A section for commands that keep their lengths, with the patterns of a new protocol.
  static SectionGroup OfLengths(const std::optional<int>& carrier);

  /// A section that sends codes as its SENDAS says.
  static SectionGroup OfSendAs(SectionSignal section, const std::optional<int>& carrier);

  /// Whether the group sends codes as another section would.
  bool SendsAs(const SectionSignal& section, const std::optional<int>& carrier) const;
  /// Whether a carrier is that of the group within 1 %.
  bool HasCarrier(const std::optional<int>& carrier) const;
  /// Sets the carrier of a group that has none yet.
  void TakeCarrier(const std::optional<int>& carrier);
  /// Whether the section sends this signal too, with the same way to repeat it, a carrier within 1 %, and the
  /// silence after it within 5 %. What a file does not say of it agrees with everything.
  bool Takes(const CodedSignal& signal, const std::optional<int>& carrier) const;
  void Add(const CodedSignal& signal, const std::optional<int>& carrier);
  /// The silence that is sent in the place of a shorter one, which no section has, microseconds; 0 if none
  /// is.
  int LengthenedSilence(const CodedSignal& signal) const;
  /// Whether a signal has a short repeat of other lengths than a section sends.
  bool LosesShortRepeat(const CodedSignal& signal) const;
  /// With REPEAT, GREPEAT and the carrier for all of them. Silences that differ, as those of codes of one
  /// period do, have their mean there, and the period in SENDAS.
  SectionSignal Section() const;

 private:
  /// Lengths that one is sent for.
  struct Span {
    int Least = 0, Most = 0;
    std::int64_t Sum = 0, Count = 0;

    void Take(int length);
    int Mean() const { return static_cast<int>((Sum + Count / 2) / Count); }
    int Farthest() const;  // from the mean
  };

  /// Silences and periods, slots.
  struct Rhythm {
    Span Silences, Periods;

    bool IsEmpty() const { return Silences.Count == 0; }
    bool HasOneSilence() const { return IsClose(Silences); }
    bool HasOnePeriod() const { return IsClose(Periods); }
    bool IsClose(const Span& lengths) const;
  };

  Rhythm RhythmWith(const CodedSignal& signal, RepeatKind kind) const;
  bool HasGap(const CodedSignal& signal, RepeatKind kind) const;

  SectionSignal section_;
  RepeatKind kind_ = RepeatKind::Unknown;
  std::optional<int> carrier_;
  bool isFixed_ = false;  // no signals of digits are added
  Rhythm rhythm_;
};

/// A stored code as a signal, for what is exported: digits where the patterns are of a line code, else the
/// lengths that the section sends.
/// @param digits without the leading G
RemoteKey KeyOfCode(const SectionSignal& section, const std::string& digits);

}  // namespace keplo
