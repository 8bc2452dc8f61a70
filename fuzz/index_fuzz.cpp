#include <cstddef>
#include <cstdint>
#include <string_view>

#include "cli/index_file.h"
#include "config/valid_names.h"
#include "failure.h"

/// An index file of any bytes: codes with names that can be stored, or a failure with a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    for (keplo::cli::CodeToLearn& code : keplo::cli::ParseIndex(text, "index.json")) {
      if (!keplo::IsValidName(code.Name) || code.Protocol.empty()) __builtin_trap();
    }
  } catch (const keplo::Failure& failure) {
    if (std::string_view(failure.what()).empty()) __builtin_trap();
  }
  return 0;
}
