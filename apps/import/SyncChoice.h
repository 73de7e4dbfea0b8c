#ifndef KELVA_APPS_IMPORT_SYNC_CHOICE_H_
#define KELVA_APPS_IMPORT_SYNC_CHOICE_H_

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/camera/PictureChoice.h"
#include "apps/commandline/Context.h"
#include "apps/import/Pattern.h"

namespace apps {

inline constexpr Option kTypesOption = {
    "types",       't',
    "LIST",        "Only these types of files: jpg, raw, txt, 128, separated by commas.",
    Offer::kWords, "jpg raw txt 128 jpg,raw"};
inline constexpr Option kEverythingOption = {
    "everything", 'e', "", "Fetch also what is not in the catalogue: videos, panoramas, files with other names."};
inline constexpr Option kPatternOption = {"pattern", 'p', "PATTERN",
                                          "How files are named below FOLDER; the default is {folder}/{name}."};

/// What the command line of a sync asks for.
struct SyncChoice {
  Pattern pattern;
  std::vector<int> types;
  bool everything;         ///< also what is not in the catalogue
  PictureChoice pictures;  ///< by folder and date
  /// By name: only these, as NameOf gives them.
  std::optional<std::set<std::string>> named = {};

  bool Means(const DcfObj& picture) const {
    return pictures.IsInFolder(picture) && (!named || named->contains(NameOf(picture)));
  }
  bool IsAll() const { return pictures.IsAll() && !named; }
  /// "100ABCDE/IMG_0001", with %XX for bytes that other programs might not hand back (Words.h).
  static std::string NameOf(const DcfObj& picture);
};

/// Throws Failure, kUsage for options that are wrong.
SyncChoice SyncChoiceOf(const Context& context);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_CHOICE_H_
