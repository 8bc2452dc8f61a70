#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/application_path.h"

namespace keplo::tests {

/// A connection to the host's web server, closed with the object.
class Client {
 public:
  explicit Client(std::uint16_t port) : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const timeval patience{10, 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    connected_ = connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~Client() { close(descriptor_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  bool Connected() const { return connected_; }
  void Send(const std::string& bytes) const {
    if (send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) return;
  }
  /// All that comes until the host ends the connection.
  std::string ReadAll() const {
    std::string all;
    char buffer[65536];
    for (ssize_t count = 0; (count = recv(descriptor_, buffer, sizeof buffer, 0)) > 0;) {
      all.append(buffer, static_cast<std::size_t>(count));
    }
    return all;
  }

 private:
  int descriptor_;
  bool connected_ = false;
};

/// The host program on an application path.
class RunningHost {
 public:
  explicit RunningHost(const ApplicationPath& app) : app_(app) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", QString::fromStdString(app.Home().string()));
    environment.remove("XDG_DATA_HOME");
    environment.remove("JOURNAL_STREAM");
    process_.setProcessEnvironment(environment);
    process_.setReadChannel(QProcess::StandardError);
    process_.setStandardOutputFile(QString::fromStdString(OutputFile()));
  }
  ~RunningHost() {
    process_.kill();
    process_.waitForFinished();
  }

  void Set(const char* name, const std::string& value) {
    QProcessEnvironment environment = process_.processEnvironment();
    environment.insert(name, QString::fromStdString(value));
    process_.setProcessEnvironment(environment);
  }

  /// Starts it without a window, with its pages at any port.
  void Start(const std::vector<std::string>& options) {
    StartWith({"--headless", "--http-port", "0"}, options);
  }
  void StartWithWindow(const std::vector<std::string>& options) { StartWith({"--no-http"}, options); }

  /// Waits until the host has written a line with a text.
  /// @return what follows the text
  std::string WaitForLog(const std::string& text) {
    while (log_.find(text) == std::string::npos || log_.find('\n', log_.find(text)) == std::string::npos) {
      if (!process_.waitForReadyRead(10000)) return {};
      log_ += process_.readAllStandardError().toStdString();
    }
    return log_.substr(log_.find(text) + text.size());
  }

  /// Waits until the host has told where its pages are.
  std::uint16_t Port() {
    const std::string told = WaitForLog("127.0.0.1:");
    return told.empty() ? 0 : static_cast<std::uint16_t>(std::stoi(told));
  }

  bool Runs() { return !process_.waitForFinished(1) && process_.state() == QProcess::Running; }
  qint64 Id() const { return process_.processId(); }
  void Terminate() { process_.terminate(); }

  /// @return exit status; -1 if it did not end by itself
  int Wait() {
    if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(15000)) return -1;
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

  std::string Log() { return log_ += process_.readAllStandardError().toStdString(); }
  std::vector<std::string> Output() const {
    std::ifstream file(OutputFile());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

 private:
  void StartWith(QStringList arguments, const std::vector<std::string>& options) {
    arguments << "--app-path" << QString::fromStdString(app_.Path().string());
    for (const std::string& option : options) arguments << QString::fromStdString(option);
    process_.start(KEPLO_HOST, arguments);
    ASSERT_TRUE(process_.waitForStarted());
  }
  std::string OutputFile() const { return (app_.Path() / "output.txt").string(); }

  const ApplicationPath& app_;
  QProcess process_;
  std::string log_;
};

/// An HTTP request for one of the host's own names.
inline std::string HttpRequest(const std::string& line, std::uint16_t port,
                               const std::string& rest = "\r\n") {
  return line + " HTTP/1.1\r\nHost: localhost:" + std::to_string(port) + "\r\n" + rest;
}

inline std::string Ask(std::uint16_t port, const std::string& request) {
  const Client client(port);
  client.Send(request);
  return client.ReadAll();
}

inline std::string BodyOf(const std::string& response) {
  const std::size_t end = response.find("\r\n\r\n");
  return end == std::string::npos ? response : response.substr(end + 4);
}

}  // namespace keplo::tests
