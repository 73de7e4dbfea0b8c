#ifndef KELVA_UI_LINUX_KELVA_HELPER_SIGNAL_STOP_H_
#define KELVA_UI_LINUX_KELVA_HELPER_SIGNAL_STOP_H_

#include <CoreFoundation/CoreFoundation.h>

#include "base/FileDescriptor.h"

namespace helper {

/// Turns SIGTERM, SIGINT (Ctrl-C) and SIGHUP into the end of the calling thread's run loop, so that the process ends by
/// returning from main. Make it before the first other thread, and keep it for as long as the loop runs. Throws
/// std::system_error when the system has no descriptor to spare.
class SignalStop {
 public:
  SignalStop();
  SignalStop(const SignalStop&) = delete;
  SignalStop& operator=(const SignalStop&) = delete;
  ~SignalStop();

 private:
  base::FileDescriptor signals_;
  CFRunLoopSourceRef source_;
};

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_SIGNAL_STOP_H_
