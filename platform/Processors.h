#ifndef KELVA_PLATFORM_PROCESSORS_H_
#define KELVA_PLATFORM_PROCESSORS_H_

#include <cstddef>
#include <vector>

namespace platform {

/// The processors that the calling thread may use, in ascending order; empty where the system does not tell (macOS).
std::vector<int> Processors();
/// Limits the calling thread, and the programs that it starts, to these. False where the system does not (macOS).
bool UseOnly(const std::vector<int>& processors);
/// The processor on which the calling thread runs; -1 where the system does not tell (macOS).
int CurrentProcessor();

/// Gives the thread that makes it one processor, until it is destroyed, and others none of that one: for a thread that
/// talks to another process many times a millisecond, beside threads that compute. Where processors are few, it and the
/// other process are otherwise moved from one to the other all the time, which costs more than what they do.
///
/// Does nothing with one processor alone, with enough of them for all threads, and where the system has no such call.
class OwnProcessor {
 public:
  /// `threads`: how many work at the same time, this one included.
  explicit OwnProcessor(std::size_t threads);
  ~OwnProcessor();
  OwnProcessor(const OwnProcessor&) = delete;
  OwnProcessor& operator=(const OwnProcessor&) = delete;

  /// Keeps the calling thread off it, for good. Any thread.
  void KeepOff() const;

 private:
  std::vector<int> before_;
  std::vector<int> others_;
};

/// While it lives, the calling thread may use again what it could use before its OwnProcessor: for the start of a program, which
/// would stay on that one processor.
class NoOwnProcessor {
 public:
  NoOwnProcessor();
  ~NoOwnProcessor();
  NoOwnProcessor(const NoOwnProcessor&) = delete;
  NoOwnProcessor& operator=(const NoOwnProcessor&) = delete;

 private:
  std::vector<int> own_;
};

}  // namespace platform

#endif  // KELVA_PLATFORM_PROCESSORS_H_
