// Reads the first bytes of pictures, and all of them.
#include "apps/camera/PictureStart.h"

#include <algorithm>

#include "apps/camera/Picture.h"
#include "apps/camera/Turns.h"

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

std::vector<char> ReadWhole(Context& context, kelva::FileReader& reader, const std::function<bool()>& isWanted) {
  constexpr std::size_t kPiece = std::size_t{256} << 10;
  // With room for the two bytes more that tell the end.
  std::vector<char> bytes(static_cast<std::size_t>(reader.Size()) + 2);
  std::size_t done = 0;
  while (done < reader.Size()) {
    context.stop.Check();
    if (isWanted && !isWanted()) return {};
    LetOthers(context, reader, std::span(bytes).first(done));
    done += reader.ReadOn(std::span(bytes).subspan(done).first(std::min(kPiece, bytes.size() - done)));
  }
  bytes.resize(done);
  return bytes;
}

}  // namespace apps
