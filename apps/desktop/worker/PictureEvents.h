#ifndef KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
#define KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_

#include <cstddef>
#include <span>
#include <vector>

#include "apps/camera/FileSizes.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Json.h"

namespace apps {

/// Sorts pictures by folder and name, highest first: new ones get the highest numbers.
void SortHighestFirst(std::vector<DcfObj>& pictures);

/// A type in a sum of types: 1 JPG, 2 RAW, 4 TXT, 8 128.
constexpr unsigned TypeBit(int type) {
  return 1U << static_cast<unsigned>(type - kFirstFileType);
}

/// The members of the event `pictures`. `from` is the first one's index in the list.
Json PicturesMembers(std::size_t from, std::span<const DcfObj> pictures);
/// The members of the event `sizes`, of as many pictures as there are sizes.
Json SizesMembers(std::size_t from, std::span<const DcfObj> pictures, std::span<const FileSizes> sizes);

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
