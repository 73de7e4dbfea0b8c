#ifndef KELVA_APPS_MOUNT_KERNEL_H_
#define KELVA_APPS_MOUNT_KERNEL_H_

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "apps/mount/FileSystem.h"
#include "base/WakeUp.h"

struct fuse_session;

namespace apps {

/// A file system that the kernel shows in a folder.
class Kernel {
 public:
  /// `files` lives longer. `source` is what the mount says of its camera (SourceOf).
  Kernel(FileSystem& files, const std::string& source);
  ~Kernel();
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  /// Shows it. Throws Failure.
  void Mount(const std::string& path);
  /// Hands requests to the file system, until nobody uses the folder any more after it was unmounted, or Leave. A camera
  /// that hangs after it was unmounted lazily is not waited for: who still uses the folder then gets ENODEV.
  void Serve();
  /// Makes Serve return within `patience`, and at once when nobody uses the folder any more. Any thread.
  void Leave(std::chrono::milliseconds patience);
  /// Makes Serve call FileSystem::Answer. Any thread.
  void Answer() { wakeUp_.Signal(); }
  /// Unmounts what is still mounted. Whoever uses the folder gets errors from now on. After Serve.
  void Unmount();
  /// Somebody else has unmounted it.
  void WasUnmounted() { wasUnmounted_ = true; }

 private:
  bool IsShown() const;
  std::int64_t TimeLeft(bool isShown);
  struct Freed {
    void operator()(fuse_session* session) const;
  };

  FileSystem& files_;
  std::unique_ptr<fuse_session, Freed> session_;
  base::WakeUp wakeUp_;
  std::atomic<std::int64_t> until_ = 0;  // of the steady clock, in milliseconds; 0 without an end
  std::string path_;
  bool mounted_ = false;
  bool wasUnmounted_ = false;
  bool isOver_ = false;  // set by Serve
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_KERNEL_H_
