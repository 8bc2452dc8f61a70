#pragma once

namespace keplo::qt {

/// Tells the user, as long as it lives, that the program is busy: the cursor shows it. Whatever is typed or
/// clicked meanwhile, anywhere in the program, is dropped, since it was meant for a window that could not
/// answer.
class Busy {
 public:
  Busy();
  ~Busy();
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;
};

/// A question to the user in the middle of a busy time: as long as it lives, his input counts.
class AskingMeanwhile {
 public:
  AskingMeanwhile();
  ~AskingMeanwhile();
  AskingMeanwhile(const AskingMeanwhile&) = delete;
  AskingMeanwhile& operator=(const AskingMeanwhile&) = delete;

 private:
  int busyBefore_;
};

}  // namespace keplo::qt
