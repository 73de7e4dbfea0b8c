// A selection as pieces of memory and files, read at any offset without loading the files as a whole.
#include "vcam/device/DataSet.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace vcam {
namespace {

bool ReadFully(int file, std::uint64_t offset, std::span<std::uint8_t> out) {
  while (!out.empty()) {
    const ssize_t count = ::pread(file, out.data(), out.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    out = out.subspan(static_cast<std::size_t>(count));
    offset += static_cast<std::uint64_t>(count);
  }
  return true;
}

}  // namespace

void DataSet::Add(Piece piece) {
  if (piece.size == 0) return;
  piece.start = size_;
  size_ += piece.size;
  pieces_.push_back(std::move(piece));
}

void DataSet::AddBytes(base::Bytes bytes) {
  const std::uint64_t size = bytes.size();
  Add({0, size, std::move(bytes), {}, {}});
}

void DataSet::AddFile(std::string path, std::uint64_t size) {
  Add({0, size, {}, std::move(path), {}});
}

void DataSet::AddOpenFile(base::FileDescriptor file, std::uint64_t size) {
  Add({0, size, {}, {}, std::move(file)});
}

bool DataSet::Read(const Storage& storage, std::uint64_t offset, std::span<std::uint8_t> out) {
  const auto after = std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                                      [](std::uint64_t value, const Piece& piece) { return value < piece.start; });
  for (auto index = static_cast<std::size_t>(after - pieces_.begin()); !out.empty(); ++index) {
    const Piece& piece = pieces_[index - 1];
    const std::uint64_t within = offset - piece.start;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), piece.size - within));
    if (!ReadPiece(storage, index - 1, within, out.first(count))) return false;
    out = out.subspan(count);
    offset += count;
  }
  return true;
}

bool DataSet::ReadPiece(const Storage& storage, std::size_t index, std::uint64_t offset, std::span<std::uint8_t> out) {
  const Piece& piece = pieces_[index];
  if (!piece.bytes.empty()) {
    std::memcpy(out.data(), piece.bytes.data() + offset, out.size());
    return true;
  }
  return Open(storage, index) && ReadFully(pieces_[index].file.Get(), offset, out);
}

bool DataSet::Open(const Storage& storage, std::size_t index) {
  if (pieces_[index].file) return true;
  // One file at a time: a batch may name more files than a process may open.
  if (!pieces_[opened_].path.empty()) pieces_[opened_].file.Reset();
  pieces_[index].file = storage.OpenForReading(pieces_[index].path).file;
  opened_ = index;
  return static_cast<bool>(pieces_[index].file);
}

}  // namespace vcam
