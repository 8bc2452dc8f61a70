#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/remote.h"

namespace keplo::trade {

/// The lines of a text, without their ends.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}
  bool Next(std::string_view& line);
  int Number() const { return number_; }  // of the line that came last, from 1

 private:
  std::string_view rest_;
  int number_ = 0;
};

std::string_view Trimmed(std::string_view text);
/// Takes the first word off a text; empty at its end.
std::string_view TakeWord(std::string_view& rest);
bool SameNoCase(std::string_view left, std::string_view right);
std::string Lower(std::string_view text);
bool StartsNoCase(std::string_view text, std::string_view start);

/// A whole number, and nothing after it.
std::optional<std::int64_t> NumberOf(std::string_view word, int base = 10);
/// A whole number as C writes it: 0x ahead for hex, 0 ahead for octal.
std::optional<std::uint64_t> CNumberOf(std::string_view word);
/// The digits and letters of two hex digits a byte.
std::optional<std::uint8_t> HexByteOf(std::string_view word);

/// A number in hex, with zeros ahead up to so many digits.
std::string HexText(std::uint64_t value, std::size_t digits = 1);

/// A word as an error text repeats it: short, and between quotes.
std::string Quoted(std::string_view word);

/// Why a key of such a protocol is left out.
std::string UnknownProtocol(std::string_view name);

/// The name of a file without its folder and ending; empty for the standard input.
std::string NameOfPath(const std::string& path);

/// Builds the remotes of a file within its limits.
class FileReading {
 public:
  FileReading(std::string path, RemoteFile& file) : path_(std::move(path)), file_(file) {}

  const std::string& Path() const { return path_; }
  /// The keys that follow are of a remote of that name.
  void BeginRemote(std::string name);
  void Add(RemoteKey key);
  /// A key that is left out.
  void Skip(RemoteKey key, std::string reason);
  void Complain(int line, std::string text, std::string key = {});
  bool IsFull() const { return full_; }

 private:
  std::string path_;
  RemoteFile& file_;
  std::size_t keys_ = 0;
  bool full_ = false;
};

/// Lengths as a file gives them, checked one by one; signs are the caller's.
class LengthList {
 public:
  /// A mark ahead, then in turn.
  void Add(std::int64_t length);
  void AddWord(std::string_view word);
  std::size_t Size() const { return lengths_.size(); }
  const std::string& Fault() const { return fault_; }  // empty if all lengths are good
  PulseTrain Take() { return std::move(lengths_); }
  void Refuse(std::string fault) {
    if (fault_.empty()) fault_ = std::move(fault);
  }

 private:
  PulseTrain lengths_;
  std::string fault_;
};

/// Gives the lengths to the key, or skips it with what is wrong with them.
void AddLengths(FileReading& reading, RemoteKey key, LengthList lengths);

inline constexpr int kUsualCarrier = 38'000;  // Hz
// What senders and receivers of light know, Hz.
inline constexpr int kLeastCarrier = 10'000, kMostCarrier = 1'000'000;

/// Text without line ends.
std::string OnOneLine(std::string_view text);

int CarrierOf(const RemoteKey& key);

/// The press of a key as lengths: as the file had it, else from its digits, with the repeat shown once.
PulseTrain PressOf(const RemoteKey& key);

/// The silence that is due after the last mark of a press.
int ClosingSilence(const RemoteKey& key);

/// PressOf, with that silence where the file tells it beside the lengths.
PulseTrain PressAndSilence(const RemoteKey& key);

/// A name for a key that has none: "key 1".
std::string NameFor(const RemoteKey& key, std::size_t number);

/// Something that a format cannot say of one key, and why it leaves the key out.
/// @param name of NameFor
void TellOfKey(std::vector<Complaint>& told, const RemoteKey& key, std::string name, std::string text);

/// Something that a format cannot say; told once.
void TellOnce(std::vector<Complaint>& told, std::string_view text);

/// TellOnce for a format of presses, in which one repeat at most shows how a held key goes on.
void TellRepeat(std::vector<Complaint>& told, const RemoteKey& key);

}  // namespace keplo::trade
