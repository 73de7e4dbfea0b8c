#ifndef KELVA_VCAM_USBIP_SERVER_H_
#define KELVA_VCAM_USBIP_SERVER_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "base/AcceptPause.h"
#include "base/FileDescriptor.h"
#include "vcam/usbip/Handshake.h"
#include "vcam/usbip/PeerUser.h"
#include "vcam/usbip/Session.h"

namespace vcam::usbip {

/// Offers one camera to the `usbip` command of this machine: lists it and serves one attached host at a time. The
/// protocol has no passwords, and every user of the machine can reach its loopback: so the server listens nowhere else,
/// and serves the connections of its own user and of root only.
class Server {
 public:
  /// `port` 0 takes any free one. Every host that attaches gets a new UsbCamera of `model`. Throws
  /// std::runtime_error with one sentence.
  Server(Offer offer, CameraModel model, std::uint16_t port);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t Port() const { return port_; }
  /// Called with one sentence about every host that broke the protocol, and about the first connection that was refused.
  std::function<void(const std::string&)> onComplaint = [](const std::string&) {};
  /// Tells whose connection it is.
  std::function<std::optional<uid_t>(int socket)> userOf = PeerUser;
  /// How long a host may take to say what it wants. Others wait meanwhile.
  std::chrono::milliseconds greetingTime{2000};

  /// Serves until `stop` is readable or a fault unplugs the camera. The attached host then loses the camera.
  void Run(int stop);

 private:
  void Accept();
  bool Admits(int socket);
  void Greet(base::FileDescriptor socket);
  void Import(base::FileDescriptor socket, Clock::time_point deadline);
  void Attach(base::FileDescriptor socket);
  void EndHost();
  bool HostAttached();

  Offer offer_;
  CameraModel model_;
  base::FileDescriptor listener_;
  std::uint16_t port_ = 0;
  base::AcceptPause pause_;
  bool hasRefused_ = false;
  std::thread host_;
  std::mutex mutex_;
  /// The session of the attached host, while it lasts.
  Session* session_ = nullptr;
  /// Readable once a fault has unplugged the camera and its host was told.
  base::FileDescriptor gone_;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SERVER_H_
