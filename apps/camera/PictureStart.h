#ifndef KELVA_APPS_CAMERA_PICTURE_START_H_
#define KELVA_APPS_CAMERA_PICTURE_START_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <functional>
#include <vector>

#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// The first bytes of a picture's JPEG file: enough for its EXIF part, with time, orientation and thumbnail.
struct PictureStart {
  static constexpr std::size_t kMost = 65'536;

  std::vector<char> bytes;
  std::uint64_t size = 0;  ///< of the file, as the camera announces it

  bool IsWhole() const { return bytes.size() == size; }
};

/// Reads it. Ends what was selected on the camera. Throws CameraError, also when the picture has no JPEG file.
PictureStart ReadStart(const boost::shared_ptr<Camera>& camera, const DcfObj& picture);

/// Reads all of a file of a size that the caller has checked, and lets others have the camera meanwhile. `isWanted` is asked now
/// and then: nothing once it says no. Throws Stopped, and what the reader and LetOthers throw.
std::vector<char> ReadWhole(Context& context, kelva::FileReader& reader,
                            const std::function<bool()>& isWanted = nullptr);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_PICTURE_START_H_
