#ifndef KELVA_DARWIN_SG_SG_SYSTEM_H_
#define KELVA_DARWIN_SG_SG_SYSTEM_H_

#include <cstddef>

namespace darwin::sg {

/// The system calls that a session with a /dev/sgN node needs. The one place where a test stands in for the kernel.
/// Failures are -1 with errno set, as the calls themselves report them.
class SgSystem {
 public:
  virtual ~SgSystem() = default;
  /// Opens the node for reading and writing: the kernel refuses vendor commands on any other descriptor.
  virtual int Open(const char* node) = 0;
  virtual void Close(int descriptor) = 0;
  /// Takes the node's advisory lock without waiting; EWOULDBLOCK when another process holds it.
  virtual int Lock(int descriptor) = 0;
  virtual int Ioctl(int descriptor, unsigned long request, void* argument) = 0;
  /// Maps the node's reserved buffer, where commands with SG_FLAG_MMAP_IO leave their data; null when it cannot be
  /// mapped.
  virtual void* Map(int descriptor, std::size_t size) = 0;
  virtual void Unmap(void* bytes, std::size_t size) = 0;
  /// True as soon as the kernel says that the device has been detached; false after `milliseconds`.
  virtual bool WaitForHangUp(int descriptor, int milliseconds) = 0;

  /// The kernel itself.
  static SgSystem& Kernel();
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_SYSTEM_H_
