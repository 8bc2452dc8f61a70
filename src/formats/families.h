#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "formats/remote.h"

namespace keplo {

/// What remotes of one protocol have in common.
struct Family {
  std::string_view Name;
  int Digits;  // of a frame; 0 where there are several lengths
  Coding Code;
  Repeat Again;
  int Carrier;  // Hz
};

/// The family of that name.
/// @throws std::logic_error for a name that is not in the table
const Family& FamilyNamed(std::string_view name);

/// The family whose lengths these are, within what receivers and rounding do to them, and which has frames of
/// so many digits.
/// @param carrier decides between families of equal lengths
const Family* FamilyOf(const CodedSignal& signal, std::optional<int> carrier);

/// Whether a key is sent on another carrier than its family, by more than 1 %.
bool HasOwnCarrier(const RemoteKey& key, const Family& family);

/// Whether a file says that a key is repeated in another way than its family's.
bool HasOwnRepeat(const RemoteKey& key, const Family& family);

/// ReadDigits, and what the family of the signal says where the press does not show it.
/// @param carrier of the press, Hz
std::optional<CodedSignal> ReadPress(const PulseTrain& press, std::optional<int> carrier);

/// Gives the key a press of two parts: what is sent once, and what is sent again while it is held. Either may
/// be empty, and both end in a space.
void TakeParts(PulseTrain once, const PulseTrain& again, RemoteKey& key);

CodedSignal SignalOf(const Family& family, std::string digits);

/// Digits one field after another, in the order on air.
class DigitText {
 public:
  /// The lowest bits of a value, the lowest first.
  DigitText& Low(std::uint64_t value, int bits);
  /// The lowest bits of a value, the highest first.
  DigitText& High(std::uint64_t value, int bits);
  std::string Take() { return std::move(digits_); }

 private:
  std::string digits_;
};

/// The value of digits whose first is the lowest.
std::uint64_t LowFirst(std::string_view digits);
/// The value of digits whose first is the highest.
std::uint64_t HighFirst(std::string_view digits);

/// Of two codes of equal length the first digit in which they differ; none if there is none.
std::optional<std::size_t> FirstDifference(std::string_view left, std::string_view right);

/// Whether two runs of digits are of equal length and differ everywhere.
bool AreInverse(std::string_view left, std::string_view right);

}  // namespace keplo
