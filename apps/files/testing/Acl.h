#ifndef KELVA_APPS_FILES_TESTING_ACL_H_
#define KELVA_APPS_FILES_TESTING_ACL_H_

#include <string>

namespace apps {

/// Lists as the kernel keeps them: version 2; tag, permissions and user or group of each entry.
inline const std::string kVersion("\2\0\0\0", 4);
inline std::string Entry(int tag, int permissions, int id = -1) {
  std::string entry{static_cast<char>(tag), 0, static_cast<char>(permissions), 0};
  for (int shift = 0; shift < 32; shift += 8) entry += static_cast<char>(id >> shift);
  return entry;
}

}  // namespace apps

#endif  // KELVA_APPS_FILES_TESTING_ACL_H_
