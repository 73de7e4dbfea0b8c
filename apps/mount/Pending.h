#ifndef KELVA_APPS_MOUNT_PENDING_H_
#define KELVA_APPS_MOUNT_PENDING_H_

#include <fuse3/fuse_lowlevel.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace apps {

/// Requests of the kernel that wait for the camera. Each is answered once, by whoever comes first: the camera's thread, the
/// end of the mount, or the kernel itself when the program that asked was killed. Any thread.
class Pending {
 public:
  using Ticket = std::uint64_t;

  /// From now on the request is taken with its ticket. A program that is killed gets EINTR at once, so that it does not have
  /// to wait for a camera that hangs. The thread that receives the kernel's requests.
  Ticket Add(fuse_req_t request);
  /// The request, for whoever answers it; nothing when it has its answer.
  std::optional<fuse_req_t> Take(Ticket ticket);
  void Fail(Ticket ticket, int error);
  /// Answers all that wait, and all that come.
  void FailAll(int error);

 private:
  static void OnInterrupt(fuse_req_t request, void* self);

  std::mutex mutex_;
  std::map<Ticket, fuse_req_t> waiting_;
  Ticket next_ = 1;
  int ended_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_PENDING_H_
