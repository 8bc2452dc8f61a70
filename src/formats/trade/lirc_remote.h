#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/remote.h"
#include "formats/train_writer.h"

namespace keplo::trade {

struct LircCode {
  std::string Name;
  int Line = 0;
  std::vector<std::uint64_t> Values;  // sent one after the other
  PulseTrain Lengths;                 // of a raw code
  std::string Fault;                  // why it is none; empty if it is good
};

/// A remote as lircd.conf describes it; names and defaults are the file's.
struct LircRemote {
  std::string Name, Driver;
  bool Rc5 = false, Rc6 = false, SpaceFirst = false, Raw = false, Reverse = false;
  bool NoHeadRepeat = false, NoFootRepeat = false, ConstLength = false, RepeatHeader = false;
  std::string Fault;    // why it has no codes; empty if it is good
  std::string Foreign;  // a flag that is not known, or of a coding that two patterns do not hold

  Pulse Header, One, Zero, Foot, Repeat, Pre, Post;
  int Lead = 0, Trail = 0;
  int Bits = 0, PreBits = 0, PostBits = 0;
  std::uint64_t PreData = 0, PostData = 0;
  std::uint64_t ToggleBitMask = 0, ToggleMask = 0, RepeatMask = 0, Rc6Mask = 0;
  int ToggleBit = 0;  // from the left, 1 first; 0 for none
  int Gap = 0;
  int Carrier = 38'000;  // Hz
  std::vector<LircCode> Codes;

  int AllBits() const { return PreBits + Bits + PostBits; }
};

/// Gives the key what the remote's sender makes of a code.
/// @return empty, or why there is nothing
std::string TakeLircCode(const LircRemote& remote, const LircCode& code, RemoteKey& key);

}  // namespace keplo::trade
