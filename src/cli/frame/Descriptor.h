#ifndef KELVA_CLI_FRAME_DESCRIPTOR_H_
#define KELVA_CLI_FRAME_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace kelva {

/// Owns one file descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }

  int Get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace kelva

#endif  // KELVA_CLI_FRAME_DESCRIPTOR_H_
