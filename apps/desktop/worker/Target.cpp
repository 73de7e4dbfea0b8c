// Compares what a camera has with what a folder's list says was imported.
#include "apps/desktop/worker/Target.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/files/FreeSpace.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Coming.h"
#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"
#include "apps/import/Plan.h"

namespace apps {
namespace {

struct News {
  std::string marks;  // a hexadecimal digit for each picture
  std::size_t pictures = 0;
  Coming files;
};

News NewsOf(const OnCamera& camera, const std::vector<int>& types, Manifest& manifest) {
  News news;
  const Manifest::Reading reading(manifest);
  for (std::size_t i = 0; i < camera.pictures.size(); ++i) {
    const DcfObj& picture = camera.pictures[i];
    const KnownPicture known = FindPicture(manifest, picture, camera.serial);
    unsigned mask = 0;
    for (const int type : FileTypes(picture)) {
      const bool isAsked = std::find(types.begin(), types.end(), type) != types.end();
      if (!isAsked || known.Has(type)) continue;
      const auto place = static_cast<unsigned>(type - kFirstFileType);
      mask |= 1U << place;
      news.files.Add(camera.sizes.empty() ? std::nullopt : camera.sizes[i][place]);
    }
    news.pictures += mask == 0 ? 0U : 1U;
    news.marks += "0123456789abcdef"[mask];
  }
  return news;
}

// As an import without --everything counts them.
void SetNewOthers(const OnCamera& camera, Manifest& manifest, Json& members) {
  SyncPlan plan{std::make_unique<const SyncSource>(SyncSource{{}, camera.serial, Pattern(Pattern::kDefault), {}}), {}};
  AddOthers(plan, *camera.others, false, manifest);
  members.Set("new_others", plan.othersLeftOut).Set("new_others_bytes", plan.othersLeftOutBytes);
}

}  // namespace

Json TargetMembers(const Target& target, const OnCamera& camera) {
  Json members = Json::Object().SetBytes("folder", target.folder);
  try {
    if (!target.pattern.empty()) Pattern{target.pattern};
    const std::vector<int> types = ParseTypes(target.types.empty() ? std::nullopt : std::optional(target.types));
    const bool isMissing = ::access(target.folder.c_str(), F_OK) != 0 && errno == ENOENT;
    std::optional<TargetFolder> folder;
    if (!isMissing) folder = TargetFolder::Open(target.folder);
    Manifest manifest = isMissing ? Manifest() : Manifest(*folder, false);
    News news = NewsOf(camera, types, manifest);
    members.Set("new", std::move(news.marks)).Set("new_pictures", news.pictures).Set("new_files", news.files.files);
    if (!camera.sizes.empty()) members.Set("new_bytes", news.files.bytes).Set("unlisted", news.files.unlisted);
    if (camera.others != nullptr) SetNewOthers(camera, manifest, members);
    if (const auto free = FreeSpaceFor(target.folder)) members.Set("free", *free);
  } catch (const Failure& failure) {
    members.Set("error", failure.what());
  }
  return members;
}

}  // namespace apps
