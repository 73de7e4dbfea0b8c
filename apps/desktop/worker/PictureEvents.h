#ifndef KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
#define KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/camera/FileSizes.h"
#include "apps/commandline/Json.h"
#include "apps/import/Others.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Where pictures would go, as the window's user set it.
struct Target {
  std::string folder;
  std::string pattern;  ///< empty for the default
  std::string types;    ///< "jpg,raw"; empty for all
};

/// What is known of a camera so far.
struct OnCamera {
  std::vector<DcfObj> pictures;
  std::vector<FileSizes> sizes = {};      ///< of the first ones
  std::optional<OtherFiles> others = {};  ///< nothing until they are known

  bool HasSizes() const { return sizes.size() == pictures.size(); }
};

/// Sorts pictures by folder and name, highest first: new ones get the highest numbers.
void SortHighestFirst(std::vector<DcfObj>& pictures);

/// The members of the event `pictures`. `from` is the first one's index in the list.
Json PicturesMembers(std::size_t from, std::span<const DcfObj> pictures);
/// The members of the event `sizes`, of as many pictures as there are sizes.
Json SizesMembers(std::size_t from, std::span<const DcfObj> pictures, std::span<const FileSizes> sizes);
/// The members of the event `target`: what would be new in the folder, or why it cannot be used. Changes nothing there.
Json TargetMembers(const Target& target, const OnCamera& camera, const std::string& serial);

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
