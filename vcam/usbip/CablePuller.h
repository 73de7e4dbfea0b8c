#ifndef KELVA_VCAM_USBIP_CABLE_PULLER_H_
#define KELVA_VCAM_USBIP_CABLE_PULLER_H_

#include <functional>
#include <thread>

#include "base/FileDescriptor.h"

namespace vcam::usbip {

/// Pulls a cable, on a thread of its own, when a descriptor becomes readable while this lives. Its end waits for no
/// descriptor.
class CablePuller {
 public:
  /// `stop` stays the caller's. `pull` outlives this object. Throws std::runtime_error with one sentence.
  CablePuller(int stop, std::function<void()> pull);
  ~CablePuller();
  CablePuller(const CablePuller&) = delete;
  CablePuller& operator=(const CablePuller&) = delete;

 private:
  void Run(int stop) const;

  const std::function<void()> pull_;
  const base::FileDescriptor ended_;
  std::thread thread_;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_CABLE_PULLER_H_
