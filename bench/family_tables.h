#pragma once

namespace keplo::bench {

/// Wrong codes and right ones of presses that were damaged, as they were recorded and capture by capture.
void PrintDamage();

/// Codes and raw commands found where there is no press, or two at once, with 1,000 raw commands stored.
void PrintNoise();

/// Keys that no analysis reads, learned as raw commands and pressed again.
void PrintRawKeys();

}  // namespace keplo::bench
