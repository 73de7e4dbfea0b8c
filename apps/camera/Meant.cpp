// Finds what a typed path means: in any case of letters, or as a pattern.
#include "apps/camera/Meant.h"

#include <fnmatch.h>

#include <set>
#include <utility>

#include "apps/camera/Advice.h"
#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

constexpr const char* kPictures = "I:\\DCIM";

// A camera refuses to list what is not there. That is no failure of the search.
const std::vector<CameraDirent>& ListIfThere(KnownListings& listings, const std::string& folder) {
  static const std::vector<CameraDirent> kNothing;
  try {
    return listings.Of(folder);
  } catch (const CameraTransferError& error) {
    if (AdviceFor(std::string_view(error.what())).code != ExitCode::kRefused) throw;
    return kNothing;
  }
}

template <typename Match>
std::vector<std::string> Listed(KnownListings& listings, const std::vector<std::string>& folders, const Match& match) {
  std::vector<std::string> found;
  for (const std::string& folder : folders) {
    for (const CameraDirent& entry : ListIfThere(listings, folder)) {
      if (IsNamed(entry) && match(entry.name)) found.push_back(folder + "\\" + entry.name);
    }
  }
  return found;
}

bool IsListed(KnownListings& listings, const std::string& path) {
  const SplitPath split = Split(path);
  return !Listed(listings, {split.folder}, [&](const std::string& name) { return name == split.name; }).empty();
}

// Every listed path whose parts match those of `path`.
template <typename Match>
std::vector<std::string> Matching(KnownListings& listings, const std::string& path, const Match& match) {
  const SplitPath split = Split(path);
  if (split.name.empty()) return {split.folder};
  return Listed(listings, Matching(listings, split.folder, match),
                [&](const std::string& name) { return match(split.name, name); });
}

// The listed name that differs in the case of letters alone; empty without one. Throws where several do: a guess could delete
// what nobody named.
std::string Similar(KnownListings& listings, const std::string& cameraPath) {
  const std::vector<std::string> similar = Matching(listings, cameraPath, SameName);
  if (similar.size() < 2) return similar.empty() ? "" : similar.front();
  throw Failure(ExitCode::kUsage, "There is no " + ShownPath(cameraPath) + "; there are " + ShownPath(similar[0]) +
                                      " and " + ShownPath(similar[1]) + "; name one of them.");
}

// Nothing when nothing is listed that the path could mean.
std::vector<std::string> Found(Context& context, KnownListings& listings, const std::string& cameraPath) {
  if (Split(cameraPath).name.empty() || IsListed(listings, cameraPath)) return {cameraPath};
  const std::string similar = Similar(listings, cameraPath);
  if (!similar.empty()) {
    context.reporter.Note("There is no " + ShownPath(cameraPath) + "; there is " + ShownPath(similar) + ".");
    return {similar};
  }
  return IsPattern(cameraPath) ? Matching(listings, cameraPath, MatchesName) : std::vector<std::string>();
}

std::vector<std::string> OrItself(std::vector<std::string> found, const std::string& cameraPath) {
  if (found.empty()) found.push_back(cameraPath);
  return found;
}

// Where a file of this name lies in the folders of pictures: as it is written, or else in another case of letters.
std::vector<std::string> InPictureFolders(KnownListings& listings, const std::string& name) {
  std::vector<std::string> found;
  for (const std::string& folder : Listed(listings, {kPictures}, [](const std::string&) { return true; })) {
    auto here = Listed(listings, {folder}, [&](const std::string& listed) { return listed == name; });
    if (here.empty()) {
      here = Listed(listings, {folder}, [&](const std::string& listed) { return SameName(listed, name); });
    }
    found.insert(found.end(), here.begin(), here.end());
  }
  return found;
}

// A name that is no pattern has to mean one file.
std::vector<std::string> PicturesMeant(KnownListings& listings, const std::string& name) {
  std::vector<std::string> found = InPictureFolders(listings, name);
  if (found.size() > 1) {
    throw Failure(ExitCode::kUsage, ShownName(name) + " may mean " + ShownPath(found[0]) + " or " +
                                        ShownPath(found[1]) + "; name the folder too.");
  }
  if (!found.empty() || !IsPattern(name)) return found;
  return Matching(listings, std::string(kPictures) + "\\*\\" + name, MatchesName);
}

// What a word may also mean that no path from the drive on means: a file's name, or its folder's and its own.
std::vector<std::string> BelowPictures(Context& context, KnownListings& listings, std::string_view typed,
                                       const std::string& path) {
  if (typed.starts_with('/') || typed.starts_with('\\') || typed.find(':') != std::string_view::npos) return {};
  const SplitPath split = Split(path);
  if (Split(split.folder).name.empty()) return PicturesMeant(listings, split.name);
  return Found(context, listings, kPictures + path.substr(path.find('\\')));
}

std::vector<std::string> FilesMeant(Context& context, KnownListings& listings, const std::string& typed) {
  const std::string path = ToCameraPath(typed);
  std::vector<std::string> found = Found(context, listings, path);
  if (found.empty()) found = BelowPictures(context, listings, typed, path);
  return OrItself(std::move(found), path);
}

std::string TheOne(const std::vector<std::string>& meant, const std::string& cameraPath) {
  if (meant.size() == 1) return meant.front();
  throw Failure(ExitCode::kUsage, ShownPath(cameraPath) + " matches " + std::to_string(meant.size()) +
                                      " names on the camera; name one of them.");
}

}  // namespace

std::optional<CameraDirent> EntryIfListed(KnownListings& listings, const std::string& cameraPath) {
  return ListIfThere(listings, Split(cameraPath).folder).empty() ? std::nullopt : listings.Find(cameraPath);
}

bool MatchesName(const std::string& pattern, const std::string& name) {
  return ::fnmatch(pattern.c_str(), name.c_str(), FNM_NOESCAPE | FNM_CASEFOLD) == 0;
}

bool IsPattern(std::string_view text) {
  return text.find_first_of("*?[") != std::string_view::npos;
}

std::vector<std::string> Meant(Context& context, Camera& camera, const std::string& cameraPath) {
  KnownListings listings(camera);
  return OrItself(Found(context, listings, cameraPath), cameraPath);
}

std::string MeantOne(Context& context, Camera& camera, const std::string& cameraPath) {
  return TheOne(Meant(context, camera, cameraPath), cameraPath);
}

std::vector<std::string> FilesMeant(Context& context, Camera& camera, const std::string& typed) {
  KnownListings listings(camera);
  return FilesMeant(context, listings, typed);
}

std::string FileMeant(Context& context, Camera& camera, const std::string& typed) {
  return TheOne(FilesMeant(context, camera, typed), ToCameraPath(typed));
}

std::vector<std::string> AllFilesMeant(Context& context, Camera& camera, const std::vector<std::string>& typed) {
  std::vector<std::string> all;
  std::set<std::string> seen;
  KnownListings listings(camera);
  for (const std::string& word : typed) {
    for (std::string& meant : FilesMeant(context, listings, word)) {
      if (seen.insert(meant).second) all.push_back(std::move(meant));
    }
  }
  return all;
}

std::string InListedFolder(Context& context, Camera& camera, const std::string& cameraPath) {
  const SplitPath split = Split(cameraPath);
  if (split.name.empty()) return cameraPath;
  std::string path = MeantOne(context, camera, split.folder) + "\\" + split.name;
  KnownListings listings(camera);
  if (IsListed(listings, path)) return path;
  const std::string similar = Similar(listings, path);
  return similar.empty() ? path : similar;
}

}  // namespace apps
