#ifndef KELVA_APPS_MOUNT_PIECES_H_
#define KELVA_APPS_MOUNT_PIECES_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace apps {

/// Some bytes of a file. Not set to zero first, as a vector's are.
class FileBytes {
 public:
  explicit FileBytes(std::size_t size) : bytes_(std::make_unique_for_overwrite<char[]>(size)), size_(size) {}

  std::size_t Size() const { return size_; }
  const char* Data() const { return bytes_.get(); }
  std::span<char> All() { return {bytes_.get(), size_}; }
  std::string_view Text() const { return {bytes_.get(), size_}; }
  /// Forgets what is behind.
  void Cut(std::size_t size) { size_ = size; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

/// The bytes of files that were read last, in pieces. Bounded in number and in age: another program may write to the camera.
/// One thread at a time.
class Pieces {
 public:
  using Clock = std::chrono::steady_clock;
  using Piece = std::shared_ptr<const FileBytes>;
  /// What a camera's transport moves at once.
  static constexpr std::size_t kSize = 65'536;

  explicit Pieces(std::size_t most = 80) : most_(most) {}

  /// A piece of a file by its place in it; null when it is not here, or too old.
  Piece Find(std::uint64_t file, std::uint64_t index, Clock::time_point now = Clock::now());
  void Keep(std::uint64_t file, std::uint64_t index, Piece piece, Clock::time_point now = Clock::now());
  /// The file has changed.
  void Drop(std::uint64_t file);

 private:
  using Key = std::pair<std::uint64_t, std::uint64_t>;
  struct Kept {
    Key key;
    Piece piece;
    Clock::time_point came;
  };

  const std::size_t most_;
  std::list<Kept> kept_;  // the one that was asked for last comes first
  std::map<Key, std::list<Kept>::iterator> places_;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_PIECES_H_
