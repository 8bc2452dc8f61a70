#include "disk/folder_watch.h"

#include <sys/inotify.h>

#include <array>
#include <cstdint>

namespace keplo {

FolderWatch::FolderWatch(const std::filesystem::path& folder)
    : news_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  constexpr std::uint32_t kChanges = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
  inotify_add_watch(news_.Number(), folder.c_str(), kChanges);
}

bool FolderWatch::TakeNews() const {
  std::array<char, 4096> news{};
  bool taken = false;
  while (read(news_.Number(), news.data(), news.size()) > 0) taken = true;
  return taken;
}

}  // namespace keplo
