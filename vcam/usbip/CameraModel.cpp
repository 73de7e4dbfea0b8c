// Makes the USB device of a virtual camera.
#include "vcam/usbip/CameraModel.h"

namespace vcam::usbip {

CameraModel ModelOf(VirtualCamera& camera, CableFaults& faults, Speed speed) {
  const Options& options = camera.GetOptions();
  CameraModel model;
  model.identity = {options.vendor, options.product, options.serial, speed};
  model.inquiry = camera.InquiryData();
  model.execute = [&camera](const wire::Command& command) { return camera.Execute(command); };
  model.faults = [&faults] { return faults.Next(); };
  return model;
}

Offer OfferOf(Speed speed) {
  Offer offer;
  offer.busId = "1-1";
  offer.speed = speed;
  offer.vendor = kVendorId;
  offer.product = kProductId;
  offer.release = kRelease;
  return offer;
}

}  // namespace vcam::usbip
