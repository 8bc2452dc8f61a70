#include "disk/folder_watch.h"

#include <sys/inotify.h>

#include <array>
#include <cstdint>
#include <system_error>
#include <utility>

namespace keplo {

namespace {

/// The target of a link, whether or not it exists.
std::filesystem::path TargetOf(const std::filesystem::path& link) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(link, error);
  return error ? link.parent_path() / std::filesystem::read_symlink(link, error) : target;
}

}  // namespace

FolderWatch::FolderWatch(std::filesystem::path folder)
    : folder_(std::move(folder)), news_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  isWatching_ = Watch(folder_);
  WatchTargets();
}

bool FolderWatch::Watch(const std::filesystem::path& folder) {
  constexpr std::uint32_t kChanges = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
  return inotify_add_watch(news_.Number(), folder.c_str(), kChanges) >= 0;
}

void FolderWatch::WatchTargets() {
  std::error_code error;
  std::filesystem::directory_iterator entry(folder_, error);
  for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    // Watching a folder again has no effect.
    if (entry->is_symlink(error)) Watch(TargetOf(entry->path()).parent_path());
  }
}

bool FolderWatch::TakeNews() {
  std::array<char, 4096> news{};
  bool taken = false;
  while (read(news_.Number(), news.data(), news.size()) > 0) taken = true;
  if (taken) WatchTargets();
  return taken;
}

}  // namespace keplo
