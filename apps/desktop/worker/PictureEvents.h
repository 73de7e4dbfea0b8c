#ifndef KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
#define KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "apps/commandline/Json.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// The sizes of a picture's files, by type from kFirstFileType on; nothing for one that no folder lists.
using PictureSizes = std::array<std::optional<unsigned long long>, 4>;

/// Sorts pictures by folder and name, highest first: new ones get the highest numbers.
void SortHighestFirst(std::vector<DcfObj>& pictures);

/// The types that a picture has, as one sum: 1 JPG, 2 RAW, 4 TXT, 8 128.
unsigned TypeMask(const DcfObj& picture);

/// The members of the event `pictures`. `from` is the first one's index in the list.
Json PicturesMembers(std::size_t from, std::span<const DcfObj> pictures);
/// The members of the event `sizes`, of as many pictures as there are sizes.
Json SizesMembers(std::size_t from, std::span<const DcfObj> pictures, std::span<const PictureSizes> sizes);

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_PICTURE_EVENTS_H_
