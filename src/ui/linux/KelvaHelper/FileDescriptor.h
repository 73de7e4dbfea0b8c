#ifndef KELVA_HELPER_FILE_DESCRIPTOR_H_
#define KELVA_HELPER_FILE_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace helper {

/// Owns one file descriptor and closes it. -1 is none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  int Get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

}  // namespace helper

#endif  // KELVA_HELPER_FILE_DESCRIPTOR_H_
