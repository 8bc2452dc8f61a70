#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <mosquitto.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <mutex>
#include <string>
#include <vector>

#include "doubles/temp_folder.h"
#include "doubles/until.h"

namespace keplo::broker {

/// A port on which nobody listens.
inline int FreePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  EXPECT_EQ(bind(socket, reinterpret_cast<sockaddr*>(&address), size), 0);
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  close(socket);
  return ntohs(address.sin_port);
}

/// A folder of which a broker reads that was started by root and runs as another user.
struct TestFolder : tests::TempFolder {
  std::string operator/(const std::string& name) const { return (Path() / name).string(); }
};

/// mosquitto on its own port, without persistence.
class MosquittoServer {
 public:
  explicit MosquittoServer(const TestFolder& folder, const std::string& settings = "allow_anonymous true\n")
      : port_(FreePort()) {
    configuration_ = folder
                         .Write("mosquitto-" + std::to_string(port_) + ".conf",
                                "listener " + std::to_string(port_) + " 127.0.0.1\n" + settings)
                         .string();
    Start();
  }
  ~MosquittoServer() { Kill(); }

  void Start() {
    process_ = fork();
    if (process_ == 0) {
      for (FILE* stream : {stdout, stderr}) freopen("/dev/null", "w", stream);
      for (const char* program : {"/usr/sbin/mosquitto", "mosquitto"}) {
        execlp(program, program, "-c", configuration_.c_str(), nullptr);
      }
      _exit(127);
    }
    ASSERT_TRUE(tests::Until([&] { return Listens(); })) << "is mosquitto installed?";
  }
  /// While it is stopped, it answers nothing, and does not close connections.
  void Stop() const {
    kill(process_, SIGSTOP);
    waitpid(process_, nullptr, WUNTRACED);
  }
  void GoOn() const { kill(process_, SIGCONT); }
  void End() const { kill(process_, SIGTERM); }
  void Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
  }
  int Port() const { return port_; }

 private:
  bool Listens() const {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool listens = connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return listens;
  }

  int port_;
  std::string configuration_;
  pid_t process_ = 0;
};

/// What somebody else on the broker sees.
class Observer {
 public:
  struct Seen {
    std::string Topic, Payload;
    bool Retained = false;  // as it was published
    std::chrono::steady_clock::time_point At = std::chrono::steady_clock::now();
  };

  /// @param clientId one that another client has is taken over from it
  explicit Observer(int port, const char* clientId = nullptr) {
    mosquitto_lib_init();
    client_ = mosquitto_new(clientId, true, this);
    mosquitto_int_option(client_, MOSQ_OPT_PROTOCOL_VERSION, 5);
    mosquitto_connect_callback_set(client_, [](mosquitto* client, void*, int) {
      constexpr int kRetainAsPublished = 8;
      mosquitto_subscribe_v5(client, nullptr, "$SYS/broker/log/#", 1, 0, nullptr);
      mosquitto_subscribe_v5(client, nullptr, "#", 1, kRetainAsPublished, nullptr);
    });
    mosquitto_subscribe_callback_set(client_, [](mosquitto*, void* self, int, int, const int*) {
      const std::lock_guard lock(static_cast<Observer*>(self)->mutex_);
      static_cast<Observer*>(self)->subscribed_ = true;
    });
    mosquitto_message_callback_set(client_, [](mosquitto*, void* self, const mosquitto_message* message) {
      auto& observer = *static_cast<Observer*>(self);
      const std::lock_guard lock(observer.mutex_);
      observer.seen_.push_back(
          {message->topic,
           {static_cast<const char*>(message->payload), static_cast<std::size_t>(message->payloadlen)},
           message->retain});
    });
    mosquitto_connect(client_, "127.0.0.1", port, 60);
    mosquitto_loop_start(client_);
    EXPECT_TRUE(tests::Until([&] {
      const std::lock_guard lock(mutex_);
      return subscribed_;
    }));
  }
  ~Observer() {
    mosquitto_disconnect(client_);
    mosquitto_loop_stop(client_, true);
    mosquitto_destroy(client_);
  }

  std::vector<Seen> All(const std::string& topic) const {
    const std::lock_guard lock(mutex_);
    std::vector<Seen> found;
    for (const Seen& seen : seen_) {
      if (seen.Topic == topic) found.push_back(seen);
    }
    return found;
  }
  bool Sees(const std::string& topic, std::size_t count) const {
    return tests::Until([&] { return All(topic).size() >= count; });
  }
  void Publish(const std::string& topic, const std::string& payload, bool retain = false) {
    mosquitto_publish(client_, nullptr, topic.c_str(), static_cast<int>(payload.size()), payload.data(), 1,
                      retain);
  }

 private:
  mosquitto* client_;
  mutable std::mutex mutex_;
  bool subscribed_ = false;
  std::vector<Seen> seen_;
};

}  // namespace keplo::broker
