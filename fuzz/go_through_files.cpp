#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Hands each file below the named folders to the fuzzer's function, where no libFuzzer is at hand. A folder
/// that is not there counts as empty, but some file must have been found.
int main(int count, char** folders) {
  int files = 0;
  for (int index = 1; index < count; ++index) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folders[index], missing)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file), {}};
      std::printf("%s\n", entry.path().c_str());
      std::fflush(stdout);
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  }
  return files > 0 ? 0 : 1;
}
