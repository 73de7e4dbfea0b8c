#ifndef KELVA_TESTS_KERNEL_CASES_PLUGGED_H_
#define KELVA_TESTS_KERNEL_CASES_PLUGGED_H_

#include <memory>
#include <string>
#include <thread>

#include "vcam/camera/VirtualCamera.h"
#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/CameraModel.h"
#include "vcam/usbip/Session.h"

/// A virtual camera that hangs on this kernel's virtual USB host while the object lives.
class Plugged {
 public:
  /// Returns when the kernel has made /dev/sgN and udev has finished with it.
  explicit Plugged(vcam::Options options, vcam::usbip::Speed speed = vcam::usbip::Speed::kHigh);
  /// Pulls the cable if it still hangs on it, and returns when the kernel has let go of the device.
  ~Plugged();
  Plugged(const Plugged&) = delete;
  Plugged& operator=(const Plugged&) = delete;

  vcam::VirtualCamera& camera() { return camera_; }
  vcam::usbip::CableFaults& cable() { return cable_; }
  /// Such as /dev/sg0.
  const std::string& node() const { return node_; }
  void Pull() { session_.Pull(); }

 private:
  vcam::VirtualCamera camera_;
  vcam::usbip::CableFaults cable_{};
  vcam::usbip::UsbCamera usb_;
  vcam::usbip::Session session_;
  std::thread server_;
  std::string node_{};
};

/// The SCSI generic node of the USB device with this serial number, once udev knows it; empty when there is none.
std::string NodeOf(const std::string& serial);

/// Whether `condition` came true within this many seconds of the guest.
bool Eventually(const std::function<bool()>& condition, double seconds = 30);

#endif  // KELVA_TESTS_KERNEL_CASES_PLUGGED_H_
