// Reads the first bytes of pictures.
#include "apps/camera/PictureStart.h"

#include <algorithm>

#include "apps/camera/Picture.h"
#include "src/wifi/FileReader.h"

namespace apps {

PictureStart ReadStart(const boost::shared_ptr<Camera>& camera, const DcfObj& picture) {
  kelva::FileReader reader(camera, picture, kFirstFileType);
  PictureStart start{{}, reader.Size()};
  const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(start.size, PictureStart::kMost));
  // With room for the two bytes more that tell the end of a small file.
  start.bytes.resize(most + (most == start.size ? 2 : 0));
  start.bytes.resize(reader.Read(0, start.bytes));
  return start;
}

}  // namespace apps
