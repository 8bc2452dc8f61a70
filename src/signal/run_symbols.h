#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "signal/first_analysis.h"

namespace keplo {

/// Symbols of a frame's borders: G for a mark that is too long for a digit, g for such a space or the end of
/// the signal.
inline constexpr std::string_view kMarks = "Gg";

/// Whether a run is too long for a digit, so that a border symbol stands for it.
constexpr bool IsBorder(int run, int baseT) { return RunUnits(run, baseT) == kBorderUnits; }

/// Writes run symbols over a text, which keeps its capacity from one signal to the next.
class SymbolWriter {
 public:
  /// @param runs the most that are written
  SymbolWriter(std::string& text, std::size_t runs) : text_(text) {
    text_.resize((runs + 1) * kMostSymbols + 1);
    end_ = text_.data();
  }
  SymbolWriter(const SymbolWriter&) = delete;
  SymbolWriter& operator=(const SymbolWriter&) = delete;
  ~SymbolWriter() { text_.resize(static_cast<std::size_t>(end_ - text_.data())); }

  /// Symbols of a mark: 1 for each base time, or G.
  void Mark(int run, int baseT) { Write(RunUnits(run, baseT), '1', 'G'); }
  /// Symbols of a space: 0 for each base time, or g.
  void Space(int run, int baseT) { Write(RunUnits(run, baseT), '0', 'g'); }
  void Border(char mark) { *end_++ = mark; }

 private:
  static constexpr std::size_t kMostSymbols = 3;  // of a run

  void Write(int units, char symbol, char mark) {
    const bool border = units == kBorderUnits;
    std::memset(end_, border ? mark : symbol, kMostSymbols);
    end_ += border ? 1 : units;
  }

  std::string& text_;
  char* end_;
};

}  // namespace keplo
