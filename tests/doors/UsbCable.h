#ifndef KELVA_TESTS_DOORS_USB_CABLE_H_
#define KELVA_TESTS_DOORS_USB_CABLE_H_

#include <memory>
#include <mutex>
#include <thread>

#include "bus/CommandSession.h"
#include "tests/doors/UsbHost.h"
#include "vcam/camera/VirtualCamera.h"
#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/CameraModel.h"
#include "vcam/usbip/Session.h"

namespace tests::doors {

/// A virtual camera behind its USB door, which is served by a thread over a pair of sockets, and a host at the other end that
/// needs no kernel.
class UsbCable : public std::enable_shared_from_this<UsbCable> {
 public:
  static std::shared_ptr<UsbCable> Make(vcam::Options options);
  ~UsbCable();
  UsbCable(const UsbCable&) = delete;
  UsbCable& operator=(const UsbCable&) = delete;

  vcam::VirtualCamera& camera() { return camera_; }
  UsbHost& host() { return host_; }
  /// A session of the host's, which keeps the cable alive. The camera gives it to one holder at a time.
  std::unique_ptr<bus::CommandSession> MakeSession();
  /// Takes the camera away. From any thread.
  void Pull();

 private:
  explicit UsbCable(vcam::Options options);

  vcam::VirtualCamera camera_;
  vcam::usbip::CableFaults faults_{};
  vcam::usbip::UsbCamera usb_;
  base::FileDescriptor hostEnd_{};
  vcam::usbip::Session session_;
  std::thread server_;
  std::mutex ending_;  // of server_
  UsbHost host_;
};

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_USB_CABLE_H_
