#pragma once
#include <unistd.h>

#include <cstdint>

inline int _NSGetExecutablePath(char* path, std::uint32_t* size) {
  const ssize_t length = ::readlink("/proc/self/exe", path, *size);
  return length > 0 && static_cast<std::uint32_t>(length) < *size ? 0 : -1;
}
