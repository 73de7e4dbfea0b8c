#ifndef KELVA_BASE_FILE_DESCRIPTOR_H_
#define KELVA_BASE_FILE_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace base {

/// Owns a file descriptor; -1 when empty.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.Release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~FileDescriptor() { Reset(); }

  int Get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  int Release() { return std::exchange(descriptor_, -1); }
  void Reset(int descriptor = -1) {
    if (const int old = std::exchange(descriptor_, descriptor); old >= 0) ::close(old);
  }

 private:
  int descriptor_ = -1;
};

}  // namespace base

#endif  // KELVA_BASE_FILE_DESCRIPTOR_H_
