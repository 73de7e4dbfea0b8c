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

// A camera refuses to list what is not there. That is no failure of the search.
std::vector<CameraDirent> ListIfThere(Camera& camera, const std::string& folder) {
  try {
    return ListFolder(camera, folder);
  } catch (const CameraTransferError& error) {
    if (AdviceFor(std::string_view(error.what())).code != ExitCode::kRefused) throw;
    return {};
  }
}

bool IsNamed(const CameraDirent& entry) {
  return (entry.attributes & kelva::kAttributeVolumeLabel) == 0 && entry.name != "." && entry.name != "..";
}

template <typename Match>
std::vector<std::string> Listed(Camera& camera, const std::vector<std::string>& folders, const Match& match) {
  std::vector<std::string> found;
  for (const std::string& folder : folders) {
    for (const CameraDirent& entry : ListIfThere(camera, folder)) {
      if (IsNamed(entry) && match(entry.name)) found.push_back(folder + "\\" + entry.name);
    }
  }
  return found;
}

bool IsListed(Camera& camera, const std::string& path) {
  const SplitPath split = Split(path);
  return !Listed(camera, {split.folder}, [&](const std::string& name) { return name == split.name; }).empty();
}

// Every listed path whose parts match those of `path`.
template <typename Match>
std::vector<std::string> Matching(Camera& camera, const std::string& path, const Match& match) {
  const SplitPath split = Split(path);
  if (split.name.empty()) return {split.folder};
  return Listed(camera, Matching(camera, split.folder, match),
                [&](const std::string& name) { return match(split.name, name); });
}

}  // namespace

bool MatchesName(const std::string& pattern, const std::string& name) {
  return ::fnmatch(pattern.c_str(), name.c_str(), FNM_NOESCAPE | FNM_CASEFOLD) == 0;
}

bool IsPattern(std::string_view text) {
  return text.find_first_of("*?[") != std::string_view::npos;
}

std::vector<std::string> Meant(Context& context, Camera& camera, const std::string& cameraPath) {
  if (Split(cameraPath).name.empty() || IsListed(camera, cameraPath)) return {cameraPath};
  const std::vector<std::string> similar = Matching(camera, cameraPath, SameName);
  if (!similar.empty()) {
    context.reporter.Note("There is no " + ShownPath(cameraPath) + "; there is " + ShownPath(similar.front()) + ".");
    return {similar.front()};
  }
  if (!IsPattern(cameraPath)) return {cameraPath};
  std::vector<std::string> matching = Matching(camera, cameraPath, MatchesName);
  if (matching.empty()) matching.push_back(cameraPath);
  return matching;
}

std::string MeantOne(Context& context, Camera& camera, const std::string& cameraPath) {
  const std::vector<std::string> meant = Meant(context, camera, cameraPath);
  if (meant.size() == 1) return meant.front();
  throw Failure(ExitCode::kUsage, ShownPath(cameraPath) + " matches " + std::to_string(meant.size()) +
                                      " names on the camera; name one of them.");
}

std::vector<std::string> AllMeant(Context& context, Camera& camera, const std::vector<std::string>& cameraPaths) {
  std::vector<std::string> all;
  std::set<std::string> seen;
  for (const std::string& path : cameraPaths) {
    for (std::string& meant : Meant(context, camera, path)) {
      if (seen.insert(meant).second) all.push_back(std::move(meant));
    }
  }
  return all;
}

std::string InListedFolder(Context& context, Camera& camera, const std::string& cameraPath) {
  const SplitPath split = Split(cameraPath);
  if (split.name.empty()) return cameraPath;
  const std::string path = MeantOne(context, camera, split.folder) + "\\" + split.name;
  const std::vector<std::string> similar = Matching(camera, path, SameName);
  return similar.empty() || IsListed(camera, path) ? path : similar.front();
}

}  // namespace apps
