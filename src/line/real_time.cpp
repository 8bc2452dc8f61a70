#include "line/real_time.h"

#include <linux/capability.h>
#include <pthread.h>
#include <pwd.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

namespace keplo {

namespace {

constexpr int kPriority = 10;  // above all that has none, below the kernel's own interrupt threads (50)
constexpr unsigned long kNoSlack = 1;  // nanoseconds; sleeps of ordinary threads run up to 50 us late

bool SetRealTime(int policy, int priority) {
  const sched_param parameters = {priority};
  return pthread_setschedparam(pthread_self(), policy, &parameters) == 0;
}

/// As the kernel has it; the C library does not know it.
struct SchedulingAttributes {
  std::uint32_t Size, Policy;
  std::uint64_t Flags;
  std::int32_t Nice;
  std::uint32_t Priority;
  std::uint64_t Runtime, Deadline, Period;  // nanoseconds
};

/// The thread waits for others no longer than it asks to run. Kernels before 6.12 do nothing.
void AskForShortSlices() {
  constexpr std::uint64_t kShortest = 100'000;
  SchedulingAttributes attributes{};
  if (syscall(SYS_sched_getattr, 0, &attributes, sizeof attributes, 0) != 0) return;
  attributes.Runtime = kShortest;
  syscall(SYS_sched_setattr, 0, &attributes, 0);
}

/// Whether the limit of locked memory does not count, as for root.
bool LocksWithoutLimit() {
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
  if (syscall(SYS_capget, &header, &data) != 0) return false;
  return (data[CAP_TO_INDEX(CAP_IPC_LOCK)].effective & CAP_TO_MASK(CAP_IPC_LOCK)) != 0;
}

/// The line that lifts a limit, in words. The group of the device may be any, the user is known.
std::string LineThatAllows(const std::string& what) {
  const passwd* user = getpwuid(geteuid());
  return "with a line \"" + std::string(user == nullptr ? "*" : user->pw_name) + " - " + what +
         "\" in /etc/security/limits.d/keplo.conf, and log in again";
}

/// With a limit, locking what comes later would make allocations fail.
bool MayLock() {
  if (LocksWithoutLimit()) return true;
  rlimit limit{};
  return getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
}

}  // namespace

void HurryThread() {
  prctl(PR_SET_TIMERSLACK, kNoSlack, 0, 0, 0);
  if (!SetRealTime(SCHED_FIFO, kPriority)) AskForShortSlices();
}

Hurry::Hurry() : policy_(SCHED_OTHER), priority_(0), slack_(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0)) {
  sched_param parameters{};
  pthread_getschedparam(pthread_self(), &policy_, &parameters);
  priority_ = parameters.sched_priority;
  HurryThread();
}

Hurry::~Hurry() {
  SetRealTime(policy_, priority_);
  if (slack_ > 0) prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(slack_), 0, 0, 0);
}

void LockMemory() {
  if (MayLock()) mlockall(MCL_CURRENT | MCL_FUTURE | MCL_ONFAULT);
}

std::string DescribeRealTime() {
  const Hurry hurry;
  int policy = SCHED_OTHER;
  sched_param parameters{};
  pthread_getschedparam(pthread_self(), &policy, &parameters);
  if (policy == SCHED_FIFO) return "captures run with real-time priority";
  return "captures run without real-time priority: on a busy machine some samples are late. Allow it " +
         LineThatAllows("rtprio 20");
}

std::string DescribeMemory() {
  if (MayLock()) return "captures run in locked memory";
  return "captures run in memory that may be swapped out: on a machine short of it a capture may wait. Allow "
         "locking " +
         LineThatAllows("memlock unlimited");
}

}  // namespace keplo
