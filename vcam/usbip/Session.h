#ifndef KELVA_VCAM_USBIP_SESSION_H_
#define KELVA_VCAM_USBIP_SESSION_H_

#include <cstdint>

#include "base/FileDescriptor.h"
#include "vcam/usbip/Messages.h"
#include "vcam/usbip/UsbCamera.h"

namespace vcam::usbip {

/// One cable between a host's kernel and the camera: a stream socket, over which transfers are asked for and answered.
class Session {
 public:
  /// `socket` is connected and past any handshake; `device` is the number that the host was told. `camera` is borrowed.
  Session(base::FileDescriptor socket, std::uint32_t device, UsbCamera& camera)
      : socket_(std::move(socket)), reader_(device), camera_(camera) {}

  /// Serves until the host lets go, the camera goes, or Pull is called; then the cable is out. Throws ProtocolError when
  /// the host breaks the protocol.
  void Run();

  /// Pulls the cable. May be called from any thread, as long as the session lives.
  void Pull();

 private:
  bool AnswerAll();
  bool Answer(const Finished& finished);
  bool Receive();
  void Wait() const;

  base::FileDescriptor socket_;
  MessageReader reader_;
  UsbCamera& camera_;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SESSION_H_
