#ifndef KELVA_BUS_LISTENER_H_
#define KELVA_BUS_LISTENER_H_

#include <sys/types.h>

#include <functional>
#include <string>

#include "base/FileDescriptor.h"

namespace bus {

/// A local stream socket that listens at a path and removes the path when it is destroyed. Only its owner may connect.
class Listener {
 public:
  /// Takes the place of a socket that nobody serves any more. Throws std::runtime_error with one sentence when the path
  /// is too long, is served already or is not a socket, or when the system refuses.
  explicit Listener(const std::string& path);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int Descriptor() const { return socket_.Get(); }
  /// The next connection; empty, with errno, when none waits or the system refuses.
  base::FileDescriptor Accept() const;

 private:
  base::FileDescriptor socket_;
  std::string path_;
  ino_t inode_ = 0;
};

/// A connected socket to a listener at this path; empty, with errno, when there is none. Waits up to 0.2 s for one that has
/// its path and takes no connections yet.
base::FileDescriptor ConnectTo(const std::string& path);
/// As ConnectTo, with `wait` in place of each of its 19 waits of 10 ms.
base::FileDescriptor ConnectTo(const std::string& path, const std::function<void()>& wait);

}  // namespace bus

#endif  // KELVA_BUS_LISTENER_H_
