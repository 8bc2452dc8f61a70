#pragma once

#include <string>

namespace keplo {

/// Asks for what makes a thread punctual: real-time priority and no timer slack. Where the system allows no
/// priority, it asks for slices so short that the thread runs at once when it wakes, before others in
/// mid-slice.
void HurryThread();

/// The same for the calling thread as long as one lives.
class Hurry {
 public:
  Hurry();
  ~Hurry();
  Hurry(const Hurry&) = delete;
  Hurry& operator=(const Hurry&) = delete;

 private:
  int policy_;
  int priority_;
  int slack_;
};

/// Keeps the program's memory from being swapped out, where the system sets no limit to that.
void LockMemory();

/// What the system allows this program, for a person: "real-time priority" or how to get it.
std::string DescribeRealTime();
/// Whether captures run in memory that is never swapped out, or how to get that.
std::string DescribeMemory();

}  // namespace keplo
