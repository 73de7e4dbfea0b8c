#ifndef KELVA_TESTS_UMOCKDEV_SG_DOOR_H_
#define KELVA_TESTS_UMOCKDEV_SG_DOOR_H_

#include <scsi/sg.h>
#include <umockdev.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "vcam/camera/VirtualCamera.h"

namespace mock {

/// A /dev/sgN node whose SG_IO is answered by a virtual camera as the kernel and usb-storage would answer for it.
/// Commands run on the testbed's own thread.
class SgDoor {
 public:
  explicit SgDoor(std::shared_ptr<vcam::VirtualCamera> camera);
  ~SgDoor();
  SgDoor(const SgDoor&) = delete;
  SgDoor& operator=(const SgDoor&) = delete;

  UMockdevIoctlBase* Handler() const { return handler_; }
  /// SG_IO calls that reached the node.
  std::uint64_t Commands() const { return commands_; }

  /// What BLKSECTGET answers; 0 refuses the question.
  std::atomic<int> largestTransfer = 122880;
  /// The host status of the next commands, whatever the camera says; 0 leaves it to the camera.
  std::atomic<int> hostStatus = 0;
  /// An errno that every SG_IO fails with; 0 for none.
  std::atomic<int> error = 0;
  /// Called when the camera goes away in the middle of a command, before the kernel's answer.
  std::function<void()> onGone;

 private:
  static gboolean OnIoctl(UMockdevIoctlBase* handler, UMockdevIoctlClient* client, gpointer door);
  void Answer(UMockdevIoctlClient* client);
  void AnswerLimit(UMockdevIoctlClient* client);
  void AnswerCommand(UMockdevIoctlClient* client);
  void Run(UMockdevIoctlData* arguments, sg_io_hdr_t& header);
  void Translate(const wire::Reply& reply, UMockdevIoctlData* arguments, sg_io_hdr_t& header);

  std::shared_ptr<vcam::VirtualCamera> camera_;
  UMockdevIoctlBase* handler_;
  std::atomic<std::uint64_t> commands_ = 0;
  std::atomic<bool> gone_ = false;
};

}  // namespace mock

#endif  // KELVA_TESTS_UMOCKDEV_SG_DOOR_H_
