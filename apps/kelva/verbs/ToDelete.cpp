// Which files of an import go from the camera.
#include "apps/kelva/verbs/ToDelete.h"

#include <string>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Catalogue.h"
#include "apps/camera/Picture.h"
#include "apps/import/DeleteFetched.h"

namespace apps {

std::vector<const SyncItem*> ToDelete(const SyncPlan& plan, ListedSizes& sizes) {
  std::vector<const SyncItem*> items;
  for (const SyncItem& item : plan.items) {
    if (MayBeDeleted(item, sizes)) items.push_back(&item);
  }
  return items;
}

FewOf InLines(const std::vector<const SyncItem*>& items) {
  FewOf lines;
  for (auto item = items.begin(); item != items.end();) {
    const SyncItem& first = **item++;
    if (!first.IsPicture()) {
      lines.Add(ShownPath(first.CameraPath()));
      continue;
    }
    std::string line = PictureName(first.Picture()) + "  " + std::string(FileTypeName(first.Type()));
    for (; item != items.end() && first.IsWith(**item); ++item) {
      line += " " + std::string(FileTypeName((*item)->Type()));
    }
    lines.Add(std::move(line));
  }
  return lines;
}

}  // namespace apps
