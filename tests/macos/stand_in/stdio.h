#pragma once
#include_next <stdio.h>

constexpr unsigned RENAME_EXCL = 4;

inline int renameatx_np(int from, const char* name, int to, const char* newName, unsigned flags) {
  return ::renameat2(from, name, to, newName, (flags & RENAME_EXCL) != 0 ? RENAME_NOREPLACE : 0);
}
