#pragma once

#include <array>
#include <csignal>
#include <vector>

namespace keplo {

/// Signals as something to wait for, so that work stops between two of its steps. As long as the object lives
/// they end nothing by themselves; one object at a time, for the thread that makes it: while that one holds a
/// signal back, it counts as not come, whichever thread the system gave it to. Make it once everything has
/// been read: until then a signal ends the program at once, whatever it waits for.
class StopSignals {
 public:
  /// @param ending those that end the program, once it has taken them
  /// @param asking those that ask for something and end nothing; EndsProgram tells them apart
  explicit StopSignals(const std::vector<int>& ending, const std::vector<int>& asking = {});
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Can be read from when a signal has come.
  int Descriptor() const { return readEnd_; }
  /// Waits until a signal has come, which stays to be taken.
  /// @return false if none came within the time
  bool WaitFor(int milliseconds) const;
  /// The same, ended also by something to read from one of the descriptors; a negative one counts
  /// for nothing.
  bool WaitFor(int milliseconds, std::array<int, 3> descriptors) const;
  /// The number of the next signal that has come; 0 if there is none.
  int Take() const;

 private:
  void Catch(const std::vector<int>& numbers, int flags);

  struct Caught {
    int Number;
    struct sigaction Before;
  };

  int readEnd_ = -1;
  std::vector<Caught> caught_;
};

/// Whether whoever started the program wants it to go on after a signal, as nohup does for SIGHUP.
bool IsIgnored(int number);

/// Whether a signal will end this program, as it is taken now: one that is ignored does not, nor does one
/// that a StopSignals of any part of the program takes for a question.
bool EndsProgram(int number);

/// The signals that end this program: those that ask it to, and a terminal or a reader of its output that
/// goes, unless it was started to outlive them.
std::vector<int> EndingSignals();

/// A file that grows beyond a limit of the process gives an error that can be told, not its end.
void IgnoreFileSizeSignal();

}  // namespace keplo
