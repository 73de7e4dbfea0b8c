#ifndef KELVA_BASE_TESTING_SCRATCH_FOLDER_H_
#define KELVA_BASE_TESTING_SCRATCH_FOLDER_H_

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace base {

/// An empty folder for one test, deleted with everything in it when this object goes.
class ScratchFolder {
 public:
  /// Throws std::system_error when there is no room for one.
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kelva-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
  }
  ~ScratchFolder() { std::filesystem::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace base

#endif  // KELVA_BASE_TESTING_SCRATCH_FOLDER_H_
