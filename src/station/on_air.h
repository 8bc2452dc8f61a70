#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "host/component_entry.h"
#include "keplo_mod.h"
#include "shell/keplo.h"
#include "signal/win32_ser.h"

namespace keplo {

/// The signal of the last tick's capture, with or without a code. Its lengths are accurate to one sample.
/// @return without lengths if the signal was already published
HeardSignal HeardOnAir(const KeploMod& mod, const Win32Ser& line, const TickReport& tick);

// Both functions send, between two ticks, and return why nothing was sent; empty if it was.

/// @param timings microseconds, positive marks and negative spaces, alternating, beginning with a mark
/// @param carrier Hz, for lines that can set it
std::string SendLengths(const KeploMod& mod, Win32Ser& line, std::span<const std::int32_t> timings,
                        std::int32_t carrier);
/// @param reference protocol&command
std::string SendLearned(KeploMod& mod, Win32Ser& line, std::string_view reference);

}  // namespace keplo
