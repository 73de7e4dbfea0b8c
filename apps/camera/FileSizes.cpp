// Lists the folders of a catalogue for the sizes of its files.
#include "apps/camera/FileSizes.h"

#include <map>
#include <string>

#include "apps/camera/Explain.h"
#include "base/Ascii.h"
#include "src/wifi/CameraError.h"

namespace apps {

SizesByName ListPictureFolder(Camera& camera, const std::string& folder) {
  try {
    return ReadSizes(camera, "I:\\DCIM\\" + folder);
  } catch (const CameraError& error) {
    if (EndsAll(Explain(error, "").code)) throw;
    return {};
  }
}

FileSizes SizesIn(const SizesByName& listing, const DcfObj& picture) {
  FileSizes sizes;
  for (const int type : FileTypes(picture)) {
    const auto found = listing.find(base::Lower(PictureFileName(picture, type)));
    if (found != listing.end()) sizes[static_cast<std::size_t>(type - kFirstFileType)] = found->second;
  }
  return sizes;
}

std::vector<FileSizes> ReadFileSizes(const Stop& stop, Camera& camera, const std::vector<DcfObj>& catalogue) {
  std::map<std::string, std::vector<std::size_t>> folders;
  for (std::size_t i = 0; i < catalogue.size(); ++i) folders[PictureFolder(catalogue[i])].push_back(i);
  std::vector<FileSizes> sizes(catalogue.size());
  for (const auto& [folder, indexes] : folders) {
    stop.Check();
    const SizesByName listing = ListPictureFolder(camera, folder);
    for (const std::size_t i : indexes) sizes[i] = SizesIn(listing, catalogue[i]);
  }
  return sizes;
}

}  // namespace apps
