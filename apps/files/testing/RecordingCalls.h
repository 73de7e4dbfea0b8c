#ifndef KELVA_APPS_FILES_TESTING_RECORDING_CALLS_H_
#define KELVA_APPS_FILES_TESTING_RECORDING_CALLS_H_

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/files/SystemCalls.h"
#include "platform/Files.h"

namespace apps {

/// The system's calls, which write down their order and fail on request, for as long as this lives. Any thread.
class RecordingCalls : public FileCalls {
 public:
  /// Paths in the record are relative to `root`. `missing` is what the system is to do without.
  explicit RecordingCalls(std::filesystem::path root, const SystemCalls::Missing& missing = {})
      : root_(std::filesystem::canonical(root)), system_(missing), before_(Replace(*this)) {}
  ~RecordingCalls() override { Replace(before_); }

  /// The `nth` call from here on, counted from 1, fails with `error` and does nothing. `kind` is what the counted calls
  /// start with in the record; empty counts all.
  void FailAt(int nth, int error, const std::string& kind = "") { FailEach(nth, 1, error, kind); }
  /// As FailAt, for `times` calls in a row.
  void FailEach(int nth, int times, int error, const std::string& kind = "") {
    const std::scoped_lock lock(mutex_);
    kind_ = kind;
    first_ = nth;
    last_ = nth + times - 1;
    error_ = error;
    calls_ = 0;
  }
  /// Whether a call was made to fail.
  bool HasFailed() const {
    const std::scoped_lock lock(mutex_);
    return calls_ >= first_;
  }
  /// No call to write writes more.
  void WriteAtMost(std::size_t bytes) { mostBytes_ = bytes; }

  /// What was done, in order: "create 100ABCDE/*.part", "flush folder 100ABCDE", "rename 100ABCDE/IMG_0001.JPG".
  std::vector<std::string> Log() const {
    const std::scoped_lock lock(mutex_);
    return log_;
  }
  /// Puts what a test does itself in its place in the order.
  void Note(const std::string& what) {
    const std::scoped_lock lock(mutex_);
    log_.push_back(what);
  }
  /// Names of files whose last bytes were not on disk when they got them.
  std::vector<std::string> NamedUnflushed() const {
    const std::scoped_lock lock(mutex_);
    return unflushed_;
  }

  /// How many bytes were on their way to the disk before anybody waited for them.
  std::size_t Begun() const { return begun_; }

  int Open(int folder, const std::string& path, int flags) override { return system_.Open(folder, path, flags); }
  int Create(int folder, const std::string& name) override {
    return Fails("create " + Below(folder, "*.part")) ? -1 : system_.Create(folder, name);
  }
  int MakeFolder(int parent, const std::string& name) override {
    return Fails("make " + Below(parent, name)) ? -1 : system_.MakeFolder(parent, name);
  }
  ssize_t Write(int file, std::string_view bytes) override {
    if (Fails("write " + Shown(PathOf(file)))) return -1;
    const std::scoped_lock lock(mutex_);
    flushed_.erase(PathOf(file));
    return system_.Write(file, bytes.substr(0, mostBytes_));
  }
  int SetTime(int file, std::time_t changed) override {
    return Fails("time " + Shown(PathOf(file))) ? -1 : system_.SetTime(file, changed);
  }
  void BeginFlush(int file) noexcept override {
    struct stat status {};
    if (::fstat(file, &status) == 0) begun_ += static_cast<std::size_t>(status.st_size);
    system_.BeginFlush(file);
  }
  int Flush(int file) override {
    if (Fails("flush " + Shown(PathOf(file)))) return -1;
    const std::scoped_lock lock(mutex_);
    flushed_.insert(PathOf(file));
    return system_.Flush(file);
  }
  int FlushFolder(int folder) override {
    return Fails("flush folder " + PathOf(folder)) ? -1 : system_.FlushFolder(folder);
  }
  int Rename(int folder, const std::string& from, const std::string& to, bool replace) override {
    if (Fails((replace ? "replace " : "rename ") + Below(folder, to))) return -1;
    const int result = system_.Rename(folder, from, to, replace);
    const std::scoped_lock lock(mutex_);
    if (result == 0 && flushed_.count(Below(folder, from)) == 0) unflushed_.push_back(Below(folder, to));
    return result;
  }
  int Move(int from, const std::string& name, int to) override {
    return Fails("move " + Below(to, name)) ? -1 : system_.Move(from, name, to);
  }
  int Commit(const std::function<int()>& commit) override { return Fails("commit") ? -1 : system_.Commit(commit); }

 private:
  bool Fails(const std::string& what) {
    const std::scoped_lock lock(mutex_);
    log_.push_back(what);
    if (!what.starts_with(kind_)) return false;
    ++calls_;
    if (calls_ < first_ || calls_ > last_) return false;
    errno = error_;
    return true;
  }
  std::string PathOf(int fd) const { return std::filesystem::path(platform::PathOf(fd)).lexically_relative(root_); }
  std::string Below(int folder, const std::string& name) const {
    if (name.starts_with('/')) return std::filesystem::path(name).lexically_relative(root_);
    return (std::filesystem::path(folder == AT_FDCWD ? "" : PathOf(folder)) / name).lexically_normal();
  }
  // Temporary names are random.
  static std::string Shown(const std::string& path) {
    const std::filesystem::path whole(path);
    return whole.extension() == ".part" ? std::string(whole.parent_path() / "*.part") : path;
  }

  const std::filesystem::path root_;
  SystemCalls system_;
  FileCalls& before_;
  mutable std::mutex mutex_;
  std::vector<std::string> log_;
  std::set<std::string> flushed_;
  std::vector<std::string> unflushed_;
  std::atomic<std::size_t> begun_ = 0;
  std::size_t mostBytes_ = std::string::npos;
  std::string kind_;
  int calls_ = 0;
  int first_ = 1 << 30;
  int last_ = 1 << 30;
  int error_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_TESTING_RECORDING_CALLS_H_
