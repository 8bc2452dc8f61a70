#include "host_program/journal_stream.h"

#include <sys/stat.h>

#include <string>

namespace keplo::host {

bool IsJournal(int descriptor, std::string_view journalStream) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 &&
         journalStream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

}  // namespace keplo::host
