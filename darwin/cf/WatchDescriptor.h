#ifndef KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_
#define KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_

#include <vector>

#include "base/FileDescriptor.h"
#include "darwin/cf/RunLoop.h"

namespace darwin::cf {

/// Linux has a descriptor for several others and a deadline.
class WatchDescriptor final : public LoopWatch {
 public:
  /// Throws std::system_error when the system has no descriptor left.
  WatchDescriptor();

  int Descriptor() const override { return epoll_.Get(); }
  void Update(const std::vector<int>& descriptors, int timeoutMs) override;

 private:
  void Change(int operation, int descriptor);

  base::FileDescriptor epoll_;
  base::FileDescriptor timer_;
  std::vector<int> watched_;
};

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_
