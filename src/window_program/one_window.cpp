#include "window_program/one_window.h"

#include <QApplication>
#include <QLocalSocket>
#include <QWidget>

namespace keplo {

namespace {

constexpr int kTimeout = 3000;  // milliseconds; a window that is recording or closing answers late
constexpr const char* kRaised = "raised";

void BringToFront() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    const bool stays = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
    if (!window->isVisible() || !stays) continue;
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    window->activateWindow();
  }
  if (QWidget* box = QApplication::activeModalWidget()) {
    box->raise();
    box->activateWindow();
  }
}

}  // namespace

OneWindow::OneWindow(const std::filesystem::path& appPath)
    : lockPath_((appPath / "keplo-window.lock").string()),
      // Qt would put a relative name in the folder for temporary files.
      socketPath_(
          QString::fromStdString((std::filesystem::absolute(appPath) / "keplo-window.socket").string())),
      lock_(QString::fromStdString(lockPath_)) {
  lock_.setStaleLockTime(0);  // a window may be open for weeks
  QObject::connect(&requests_, &QLocalServer::newConnection, &requests_, [this] { Answer(); });
  requests_.setSocketOptions(QLocalServer::UserAccessOption);
  LockFolder(0);
}

bool OneWindow::LockFolder(int timeout) {
  ours_ = lock_.tryLock(timeout) || lock_.error() != QLockFile::LockFailedError;
  if (lock_.isLocked()) Listen();
  return ours_;
}

void OneWindow::Listen() {
  QLocalServer::removeServer(socketPath_);  // may be left by a program that was killed
  requests_.listen(socketPath_);
}

void OneWindow::Answer() {
  while (QLocalSocket* other = requests_.nextPendingConnection()) {
    QObject::connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
    BringToFront();
    other->write(kRaised);
    other->disconnectFromServer();
  }
}

bool OneWindow::WaitForOther() { return LockFolder(kTimeout); }

void OneWindow::StopAnswering() { requests_.close(); }

bool OneWindow::RaiseOther() const {
  QLocalSocket window;
  window.connectToServer(socketPath_);
  return window.waitForConnected(kTimeout) && window.waitForReadyRead(kTimeout) &&
         window.readAll() == kRaised;
}

}  // namespace keplo
