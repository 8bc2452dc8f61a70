#pragma once

#include <poll.h>
#include <pthread.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace keplo {

/// The system calls below serial and infrared lines, so that tests can put a device and a clock of their own
/// there. Results and errno are those of the system.
class DeviceCalls {
 public:
  virtual ~DeviceCalls() = default;

  virtual int Open(const std::string& path, int flags) = 0;
  virtual void Close(int descriptor) = 0;
  virtual int Ioctl(int descriptor, unsigned long request, void* argument) = 0;
  virtual ssize_t Read(int descriptor, void* data, std::size_t size) = 0;
  virtual ssize_t Write(int descriptor, const void* data, std::size_t size) = 0;
  /// Like Write, but waits for the device only until a time. EINTR after that time may mean that the device
  /// has taken the data.
  virtual ssize_t WriteUntil(int descriptor, const void* data, std::size_t size,
                             std::chrono::nanoseconds time) = 0;
  /// @param timeout milliseconds; negative waits without an end
  virtual int Poll(pollfd* descriptors, nfds_t count, int timeout) = 0;
  /// Time of the monotonic clock.
  virtual std::chrono::nanoseconds Now() = 0;
  /// Returns at once if the time has passed.
  virtual void SleepUntil(std::chrono::nanoseconds time) = 0;
  /// Makes the system call in which another thread waits end with EINTR. A call that begins later is not
  /// affected.
  virtual void Interrupt(pthread_t thread) = 0;
};

/// The signal behind Interrupt, which does nothing else; a thread that blocks it is not interrupted.
int InterruptingSignal();

/// The calls of the kernel.
class KernelCalls : public DeviceCalls {
 public:
  int Open(const std::string& path, int flags) override;
  void Close(int descriptor) override;
  int Ioctl(int descriptor, unsigned long request, void* argument) override;
  ssize_t Read(int descriptor, void* data, std::size_t size) override;
  ssize_t Write(int descriptor, const void* data, std::size_t size) override;
  ssize_t WriteUntil(int descriptor, const void* data, std::size_t size,
                     std::chrono::nanoseconds time) override;
  int Poll(pollfd* descriptors, nfds_t count, int timeout) override;
  std::chrono::nanoseconds Now() override;
  void SleepUntil(std::chrono::nanoseconds time) override;
  void Interrupt(pthread_t thread) override;
};

/// A descriptor that is closed with its owner.
class DeviceDescriptor {
 public:
  DeviceDescriptor(DeviceCalls& calls, int descriptor) : calls_(&calls), descriptor_(descriptor) {}
  ~DeviceDescriptor() {
    if (descriptor_ >= 0) calls_->Close(descriptor_);
  }
  DeviceDescriptor(const DeviceDescriptor&) = delete;
  DeviceDescriptor& operator=(const DeviceDescriptor&) = delete;

  int Get() const { return descriptor_; }

 private:
  DeviceCalls* calls_;
  int descriptor_;
};

}  // namespace keplo
