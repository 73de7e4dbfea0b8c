#ifndef KELVA_VCAM_PROGRAM_END_SIGNALS_H_
#define KELVA_VCAM_PROGRAM_END_SIGNALS_H_

#include <signal.h>

#include <atomic>
#include <thread>

#include "base/WakeUp.h"

namespace vcam::program {

/// Makes a descriptor readable once the process is asked to end (SIGTERM, SIGINT). Blocks these signals, so make it before
/// any thread is started; they stay blocked. Ignores SIGPIPE: a reader of our output that has gone must not end a bus that
/// others use.
class EndSignals {
 public:
  /// Throws std::system_error when the system has no descriptor left.
  EndSignals();
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  int Descriptor() const { return asked_.Descriptor(); }

 private:
  void Wait();

  sigset_t signals_;
  base::WakeUp asked_;
  std::atomic<bool> over_{false};
  std::thread thread_;
};

}  // namespace vcam::program

#endif  // KELVA_VCAM_PROGRAM_END_SIGNALS_H_
