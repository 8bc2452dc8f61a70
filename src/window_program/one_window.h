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
  /// Waits for the other program, which does not answer if it is closing.
  /// @return whether this program now has the folder
  bool WaitForOther();
  /// Called when the window is closing: later starts then wait until this program has ended.
  void StopAnswering();
  const std::string& LockPath() const { return lockPath_; }

 private:
  bool LockFolder(int timeout);
  void Listen();
  void Answer();

  std::string lockPath_;
  QString socketPath_;
  QLockFile lock_;
  QLocalServer requests_;
  bool ours_ = false;
};

}  // namespace keplo
