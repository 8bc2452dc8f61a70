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

/// What the capture that was read last holds of a signal; valid until the next is read.
HeardLengths HeardIn(SignalState& signal);

/// The raw command that fits the capture that was read last, and no other one; none if there is no such.
std::optional<FoundCommand> FindRawCommand(const CfgStore& store, SignalState& signal);

/// What to tell of the capture that was read last if two raw commands fit it alike, so that it is neither and
/// cannot be learned: which they are, and what to do, behind "it". Empty for any other.
std::string AlikeRawText(const CfgStore& store, SignalState& signal);

/// A frame that proves too little by itself is a code if the very same was learned.
void ProveByLearning(const CfgStore& store, MonitorReading& reading);

/// Asks the raw commands about a monitored capture that belongs to no other command, once it has been read
/// with the second look. A reading that fits one, or begins with a tap of one that is followed by another
/// tap, ends at Stage::Raw with the digits of that command; any other reading stays as it is.
void AskRawCommands(const CfgStore& store, SignalState& signal, MonitorReading& reading);

/// Whether a capture goes on with a press of a raw command, see GoesOnWithRaw; it reads as that command then.
/// Anything else stays as it is, codes of learned commands among them.
/// @param held digits of the command whose key is held
/// @param toggle which of its two forms was heard, if it has two
void TakeHeldRaw(const CfgStore& store, SignalState& signal, std::string_view held,
                 std::optional<bool> toggle, MonitorReading& reading);

/// From frame to frame of a held key whose command is raw, at most; none if there is no such command.
std::optional<std::chrono::microseconds> LongestRawPeriod(const CfgStore& store, std::string_view digits);

/// The signal of forms that were heard, with digits that no command of the text has.
RawSignal DrawRawSignal(std::string_view text, const std::vector<RawLesson::Form>& forms);

/// What the monitor reads of lengths, before it asks the raw commands.
/// @param heard takes how it was measured
MonitorReading MonitorReadingOf(const RawLengths& lengths, SignalState& heard);

/// A command whose code the monitor reads of one of the forms of a signal, so that it never asks the raw
/// ones.
std::optional<FoundCommand> FindCommandReadOf(std::string_view text, const std::vector<RawLengths>& forms);

/// The raw command of an index that could be taken for a signal of these forms, or the signal for it, by what
/// a monitored capture holds of the two; not the same if there is none.
RawMatch FindLikeRaw(const RawIndex& index, const std::vector<RawLengths>& forms);

/// Whether the monitor takes each form of a raw command of an index for that command. What hardly has a
/// length of its own, or silence where its frames go on, can be sent and is never heard.
bool IsHeardAsRaw(const RawIndex& index, const RawSignal& signal);
/// What to tell of one that is not.
inline constexpr std::string_view kNotHeardAsRaw =
    "it can be sent, but not heard: the receiver takes it for noise or for pieces";

/// A raw command of the text that could be taken for a signal, or the signal for it, by what a monitored
/// capture holds of the two.
std::optional<FoundCommand> FindLikeRawCommand(const CfgStore& store, const RawSignal& signal);

/// The check of a new code as far as it concerns raw commands: one of theirs needs lengths, no command of
/// the text may be like it, and of none may the monitor read the code in it.
LearnResult CheckRawCode(const CfgStore& store, std::string_view code);

/// Stores a raw command: its lengths and its code line. The checks are those of any other command, and a
/// signal that is like one that is stored is refused as Refusal::CodeExists.
/// @throws Failure as StoreCommand
LearnResult AddRawCommand(CfgStore& store, std::string_view protocol, const RawSignal& signal,
                          std::string_view name);

}  // namespace keplo
