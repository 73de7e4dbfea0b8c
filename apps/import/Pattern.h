#ifndef KELVA_APPS_IMPORT_PATTERN_H_
#define KELVA_APPS_IMPORT_PATTERN_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/import/TakenTime.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Where a file of a picture goes below the target folder.
struct LocalPath {
  std::vector<std::string> folders;
  std::string name;

  /// "100ABCDE/IMG_0001.JPG".
  std::string Text() const;
};

/// The rule that names the files of pictures: text with tokens in braces, slashes between folders.
/// {folder} {name} {stem} {ext} {number} {serial} {date} {year} {month} {day} {time}
/// The last five come from the time at which the picture was taken, and are "undated" where nothing says it.
class Pattern {
 public:
  /// A pattern that ends with a slash is a folder: {name} follows. Throws Failure(kUsage): an unknown token, a path that is
  /// absolute or leads upwards, a last part without {name} and without {stem} and {ext}.
  explicit Pattern(std::string_view text);

  /// Names one file. Every value is made safe for a name first, so that no name from a camera can add a folder.
  LocalPath Apply(const DcfObj& picture, int type, const std::string& serial,
                  const std::optional<TakenTime>& time) const;

  /// Whether it has one of the last five tokens.
  bool HasTime() const { return hasTime_; }

  static constexpr std::string_view kDefault = "{folder}/{name}";
  /// The pattern of folders by "day", "month" or "year". Throws Failure(kUsage) for another word.
  static std::string_view By(std::string_view word);

 private:
  std::vector<std::string> components_;
  bool hasTime_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_PATTERN_H_
