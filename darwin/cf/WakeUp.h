#ifndef KELVA_DARWIN_CF_WAKE_UP_H_
#define KELVA_DARWIN_CF_WAKE_UP_H_

#include "base/FileDescriptor.h"

namespace darwin {

/// A descriptor that any thread can make readable, so that a waiting run loop looks again.
class WakeUp {
 public:
  /// Throws std::system_error when the system has no descriptor left.
  WakeUp();

  int Descriptor() const { return descriptor_.Get(); }
  void Signal();
  /// Makes it unreadable again.
  void Clear();

 private:
  base::FileDescriptor descriptor_;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_CF_WAKE_UP_H_
