#ifndef KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_
#define KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_

#include <vector>

#include "base/FileDescriptor.h"

namespace darwin::cf {

/// One descriptor for several others and a deadline: readable when one of the others is readable or the deadline has
/// come.
class WatchDescriptor {
 public:
  /// Throws std::system_error when the system has no descriptor left.
  WatchDescriptor();

  int Get() const { return epoll_.Get(); }
  /// Replaces the descriptors and the deadline; timeoutMs -1 means no deadline.
  void Update(const std::vector<int>& descriptors, int timeoutMs);

 private:
  void Change(int operation, int descriptor);

  base::FileDescriptor epoll_;
  base::FileDescriptor timer_;
  std::vector<int> watched_;
};

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_WATCH_DESCRIPTOR_H_
