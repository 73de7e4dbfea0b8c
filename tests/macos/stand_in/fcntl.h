#pragma once
#include_next <fcntl.h>
#include <unistd.h>

#include <climits>
#include <string>

constexpr int F_GETPATH = 50;
constexpr int F_FULLFSYNC = 51;
constexpr int F_BARRIERFSYNC = 85;

template <typename... Arguments>
int StandInFcntl(int descriptor, int command, Arguments... arguments) {
  if constexpr (sizeof...(arguments) == 0) {
    if (command == F_FULLFSYNC || command == F_BARRIERFSYNC) return ::fsync(descriptor);
  }
  return ::fcntl(descriptor, command, arguments...);
}

inline int StandInFcntl(int descriptor, int command, char* path) {
  if (command != F_GETPATH) return ::fcntl(descriptor, command, path);
  const ssize_t length = ::readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, PATH_MAX - 1);
  if (length < 0) return -1;
  path[length] = '\0';
  return 0;
}

#define fcntl StandInFcntl
