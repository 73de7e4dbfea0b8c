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

/// Offers one camera to the `usbip` command of this machine: answers who asks what there is, and serves the one host that
/// has attached it. Listens on loopback only, since the protocol knows no passwords.
class Server {
 public:
  /// `port` 0 takes any free one. `model` is what every host gets anew. Throws std::runtime_error with one sentence.
  Server(Offer offer, CameraModel model, std::uint16_t port);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t Port() const { return port_; }
  /// Called with one sentence about every host that broke the protocol.
  std::function<void(const std::string&)> onComplaint = [](const std::string&) {};

  /// Serves until `stop` is readable or the camera was unplugged by a fault. The attached host loses the camera then.
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
  /// Readable once a host has gone that saw the camera vanish.
  base::FileDescriptor gone_;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SERVER_H_
