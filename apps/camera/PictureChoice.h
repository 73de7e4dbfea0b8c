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
    "since", 0, "DATE",
    "Only pictures with this date or a later one in the catalogue: 2026, 2026-03-14, '2026-03-14 15:09'."};
inline constexpr Option kFolderOption = {"folder", 0, "NAME",
                                         "Only pictures of this folder below DCIM; a pattern may mean several."};

/// The pictures that --since and --folder ask for.
class PictureChoice {
 public:
  /// Throws Failure(kUsage) for a value of --since that is not the start of a date.
  explicit PictureChoice(const Context& context);

  /// Takes the other pictures out. Says how many have no date when --since leaves them out.
  void Apply(std::vector<DcfObj>& pictures, Context& context) const;
  bool IsAll() const { return !since_ && !folder_; }

 private:
  std::optional<std::string> since_;
  std::optional<std::string> folder_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_PICTURE_CHOICE_H_
