// The pictures of a camera as events.
#include "apps/desktop/worker/PictureEvents.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "apps/commandline/Words.h"

namespace apps {

void SortHighestFirst(std::vector<DcfObj>& pictures) {
  const auto order = [](const DcfObj& picture) {
    return std::make_tuple(picture.directoryNumber,
                           std::string_view(picture.directorySuffix, sizeof picture.directorySuffix),
                           picture.fileNumber, std::string_view(picture.filePrefix, sizeof picture.filePrefix));
  };
  std::stable_sort(pictures.begin(), pictures.end(),
                   [&order](const DcfObj& a, const DcfObj& b) { return order(a) > order(b); });
}

Json PicturesMembers(std::size_t from, std::span<const DcfObj> pictures) {
  Json items = Json::Array();
  for (const DcfObj& picture : pictures) {
    unsigned types = 0;
    for (const int type : FileTypes(picture)) types |= TypeBit(type);
    Json item = Json::Array();
    item.Push(EncodedWord(PictureFolder(picture))).Push(EncodedWord(PictureStem(picture)));
    items.Push(item.Push(types).Push(PictureTime(picture).value_or("")));
  }
  return Json::Object().Set("from", from).Set("items", std::move(items));
}

Json SizesMembers(std::size_t from, std::span<const DcfObj> pictures, std::span<const FileSizes> sizes) {
  Json items = Json::Array();
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    Json item = Json::Array();
    for (const int type : FileTypes(pictures[i])) {
      const auto size = SizeOf(sizes[i], type);
      item.Push(size ? Json(*size) : Json());
    }
    items.Push(item);
  }
  return Json::Object().Set("from", from).Set("items", std::move(items));
}

}  // namespace apps
