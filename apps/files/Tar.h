#ifndef KELVA_APPS_FILES_TAR_H_
#define KELVA_APPS_FILES_TAR_H_

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace apps {

/// Builds a tar archive (ustar; names of more than 99 bytes in pax headers) of regular files in memory. Only the owner may
/// read what is unpacked.
class Tar {
 public:
  /// `time` is in seconds since 1970. Names are relative paths with slashes, in UTF-8. A name that was given before gets
  /// a number before its extension, so that no member overwrites another.
  explicit Tar(long long time) : time_(time) {}

  void Add(std::string_view name, std::string_view bytes);
  /// The whole archive, with the two empty blocks that end it.
  std::string Finish() const;

 private:
  void AddMember(char type, std::string_view name, std::string_view bytes);

  long long time_;
  std::set<std::string, std::less<>> names_;
  std::string archive_;
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_TAR_H_
