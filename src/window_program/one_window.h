#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <filesystem>
#include <string>

namespace keplo {

/// Ensures that there is only one window per folder. The first program holds a lock and listens on a socket;
/// later ones ask it to bring its window to the front.
class OneWindow {
 public:
  explicit OneWindow(const std::filesystem::path& appPath);

  /// False if another program has a window for the folder. True if the lock cannot be created at all.
  bool Ours() const { return ours_; }
  /// Asks the other program to bring its window to the front.
  /// @return false if it does not answer
  bool RaiseOther() const;
  /// Waits for a window that does not answer, as it is closing.
  /// @return whether it has left the folder to this program
  bool TakeOver();
  /// Lets later starts wait until this program has ended, since its window is closing.
  void StopAnswering();
  const std::string& LockPath() const { return lockPath_; }

 private:
  bool TakeFolder(int patience);
  void Listen();
  void Answer();

  std::string lockPath_;
  QString socketPath_;
  QLockFile lock_;
  QLocalServer requests_;
  bool ours_ = false;
};

}  // namespace keplo
