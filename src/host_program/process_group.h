#pragma once

#include <sys/types.h>

namespace keplo::host {

/// Whether a process of the group still runs. One that has ended does not count, though nobody may have
/// collected its status yet.
bool IsAlive(pid_t group);

}  // namespace keplo::host
