// The action "capture": writes a new picture into the storage.
#include <algorithm>
#include <cerrno>

#include "vcam/device/Handlers.h"
#include "vcam/device/Pictures.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SampleImage.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr int kLastDirectory = 999;
constexpr int kLastFile = 9999;
constexpr float kBatteryPerCapture = 0.25F;
constexpr float kBatteryFloor = 1.0F;

/// Takes the number after the highest one in the last directory, or the next directory if that one is full.
Picture NextPicture(const std::vector<Picture>& pictures) {
  Picture next{{100, "KELVA"}, "IMG_", 1, {}};
  for (const Picture& picture : pictures) {
    if (picture.directory.number > next.directory.number) next = {picture.directory, "IMG_", 1, {}};
    if (picture.directory.number == next.directory.number) {
      next.directory = picture.directory;
      next.number = std::max(next.number, picture.number + 1);
    }
  }
  if (next.number > kLastFile) next = {{next.directory.number + 1, "KELVA"}, "IMG_", 1, {}};
  return next;
}

int WriteFile(const Storage& storage, const std::string& path, const base::Bytes& content) {
  return storage.Replace(path, {reinterpret_cast<const char*>(content.data()), content.size()}, 0644);
}

}  // namespace

wire::Reply CapturePicture(Device& device, const wire::Command&) {
  const Picture next = NextPicture(FindPictures(device.storage));
  if (next.directory.number > kLastDirectory) return Refuse(sense::kStorageFull);
  const std::string path = next.PathOf(0);
  const std::string comment =
      device.options.serial + " " + path + " " + std::to_string(device.clock.Now().time_since_epoch().count());
  int error = device.storage.MakeDirectory("DCIM");
  if (error == 0) error = device.storage.MakeDirectory(next.DirectoryPath());
  if (error == 0) error = WriteFile(device.storage, path, SampleJpeg(comment));
  if (error != 0) return Refuse(SenseOfErrno(error));
  device.battery = std::max(kBatteryFloor, device.battery - kBatteryPerCapture);
  device.console.Log("captured " + path);
  return Done();
}

}  // namespace vcam
