#ifndef KELVA_APPS_FILES_TAR_H_
#define KELVA_APPS_FILES_TAR_H_

#include <string>
#include <string_view>

namespace apps {

/// Builds a tar archive (ustar) of regular files in memory.
class Tar {
 public:
  /// `time` is in seconds since 1970. Names are relative paths with slashes; more than 99 bytes are cut.
  explicit Tar(long long time) : time_(time) {}

  void Add(std::string_view name, std::string_view bytes);
  /// The whole archive, with the two empty blocks that end it.
  std::string Finish() const;

 private:
  long long time_;
  std::string archive_;
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_TAR_H_
