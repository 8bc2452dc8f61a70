#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "signal/analysis_choice.h"
#include "signal/first_analysis.h"

namespace keplo {

/// The longest time from frame to frame of a held key; 138 ms is the longest that was measured.
inline constexpr std::chrono::microseconds kLongestPeriod{155'000};

/// When a signal was on air.
struct AirTime {
  std::chrono::microseconds Begin{0};         // of the first mark
  std::chrono::microseconds End{0};           // of the last mark
  std::chrono::microseconds SilenceAfter{0};  // at least this much silence followed
  std::chrono::microseconds WatchedFrom{0};   // the line was watched without a break from then to Begin
  int Place = 0;                              // of the receiver, see SignalOrigin
  int Zone = 0;                               // of that place; 0 if it has none
  std::chrono::microseconds LastFrame{0};     // from Begin to the beginning of the last frame
};

/// What a capture reveals about the key that sent it.
struct KeySignature {
  std::string Digits;  // without the leading G
  Analysis ReadBy = Analysis::First;
  std::int16_t ProtoKind = kUnknown;
  std::int16_t BaseT = 0;      // samples
  std::optional<bool> Toggle;  // flips on each new press
  bool Dittos = false;         // repeated by dittos, so that the key sends no frames while it is held
  std::chrono::microseconds Period{0};  // from frame to frame; 0 if there was only one
  int Leader = 0;                       // length of the leader mark, samples; 0 if unknown
};

enum class KeyChange : std::uint8_t { Pressed, Held, Released };

/// A press of a key, so far.
struct KeyPress {
  KeySignature Signature;
  std::string Command;                // protocol&command; empty if the code was not learned
  int Captures = 0;                   // number of captures
  std::chrono::microseconds Held{0};  // from its first mark to its latest one
  int Place = 0;                      // of the receiver, see SignalOrigin
  int Zone = 0;                       // of that place; 0 if it has none
};

/// Turns the captures of a line into presses as a person understands them: a key is pressed, held and
/// released.
///
/// A key counts as released after two periods of its protocol without a signal, since a remote in motion may
/// lose a repeat. A complete frame at a time when a held key would not send one is a new press. If the line
/// was not watched between two captures, as during the pause after an event, only the silence right before
/// and right after is known; then neither may exceed one period.
class HeldKey {
 public:
  /// The press of the key that is held; none if there is none.
  const std::optional<KeyPress>& Press() const { return press_; }

  /// Whether a signal comes early enough to continue the press.
  bool IsContinuedAt(const AirTime& air) const;
  /// Adds a signal with a code, which continues the press or begins a new one.
  /// @return the press that it ended
  std::optional<KeyPress> Hear(const KeySignature& signature, const AirTime& air);
  /// Adds a ditto: a signal without digits that says that the key is still held.
  void HearDitto(const AirTime& air);
  /// Adds a signal that cannot be read. It may continue the press, but not twice in a row.
  void HearUnread(const AirTime& air);
  void SetCommand(const std::string& command);

  /// When the key counts as released unless a signal begins earlier.
  /// @param watchedFrom the line has been watched without a break from then on
  std::chrono::microseconds ReleaseTime(std::chrono::microseconds watchedFrom) const;
  /// Ends the press.
  std::optional<KeyPress> Release();

 private:
  bool IsSamePress(const KeySignature& signature, const AirTime& air) const;
  bool IsInTime(const AirTime& air) const;
  void Extend(const AirTime& air);

  std::optional<KeyPress> press_;
  std::chrono::microseconds begin_{0};
  AirTime last_;
  bool unread_ = false;  // the last signal could not be read
};

}  // namespace keplo
