#ifndef KELVA_BASE_TESTING_UNNAMED_FILE_H_
#define KELVA_BASE_TESTING_UNNAMED_FILE_H_

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace base::test {

/// Opens a new file that has no name, so that nothing is left of it. The caller owns the descriptor.
inline int UnnamedFile() {
  std::string path = std::filesystem::temp_directory_path() / "kelva-XXXXXX";
  const int file = ::mkstemp(path.data());
  if (file < 0) throw std::system_error(errno, std::generic_category(), "make " + path);
  ::unlink(path.c_str());
  ::fcntl(file, F_SETFD, FD_CLOEXEC);
  return file;
}

}  // namespace base::test

#endif  // KELVA_BASE_TESTING_UNNAMED_FILE_H_
