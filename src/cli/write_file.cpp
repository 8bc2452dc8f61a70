#include "cli/write_file.h"

#include <fstream>

#include "failure.h"

namespace keplo::cli {

void WriteFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  file << content << std::flush;
  if (!file)
    throw Failure(1, "Cannot write " + path.string() + ". Check that its folder is there and not full.");
}

}  // namespace keplo::cli
