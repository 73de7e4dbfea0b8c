#ifndef KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_
#define KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_

#include <cstdint>
#include <span>
#include <string>

#include "base/FileDescriptor.h"

namespace apps {

/// A regular file of this computer that is to be sent to a camera, read from its start to its end, piece by piece.
class LocalFile {
 public:
  /// Throws Failure: missing, unreadable, not a regular file, larger than `most` bytes.
  LocalFile(std::string path, std::uint32_t most);

  std::uint32_t Size() const { return size_; }
  /// Fills `into` with the next bytes. Throws Failure when the file does not have them any more.
  void Read(std::span<char> into);
  /// The first bytes of the file, at most `most`. Throws Failure. Read goes on where it was.
  std::string Head(std::size_t most) const;
  /// The SHA-1 of the whole file, from its start. Throws Failure. Read goes on where it was.
  std::string Sha1() const;

 private:
  const std::string path_;
  const base::FileDescriptor file_;
  std::uint32_t size_ = 0;
  std::int64_t at_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_
