#pragma once
#include <unistd.h>

inline char*** _NSGetEnviron() {
  return &environ;
}
