#ifndef KELVA_DARWIN_SG_SIGNALS_BLOCKED_H_
#define KELVA_DARWIN_SG_SIGNALS_BLOCKED_H_

#include <csignal>

namespace darwin::sg {

/// Keeps every signal from this thread for its lifetime.
///
/// A signal that arrives while SG_IO waits makes the kernel start the call again, and the camera receives the command a
/// second time; without a restart the call ends early and the next command waits behind the first. Blocked signals are
/// delivered as soon as the command has ended.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SIGNALS_BLOCKED_H_
