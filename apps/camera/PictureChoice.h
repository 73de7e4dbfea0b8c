#ifndef KELVA_APPS_CAMERA_PICTURE_CHOICE_H_
#define KELVA_APPS_CAMERA_PICTURE_CHOICE_H_

#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/commandline/Verb.h"
#include "src/wifi/DcfObj.h"

namespace apps {

inline constexpr Option kSinceOption = {
    "since",
    0,
    "DATE",
    "Only pictures with this date or a later one: 2026, 2026-03-14, '2026-03-14 15:09', or of the last 12h, 7d, 2w.",
    Offer::kWords,
    "12h 1d 7d 2w"};
inline constexpr Option kFolderOption = {
    "folder", 0, "NAME", "Only pictures of this folder below DCIM; a pattern may mean several.", Offer::kPictureFolder};

/// The pictures that --since and --folder ask for.
class PictureChoice {
 public:
  /// Throws Failure(kUsage) for a value of --since that is neither the start of a date nor a number of hours, days or weeks.
  explicit PictureChoice(const Context& context);

  /// Takes the other pictures out. Says how many have no date when --since leaves them out.
  void Apply(std::vector<DcfObj>& pictures, Context& context) const;
  /// Says so when --folder names no folder of these pictures.
  void NoteMissingFolder(const std::vector<DcfObj>& pictures, const Context& context) const;
  bool IsAll() const { return !since_ && !folder_; }
  bool HasSince() const { return since_.has_value(); }
  /// Whether a picture lies in the folder asked for.
  bool IsInFolder(const DcfObj& picture) const;
  /// The same for a folder's name; a file in no folder below DCIM has an empty one.
  bool IsInFolder(const std::string& folder) const;
  /// Whether a picture of this time ("2026-03-14 15:09:26") is meant by --since; none is without a time.
  bool IsSince(const std::optional<std::string>& time) const { return !since_ || (time && *time >= *since_); }

 private:
  std::optional<std::string> since_;
  std::optional<std::string> folder_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_PICTURE_CHOICE_H_
