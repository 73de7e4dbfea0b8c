// The system calls of this folder, which tests replace.

#include "darwin/sg/SgSystem.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace darwin::sg {
namespace {

class KernelSystem : public SgSystem {
 public:
  // O_NONBLOCK affects open alone: during an error recovery or another program's exclusive open it fails at once
  // instead of blocking.
  int Open(const char* node) override { return ::open(node, O_RDWR | O_NONBLOCK | O_CLOEXEC); }
  void Close(int descriptor) override { ::close(descriptor); }
  int Lock(int descriptor) override { return ::flock(descriptor, LOCK_EX | LOCK_NB); }
  int Ioctl(int descriptor, unsigned long request, void* argument) override {
    return ::ioctl(descriptor, request, argument);
  }
  void* Map(int descriptor, std::size_t size) override {
    void* bytes = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    return bytes == MAP_FAILED ? nullptr : bytes;
  }
  void Unmap(void* bytes, std::size_t size) override { ::munmap(bytes, size); }
  bool WaitForHangUp(int descriptor, int milliseconds) override {
    pollfd waiting{descriptor, 0, 0};
    return ::poll(&waiting, 1, milliseconds) > 0 && (waiting.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
  }
};

}  // namespace

SgSystem& SgSystem::Kernel() {
  static KernelSystem system;
  return system;
}

}  // namespace darwin::sg
