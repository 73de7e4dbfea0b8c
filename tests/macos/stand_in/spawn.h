#pragma once
#include_next <spawn.h>

constexpr short POSIX_SPAWN_CLOEXEC_DEFAULT = 0x4000;

// This system has no such flag. What the project opens is closed on exec anyway.
inline int StandInSetFlags(posix_spawnattr_t* attributes, short flags) {
  return ::posix_spawnattr_setflags(attributes, static_cast<short>(flags & ~POSIX_SPAWN_CLOEXEC_DEFAULT));
}

#define posix_spawnattr_setflags StandInSetFlags
