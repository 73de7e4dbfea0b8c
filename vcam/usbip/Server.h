#ifndef KELVA_VCAM_USBIP_SERVER_H_
#define KELVA_VCAM_USBIP_SERVER_H_

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "base/FileDescriptor.h"
#include "vcam/usbip/Handshake.h"
#include "vcam/usbip/Session.h"

namespace vcam::usbip {

/// Offers one camera to the `usbip` command of this machine: lists it and serves one attached host at a time. Listens
/// on loopback only, because the protocol has no passwords.
class Server {
 public:
  /// `port` 0 takes any free one. Every host that attaches gets a new UsbCamera of `model`. Throws
  /// std::runtime_error with one sentence.
  Server(Offer offer, CameraModel model, std::uint16_t port);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t Port() const { return port_; }
  /// Called with one sentence about every host that broke the protocol.
  std::function<void(const std::string&)> onComplaint = [](const std::string&) {};

  /// Serves until `stop` is readable or a fault unplugs the camera. The attached host then loses the camera.
  void Run(int stop);

 private:
  void Greet(base::FileDescriptor socket);
  void Import(base::FileDescriptor socket);
  void Attach(base::FileDescriptor socket);
  void EndHost();
  bool HostAttached();

  Offer offer_;
  CameraModel model_;
  base::FileDescriptor listener_;
  std::uint16_t port_ = 0;
  std::thread host_;
  std::mutex mutex_;
  /// The session of the attached host, while it lasts.
  Session* session_ = nullptr;
  /// Readable once a fault has unplugged the camera and its host was told.
  base::FileDescriptor gone_;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SERVER_H_
