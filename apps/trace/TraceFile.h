#ifndef KELVA_APPS_TRACE_TRACE_FILE_H_
#define KELVA_APPS_TRACE_TRACE_FILE_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "base/FileDescriptor.h"

namespace apps {

/// How every trace begins, up to the number of its version.
inline constexpr std::string_view kTraceStart = R"({"event":"trace","trace":)";

/// The file of a trace. Only its owner may read it. Nothing in it is ever overwritten: a file that exists is added to if
/// it is a trace of the same user, and refused otherwise.
class TraceFile {
 public:
  /// Throws Failure when the file cannot be written, or is not ours to add to. `complain` is called once, on the thread
  /// that writes, when a line cannot be written; the rest of the trace is then left out.
  TraceFile(const std::string& path, std::function<void(const std::string& sentence)> complain);

  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  /// Adds one line. Lines are written in groups, since a system call for each would slow a sync down: as soon as there are
  /// 64 KiB, with the first line that comes a tenth of a second after the last group, and before the process ends or aborts.
  /// They are whole even when several processes add to the file. Without memory for the line the trace ends. Any thread.
  /// `now` is a moment ago.
  void Add(std::string_view line,
           std::chrono::steady_clock::time_point now = std::chrono::steady_clock::now()) noexcept;
  /// Adds lines and writes everything, for a program that ends now: gives up after a tenth of a second when another thread
  /// sits in a write. Any thread.
  void AddAtEnd(std::string_view lines) noexcept;
  /// Writes what is not yet written.
  void Flush() noexcept;
  /// For the handler of an abort: writes what is not yet written, in every trace of this process.
  static void FlushAllAtAbort() noexcept;
  /// What was added since this object opened the file, at most the last `most` bytes, from the beginning of a line. Empty
  /// when it cannot be read. What was in the file before stays out: it may lack the stand-ins that this trace has.
  std::string Contents(std::size_t most);

 private:
  bool Keep(std::string_view lines) noexcept;
  void Write() noexcept;
  void End(int error) noexcept;
  void Complain(int error) noexcept;

  const std::string path_;
  const std::function<void(const std::string&)> complain_;
  base::FileDescriptor file_;
  std::mutex mutex_;
  std::string pending_;
  std::size_t begin_ = 0;  // of this trace in the file
  std::chrono::steady_clock::time_point written_{};
  bool failed_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_TRACE_TRACE_FILE_H_
