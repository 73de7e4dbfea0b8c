// Makes the USB device of a virtual camera.
#include "vcam/usbip/CameraModel.h"

namespace vcam::usbip {

CameraModel ModelOf(VirtualCamera& camera, CableFaults& faults, Speed speed) {
  const Options& options = camera.GetOptions();
  return {.identity = {options.vendor, options.product, options.serial, speed},
          .inquiry = camera.InquiryData(),
          .execute = [&camera](const wire::Command& command) { return camera.Execute(command); },
          .faults = [&faults] { return faults.Next(); }};
}

Offer OfferOf(Speed speed) {
  return {.busId = "1-1", .speed = speed, .vendor = kVendorId, .product = kProductId, .release = kRelease};
}

}  // namespace vcam::usbip
