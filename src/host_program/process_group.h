#pragma once

#include <sys/types.h>

namespace keplo::host {

/// Whether any process of the group is still running. Zombies do not count.
bool IsAlive(pid_t group);

}  // namespace keplo::host
