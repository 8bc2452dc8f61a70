#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/pulse_text.h"

namespace keplo {

/// What tells a one from a zero.
enum class LineCode : std::uint8_t {
  Distance,  // the space after a mark
  Width,     // the mark
  Biphase    // the order of mark and space; a one is the space first
};

/// What follows the first frame of a key that is held.
enum class RepeatKind : std::uint8_t {
  Short,   // a sync of its own and one mark
  Frame,   // the frame
  Body,    // the frame without its sync
  None,    // nothing
  Unknown  // the file does not say
};

/// "short", "frame", "body", "none" or "unknown".
std::string_view NameOf(RepeatKind kind);

/// A mark and the space after it, microseconds.
struct Pulse {
  int Mark = 0, Space = 0;

  bool operator==(const Pulse&) const = default;
};

/// How digits become marks and spaces. All lengths are microseconds on air: no excess of a receiver.
struct Coding {
  LineCode Line = LineCode::Distance;
  int Unit = 0;     // of which all lengths are multiples, or nearly so
  Pulse Sync;       // before the digits; both 0 where there is none
  Pulse Zero, One;  // One has the longer space (Distance) or mark (Width); Biphase: the halves of a digit
  int Tail = 0;     // closing mark after the last digit; 0 where there is none

  bool HasSync() const { return Sync.Mark > 0; }
  bool operator==(const Coding&) const = default;
};

/// How the frame of a held key is sent again.
struct Repeat {
  RepeatKind Kind = RepeatKind::Unknown;
  int Gap = 0;             // microseconds; 0 if the file does not say
  bool FromStart = false;  // Gap counts from the frame's first mark; else from its last
  Pulse ShortSync;         // of a short repeat; its closing mark is that of the frame

  bool operator==(const Repeat&) const = default;
};

/// A signal as digits.
struct CodedSignal {
  Coding Code;
  Repeat Again;
  std::string Digits;                 // '0' and '1' in the order on air; RC5 with 0 for the toggle
  std::optional<std::size_t> Toggle;  // of the digits, which one turns over from press to press

  bool operator==(const CodedSignal&) const = default;
};

/// A key of a remote. Digits, lengths or both; neither only with a reason.
struct RemoteKey {
  std::optional<std::string> Name;      // as the file has it; none in formats without names
  int Line = 0;                         // of the file, from 1
  std::optional<std::string> Protocol;  // as the format calls it; none for lengths alone
  std::optional<int> Carrier;           // Hz, 0 for a signal without; none if the file does not say
  std::optional<CodedSignal> Coded;
  PulseTrain Lengths;  // the whole press as the file has it, mark first
  PulseTrain Toggled;  // every second press, where the file has it and it differs
  int Gap = 0;  // microseconds of silence due after the lengths, where the file tells it beside them; else 0
  bool GapFromStart = false;  // Gap counts from the first mark; else from the last
  // Set where the lengths are not heard but made of what the file says of all presses: how they are repeated.
  std::optional<Repeat> Described;
  std::string Skipped;  // why there is neither
  std::string File;     // that Line counts in; empty for a key that is of no file
  std::string Lost;     // what the file says of it that neither keeps; empty if nothing

  bool IsRaw() const { return !Coded && !Lengths.empty(); }
};

struct Remote {
  std::string Name;  // empty if neither the file nor its name gives one
  std::vector<RemoteKey> Keys;
};

/// What a reader or writer has to tell of one place of a file; the other keys go on. A key that is left out
/// tells its reason itself.
struct Complaint {
  std::string File;
  int Line = 0;      // 0 if there is none
  std::string Key;   // empty if it is of no key
  std::string Text;  // what was found and expected, or what is lost

  /// "FILE, line N, key "K": TEXT" with what there is of it.
  std::string Message() const;
};

struct RemoteFile {
  std::string_view Format;  // by name
  std::vector<Remote> Remotes;
  std::vector<Complaint> Complaints;
};

/// Lengths that a key may have at most; longer presses are refused, as no sender plays them.
inline constexpr std::size_t kMostLengths = 4096;
/// Keys that one file may have at most.
inline constexpr std::size_t kMostKeys = 100'000;

/// The patterns of a section that sends a coding: a character 0 or 1 a slot. A width code is written space
/// first, since the sync's space is that of its first digit.
struct SlotPatterns {
  int Slot = 0;  // microseconds
  std::string Sync, Zero, One;
  std::string Tail;  // closing mark; one slot for pulse distance as every section sends it, else empty
};

/// @param longestSlot that may be chosen, microseconds
/// @return none where no slot keeps each mark and space within half of one
std::optional<SlotPatterns> PatternsOf(const Coding& coding, int longestSlot = kLongestPulse);

/// The length of which all lengths of the digits are multiples, or nearly so: the largest one that a mark and
/// the shorter space make.
int UnitOf(const Coding& coding);

/// Length of the frame of these digits from its first mark to its last, microseconds.
int FrameTime(const CodedSignal& signal);

/// Silence between the last mark of a frame and the next frame, microseconds; 0 if the signal does not say.
int SilenceAfter(const CodedSignal& signal);

/// One frame in marks and spaces, with a mark at both ends.
PulseTrain FrameLengths(const CodedSignal& signal);

/// A press as a held key sends it: the frame, and so many repeats after it. A repeat that the file does not
/// tell is the frame.
PulseTrain PressLengths(const CodedSignal& signal, int repeats);

/// The digits of a press given as lengths of a sender: none where its frames differ, where it has more than
/// two lengths of mark or space, or is of no known line code.
/// @param press mark first; a closing space counts as the gap
std::optional<CodedSignal> ReadDigits(const PulseTrain& press);

/// What a format keeps of a key whose every second press differs.
enum class KeptForms : std::uint8_t {
  None,   // it keeps no lengths at all
  First,  // the first form alone
  Digit,  // which digit turns over, but no two forms of lengths
  Both
};

/// A format that remotes are kept in.
struct RemoteFormat {
  std::string_view Name, Description;
  bool (*Detect)(std::string_view text);
  void (*Read)(std::string_view text, const std::string& path, RemoteFile& file);
  /// @param told gets what of the keys the format cannot say
  std::string (*Write)(const std::vector<Remote>& remotes, std::vector<Complaint>& told);
  KeptForms Forms = KeptForms::First;
};

/// All formats, in the order in which a text is asked whether it is of one.
std::span<const RemoteFormat> RemoteFormats();

/// The format of that name.
/// @throws FormatError that names all formats if there is none
const RemoteFormat& RemoteFormatNamed(std::string_view name);

/// Reads all remotes of a text. Keys that are given as lengths get their digits where ReadDigits finds them.
/// @param path what the text was read from: for error texts, names and what it includes
/// @param format by name; empty to tell it from the content
/// @throws FormatError if the text is of no known format, or is none
RemoteFile ReadRemotes(std::string_view text, const std::string& path, std::string_view format = {});

/// ReadRemotes for a file or, as "-", the standard input.
/// @throws FormatError also for a file that cannot be read or is larger than kLargestRecording
RemoteFile LoadRemotes(const std::string& path, std::string_view format = {});

/// The remotes as the text of a format.
/// @param told gets the keys that are left out, and once what the format cannot say
/// @throws FormatError for a format that is not known
std::string WriteRemotes(std::string_view format, const std::vector<Remote>& remotes,
                         std::vector<Complaint>& told);

}  // namespace keplo
