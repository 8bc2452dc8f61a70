#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "signal/raw/raw_levels.h"
#include "signal/raw/raw_signal.h"

namespace keplo {

/// Presses of a remote on their way to a raw command.
class RawLesson {
 public:
  struct Form {
    LeveledSignal Signal;
    int Presses = 0;
    bool Repeats = false;  // the remote itself sent its frame twice in a press

    bool IsConfirmed() const { return Presses > 1 || Repeats; }
  };

  /// Takes a press into account. A recording that is heard again is no second press. What a held key repeats
  /// is kept a few times, and no piece of it that the recording has cut off.
  /// @param place where its recording was read from; empty for a key press
  /// @return false for one that is no clean signal, which changes nothing
  bool Hear(const HeardLengths& press, const std::string& place = {});

  /// The forms that were heard, in the order of their first press.
  const std::vector<Form>& Forms() const { return forms_; }
  /// The form of the last press; there was one.
  const Form& Last() const { return forms_[last_]; }

  /// Whether the last press was heard before as well, one right after the other, or repeats in itself.
  bool IsLastConfirmed() const;
  /// Whether the last four presses were two alternating forms.
  bool TakesTurns() const;
  /// These two forms, the one before last first.
  std::vector<Form> Turns() const { return {forms_[order_[order_.size() - 2]], forms_[order_.back()]}; }
  /// Whether all forms could come from one key: their frames are about as long. Keys of an air conditioner
  /// are alike too, so that only presses that are known to be of one key make it one.
  bool AreAlike() const;
  /// Whether all presses were these forms one after the other, again and again.
  bool AreTurns() const;

 private:
  /// Takes the lengths of a further press into those of its form: jitter that stayed in them would tell keys
  /// apart that are the same, and hide what does.
  static void TakeMean(Form& form, const RawLengths& press);

  std::vector<Form> forms_;
  std::vector<std::size_t> order_;             // forms of the presses
  std::size_t last_ = 0;                       // the form that was heard last, be it again
  std::map<std::string, std::size_t> places_;  // forms of the recordings
};

}  // namespace keplo
