#pragma once

namespace keplo {

// Exit codes of all programs; the manual lists them as well.
inline constexpr int kDone = 0;
inline constexpr int kNoResult = 1;    // such as a press without a code, an unknown name, a refused change
inline constexpr int kUsageError = 2;  // wrong arguments, input that cannot be read, or nothing to work with
inline constexpr int kNotWritten = 3;  // keplo.cfg, the event map or the output could not be written

}  // namespace keplo
