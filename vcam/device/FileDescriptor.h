#ifndef KELVA_VCAM_DEVICE_FILE_DESCRIPTOR_H_
#define KELVA_VCAM_DEVICE_FILE_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace vcam {

/// Owns one open descriptor.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      Reset();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  ~FileDescriptor() { Reset(); }

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  /// Gives the descriptor up to a caller that will close it.
  int Release() { return std::exchange(fd_, -1); }
  void Reset() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

 private:
  int fd_ = -1;
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_FILE_DESCRIPTOR_H_
