#pragma once

#include <array>
#include <csignal>
#include <vector>

namespace keplo {

/// Turns signals into something to wait for, so that work stops between two of its steps. During the lifetime
/// of the object, signals do not end the program. There may be one object at a time; it belongs to the thread
/// that created it: signals blocked by that thread are pending, whichever thread the system delivers them to.
/// Create it once all input has been read: until then, signals should end the program at once.
class StopSignals {
 public:
  /// @param ending signals that will end the program once it has taken them
  /// @param asking signals that request something else; EndsProgram distinguishes them
  explicit StopSignals(const std::vector<int>& ending, const std::vector<int>& asking = {});
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Becomes readable when a signal has arrived.
  int Descriptor() const { return readEnd_; }
  /// Waits for a signal, without taking it.
  /// @return false if none arrived in time
  bool WaitFor(int milliseconds) const;
  /// Also returns when one of the descriptors becomes readable; negative ones are ignored.
  bool WaitFor(int milliseconds, std::array<int, 3> descriptors) const;
  /// Takes the next signal that has arrived; 0 if there is none.
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

/// Whether a signal is ignored, as nohup does for SIGHUP.
bool IsIgnored(int number);

/// Whether a signal will end this program: it will not if it is ignored, or if a StopSignals of any part of
/// the program has it among those that request something else.
bool EndsProgram(int number);

/// The signals that should end this program: those that ask it to, and those for the loss of the terminal or
/// of the reader of its output, unless they are ignored.
std::vector<int> EndingSignals();

/// Makes writing beyond the file-size limit of the process an ordinary error, which can be reported, instead
/// of ending the program.
void IgnoreFileSizeSignal();

}  // namespace keplo
