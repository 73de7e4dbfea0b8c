#ifndef KELVA_BENCHMARKS_PROCESSES_H_
#define KELVA_BENCHMARKS_PROCESSES_H_

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// Nanoseconds of the clock that all processes of a machine share.
std::int64_t Now();

/// A folder of this run, removed at the end.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// A child process, ended with SIGTERM and waited for at the end. Its output is dropped.
class Child {
 public:
  /// Throws std::runtime_error when it cannot be started.
  explicit Child(const std::vector<std::string>& command);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  /// Waits until it has ended by itself.
  void Join();

 private:
  pid_t pid_ = 0;
};

/// Where started programs report the moment of their start: a named pipe.
class StampPipe {
 public:
  /// Throws std::runtime_error when the pipe cannot be made.
  explicit StampPipe(const std::filesystem::path& path);
  ~StampPipe();
  StampPipe(const StampPipe&) = delete;
  StampPipe& operator=(const StampPipe&) = delete;
  /// The next start, in Now()'s clock; nothing when none came in time.
  std::optional<std::int64_t> Next(std::chrono::milliseconds timeout) const;

 private:
  int descriptor_;
};

}  // namespace bench

#endif  // KELVA_BENCHMARKS_PROCESSES_H_
