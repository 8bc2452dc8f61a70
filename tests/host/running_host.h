#pragma once

#include <signal.h>

#include <QHostAddress>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTcpSocket>
#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "host/application_path.h"

namespace keplo::tests {

constexpr int kPatience = 60000;  // milliseconds

/// The host program on an application path.
class RunningHost {
 public:
  explicit RunningHost(const ApplicationPath& app) : app_(app) {
    Set("HOME", app.Home().string());
    environment_.remove("XDG_DATA_HOME");
    environment_.remove("JOURNAL_STREAM");
    process_.setReadChannel(QProcess::StandardError);
    process_.setStandardOutputFile(QString::fromStdString(OutputFile()));
  }
  ~RunningHost() {
    process_.kill();
    process_.waitForFinished();
  }

  void Set(const char* name, const std::string& value) {
    environment_.insert(name, QString::fromStdString(value));
  }

  enum class Window { None, Shown };

  /// @param port of its pages; 0 for any
  void Start(const std::vector<std::string>& options, int port = 0, Window window = Window::None) {
    QStringList arguments{"--http-port", QString::number(port), "--app-path",
                          QString::fromStdString(app_.Path().string())};
    if (window == Window::None) arguments << "--headless";
    for (const std::string& option : options) arguments << QString::fromStdString(option);
    process_.setProcessEnvironment(environment_);
    process_.start(KEPLO_HOST, arguments);
    ASSERT_TRUE(process_.waitForStarted());
  }

  /// Waits until the host has written a line with a text.
  /// @return what follows the text; empty if the host ends before
  std::string WaitForLog(const std::string& text) {
    while (log_.find('\n', std::min(log_.find(text), log_.size())) == std::string::npos) {
      if (!process_.waitForReadyRead(kPatience)) return {};
      Log();
    }
    return log_.substr(log_.find(text) + text.size());
  }
  /// Waits until the host has printed the address of its pages.
  std::uint16_t Port() {
    const std::string reported = WaitForLog("127.0.0.1:");
    return reported.empty() ? 0 : static_cast<std::uint16_t>(std::stoi(reported));
  }

  qint64 Id() const { return process_.processId(); }
  void Signal(int number) const { kill(static_cast<pid_t>(Id()), number); }
  bool Runs() { return !process_.waitForFinished(1) && process_.state() == QProcess::Running; }
  /// @return exit status; -1 if it did not end by itself
  int Wait() {
    if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(kPatience)) return -1;
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

  const std::string& Log() { return log_ += process_.readAllStandardError().toStdString(); }
  std::vector<std::string> Output() const {
    std::ifstream file(OutputFile());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

 private:
  std::string OutputFile() const { return (app_.Path() / "output.txt").string(); }

  const ApplicationPath& app_;
  QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
  QProcess process_;
  std::string log_;
};

/// A connection to the host's web server.
class Client : public QTcpSocket {
 public:
  explicit Client(std::uint16_t port) {
    connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    waitForConnected(kPatience);
  }
  /// Sends, and reads until the host ends the connection.
  std::string Ask(const std::string& request) {
    write(QByteArray::fromStdString(request));
    while (waitForReadyRead(kPatience)) {
    }
    return readAll().toStdString();
  }
};

/// An HTTP request for one of the host's own names.
inline std::string HttpRequest(const std::string& line, std::uint16_t port,
                               const std::string& rest = "\r\n") {
  return line + " HTTP/1.1\r\nHost: localhost:" + std::to_string(port) + "\r\n" + rest;
}

}  // namespace keplo::tests
