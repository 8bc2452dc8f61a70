#include "component_loader/shared_object_check.h"

#include <elf.h>
#include <link.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

namespace keplo {

namespace {

using ElfHeader = ElfW(Ehdr);
using ProgramHeader = ElfW(Phdr);

constexpr std::array<unsigned char, EI_DATA + 1> kIdent = {
    ELFMAG0, ELFMAG1, ELFMAG2, ELFMAG3, sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32, ELFDATA2LSB};

template <typename T>
bool ReadAt(std::ifstream& file, std::uint64_t offset, T& value) {
  file.seekg(static_cast<std::streamoff>(offset));
  return static_cast<bool>(file.read(reinterpret_cast<char*>(&value), sizeof value));
}

bool Fits(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
  return offset <= size && length <= size - offset;
}

bool SegmentsFit(std::ifstream& file, const ElfHeader& header, std::uint64_t size) {
  for (int number = 0; number < header.e_phnum; ++number) {
    ProgramHeader segment{};
    const std::uint64_t offset = header.e_phoff + static_cast<std::uint64_t>(number) * sizeof segment;
    if (!Fits(offset, sizeof segment, size) || !ReadAt(file, offset, segment)) return false;
    if (segment.p_type == PT_LOAD && !Fits(segment.p_offset, segment.p_filesz, size)) return false;
  }
  return true;
}

}  // namespace

std::string WhyNotLoadable(const std::filesystem::path& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return "it is a folder";
  // Opening a pipe would wait for a writer.
  if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error)) {
    return "it is no regular file";
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::strerror(errno);
  const std::uint64_t size = std::filesystem::file_size(path, error);
  if (error) return error.message();

  ElfHeader header{};
  if (!ReadAt(file, 0, header) || std::memcmp(header.e_ident, kIdent.data(), kIdent.size()) != 0 ||
      header.e_type != ET_DYN) {
    return "it is no shared object of this kind of machine";
  }
  const std::uint64_t sections = std::uint64_t{header.e_shnum} * header.e_shentsize;
  if (!SegmentsFit(file, header, size) || !Fits(header.e_shoff, sections, size)) {
    return "it is cut short: " + std::to_string(size) + " bytes are there, and its own tables tell of more";
  }
  return {};
}

}  // namespace keplo
