#ifndef KELVA_APPS_MOUNT_SPOOL_H_
#define KELVA_APPS_MOUNT_SPOOL_H_

#include <cstdint>
#include <span>

#include "base/FileDescriptor.h"

namespace apps {

/// A file without a name in the folder for temporary files. It goes with its object, or with the process. One thread at a time.
class Spool {
 public:
  /// Throws Failure.
  Spool();

  std::uint64_t Size() const { return size_; }
  bool Has(std::uint64_t end) const { return end <= size_; }
  /// Throws Failure, for a full disk too.
  void Append(std::span<const char> bytes) { Write(size_, bytes); }
  void Write(std::uint64_t offset, std::span<const char> bytes);
  /// Cuts it, or adds zeros.
  void Resize(std::uint64_t size);
  /// Fills `into`; bytes beyond the end are an error. Throws Failure.
  void Read(std::uint64_t offset, std::span<char> into) const;

 private:
  base::FileDescriptor file_;
  std::uint64_t size_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_SPOOL_H_
