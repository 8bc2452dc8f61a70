#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "signal/analysis_choice.h"
#include "signal/first_analysis.h"

namespace keplo {

/// From frame to frame of a held key, at most; 138 ms is the longest that was measured.
inline constexpr std::chrono::microseconds kLongestPeriod{155'000};

/// When a signal was on air, as whoever watched the line knows it.
struct AirTime {
  std::chrono::microseconds Begin{0};         // of the first mark
  std::chrono::microseconds End{0};           // of the last mark
  std::chrono::microseconds SilenceAfter{0};  // known to have followed
  std::chrono::microseconds WatchedFrom{0};   // from then to Begin nobody looked away from the line
  int Place = 0;                              // of the receiver
  int Zone = 0;                               // of that place; 0 if it has none
  std::chrono::microseconds LastFrame{0};     // from Begin to that of the last frame
};

/// What a capture tells of the key that sent it.
struct KeySign {
  std::string Digits;  // without the leading G
  Analysis ReadBy = Analysis::First;
  std::int16_t ProtoKind = kUnknown;
  std::int16_t BaseT = 0;               // samples
  std::optional<bool> Toggle;           // flips on each new press
  bool Dittos = false;                  // the frame was repeated by dittos, so a held key sends no frame
  std::chrono::microseconds Period{0};  // from frame to frame; 0 if only one was heard
  int Leader = 0;                       // mark of its leader, samples; 0 where it is not known
};

/// What became of a key.
enum class KeyChange : std::uint8_t { Pressed, Held, Released };

/// A key from its press on.
struct KeyPress {
  KeySign Sign;
  std::string Command;                // protocol&command; empty for a code that was not learned
  int Captures = 0;                   // that were taken of it
  std::chrono::microseconds Held{0};  // from its first mark to the last one so far
  int Place = 0;                      // of the receiver
  int Zone = 0;                       // of that place; 0 if it has none
};

/// Makes of the captures of a line what people mean by a press: one key, pressed, held and let go.
///
/// A key counts as let go when for two periods of its protocol nothing came: a remote that is moved may lose
/// a repeat. A whole frame that comes where a held key sends none is the next press. Where nobody watched the
/// line between two captures, as during the pause after an event, nothing but the silence right before and
/// right after is known; neither may be longer than one period then.
class HeldKey {
 public:
  /// The key that is held; none if none is.
  const std::optional<KeyPress>& Pressed() const { return press_; }

  /// Whether a signal goes on with the press, as its dittos would.
  bool FollowsOn(const AirTime& air) const;
  /// Takes in a signal with a code: it goes on with the press, or begins a new one.
  /// @return the press that ended before it
  std::optional<KeyPress> Hear(const KeySign& sign, const AirTime& air);
  /// Takes in a signal without digits that says that the key is still held.
  void HearDitto(const AirTime& air);
  /// Takes in a signal that cannot be read: it may be of the key, but not twice in a row.
  void HearUnread(const AirTime& air);
  void Name(const std::string& command);

  /// When the key counts as let go unless a signal begins before.
  /// @param watchedFrom from then on nobody looked away from the line
  std::chrono::microseconds LetGoAt(std::chrono::microseconds watchedFrom) const;
  /// Ends the press.
  std::optional<KeyPress> LetGo();

 private:
  bool IsSamePress(const KeySign& sign, const AirTime& air) const;
  bool IsInTime(const AirTime& air) const;
  void GoOn(const AirTime& air);

  std::optional<KeyPress> press_;
  std::chrono::microseconds begin_{0};
  AirTime last_;
  bool unread_ = false;  // the last signal could not be read
};

}  // namespace keplo
