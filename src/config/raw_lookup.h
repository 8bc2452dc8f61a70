#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "signal/monitored_press.h"
#include "signal/raw/raw_lesson.h"
#include "signal/signal_state.h"

namespace keplo {

// "The last capture" below is the one that signal was last asked to read.

/// The runs of the last capture; valid until the next one is read.
HeardLengths HeardIn(SignalState& signal);

/// The raw command that the last capture fits; none unless it fits exactly one.
std::optional<FoundCommand> FindRawCommand(const CfgStore& store, SignalState& signal);

/// If two raw commands fit the last capture equally well, so that it counts as neither and cannot be learned:
/// which they are and what to do, as the rest of a sentence that begins with "it". Empty otherwise.
std::string AmbiguousRawText(const CfgStore& store, SignalState& signal);

/// Accepts the code of a lone frame that proves too little by itself if exactly this code was learned.
void ProveByLearning(const CfgStore& store, MonitorReading& reading);

/// Looks for the raw command of a monitored capture that belongs to no other command, after the second look
/// has read it. A reading that fits one, or begins with one of two taps of it, ends at Stage::Raw with the
/// digits of that command; any other reading is unchanged.
void MatchRawCommands(const CfgStore& store, SignalState& signal, MonitorReading& reading);

/// Reads a capture as the raw command whose key is held if it continues that press, see GoesOnWithRaw. Any
/// other reading, such as the code of a learned command, is unchanged.
/// @param held digits of the command whose key is held
/// @param toggle which of its two forms was received, if it has two
void ReadAsHeldRaw(const CfgStore& store, SignalState& signal, std::string_view held,
                   std::optional<bool> toggle, MonitorReading& reading);

/// The longest time from frame to frame of a held raw command; none if there is no such command.
std::optional<std::chrono::microseconds> LongestRawPeriod(const CfgStore& store, std::string_view digits);

/// A signal of the given forms, with digits that no command of the text has.
RawSignal MakeRawSignal(std::string_view text, const std::vector<RawLesson::Form>& forms);

/// What the monitor would read from lengths, raw commands aside.
/// @param heard receives the details of the reading
MonitorReading MonitorReadingOf(const RawLengths& lengths, SignalState& heard);

/// The command whose code the monitor would decode from one of the forms, so that the raw commands would
/// never be tried.
std::optional<FoundCommand> FindCommandDecodedFrom(std::string_view text,
                                                   const std::vector<RawLengths>& forms);

/// The raw command of an index that the monitor could confuse with a signal of these forms; IsSame is false
/// if there is none.
RawMatch FindSimilarRaw(const RawIndex& index, const std::vector<RawLengths>& forms);

/// Whether the monitor recognises each form of a raw command of the index. A signal with hardly any
/// distinctive lengths, or with long silences between its frames, can be sent but is never recognised.
bool IsHeardAsRaw(const RawIndex& index, const RawSignal& signal);
/// The message for one that it does not.
inline constexpr std::string_view kNotHeardAsRaw =
    "it can be sent, but not heard: the receiver takes it for noise or for pieces";

/// The raw command of the text that the monitor could confuse with a signal.
std::optional<FoundCommand> FindSimilarRawCommand(const CfgStore& store, const RawSignal& signal);

/// Checks the digits of a new raw command: its lengths must be known, no raw command may be too similar, and
/// the monitor must not decode another command from it. Any other code passes.
LearnResult CheckRawCode(const CfgStore& store, std::string_view code);

/// Stores a raw command: its lengths and its code line. The checks are those of any other command and
/// CheckRawCode.
/// @throws Failure as StoreCommand
LearnResult AddRawCommand(CfgStore& store, std::string_view protocol, const RawSignal& signal,
                          std::string_view name);

}  // namespace keplo
