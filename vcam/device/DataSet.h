#ifndef KELVA_VCAM_DEVICE_DATA_SET_H_
#define KELVA_VCAM_DEVICE_DATA_SET_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/FileDescriptor.h"
#include "vcam/device/Storage.h"

namespace vcam {

/// Where the numbers and names stand in a data set, for the faults that falsify them. Byte offsets.
struct Marks {
  std::vector<std::uint64_t> counts;   ///< 32-bit numbers that say how much follows
  std::vector<std::uint64_t> offsets;  ///< 32-bit numbers that say where something is
  struct Name {
    std::uint64_t offset;
    std::uint64_t length;  ///< with its terminator
  };
  std::vector<Name> names;
};

/// What a selection prepared for reading: pieces of memory and of files, one after another. Files are read as the host
/// asks for them, never as a whole.
class DataSet {
 public:
  void AddBytes(base::Bytes bytes);
  /// A file of the storage, opened when it is first read.
  void AddFile(std::string path, std::uint64_t size);
  /// A file that is already open, and that stays readable even when it is deleted meanwhile.
  void AddOpenFile(base::FileDescriptor file, std::uint64_t size);

  std::uint64_t Size() const { return size_; }

  /// Fills `out` with the bytes at `offset`; all of them must lie below Size(). False when a file has lost them.
  bool Read(const Storage& storage, std::uint64_t offset, std::span<std::uint8_t> out);

  Marks marks;

 private:
  struct Piece {
    std::uint64_t start;
    std::uint64_t size;
    base::Bytes bytes;
    std::string path;
    base::FileDescriptor file;
  };

  bool ReadPiece(const Storage& storage, std::size_t index, std::uint64_t offset, std::span<std::uint8_t> out);
  bool Open(const Storage& storage, std::size_t index);
  void Add(Piece piece);

  std::vector<Piece> pieces_;
  std::uint64_t size_ = 0;
  std::size_t opened_ = 0;  // the piece that Open opened last; one file at a time stays open
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_DATA_SET_H_
