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

/// The signal of the capture that a tick has read, code or none. Its lengths are exact to one sample.
/// @return without lengths for one that everybody has been told of already
HeardSignal HeardOnAir(const KeploMod& mod, const Win32Ser& line, const TickReport& tick);

// Both send between two ticks, and tell why nothing was sent; empty if it was.
/// @param timings microseconds, marks positive, spaces negative, alternating from a mark on
/// @param carrier Hz, of lines that can set one
std::string SendLengths(const KeploMod& mod, Win32Ser& line, std::span<const std::int32_t> timings,
                        std::int32_t carrier);
/// @param reference protocol&command, as the event map has it
std::string SendLearned(KeploMod& mod, Win32Ser& line, std::string_view reference);

}  // namespace keplo
