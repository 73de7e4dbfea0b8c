#ifndef KELVA_TESTS_DOORS_USB_CABLE_H_
#define KELVA_TESTS_DOORS_USB_CABLE_H_

#include <memory>
#include <thread>

#include "vcam/device/VirtualCamera.h"
#include "vcam/door/CommandSession.h"
#include "vcam/usbip/Session.h"
#include "vcam/usbip/UsbDoor.h"
#include "vcam/usbip/WireFaults.h"

namespace kelva::doors {

/// A virtual camera behind its USB door, which is served by a thread over a pair of sockets, and a host at the other end that
/// needs no kernel.
class UsbCable {
 public:
  explicit UsbCable(vcam::Options options);
  ~UsbCable();
  UsbCable(const UsbCable&) = delete;
  UsbCable& operator=(const UsbCable&) = delete;

  vcam::VirtualCamera& camera() { return camera_; }
  vcam::usbip::WireFaults& faults() { return faults_; }
  /// A host that sends commands through this cable. There is one end, so there is one session.
  std::unique_ptr<vcam::CommandSession> MakeSession();

 private:
  vcam::VirtualCamera camera_;
  vcam::usbip::WireFaults faults_{};
  vcam::usbip::UsbCamera usb_;
  vcam::FileDescriptor hostEnd_{};
  vcam::usbip::Session session_;
  std::thread server_;
};

}  // namespace kelva::doors

#endif  // KELVA_TESTS_DOORS_USB_CABLE_H_
