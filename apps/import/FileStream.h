#ifndef KELVA_APPS_IMPORT_FILE_STREAM_H_
#define KELVA_APPS_IMPORT_FILE_STREAM_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace apps {

/// The bytes of one file on their way from the thread that reads it to the one that writes it. A few pieces at most are on
/// their way, so memory does not depend on the file's size.
///
/// The file comes once, from its start or from where an earlier run ended, to be written; then perhaps once more, to be
/// compared with what was written; then its reader says what is to become of it. Where an earlier run has left a part, the
/// end of that part comes before all else, to be compared.
class FileStream {
 public:
  /// Bytes of a piece, the last one of a file excepted.
  static constexpr std::size_t kPiece = std::size_t{256} << 10;
  static constexpr std::size_t kMostPieces = 8;
  static constexpr std::size_t kMostBytes = kMostPieces * kPiece;

  enum class What {
    kTail,  ///< the end of the part that is here
    kWrite,
    kCompare,
    kStore,       ///< the end: the file is whole
    kStoreByKey,  ///< the same, if its SHA-1 is the catalogue's key or it has none
    kDrop,        ///< the end: what came is of no use
    kKeep,        ///< the end: a later run goes on with it
  };

  /// What is here already: bytes of the file, and of a whole one how many came a second time, and equal.
  struct Here {
    unsigned long long size = 0;
    unsigned long long compared = 0;
  };

  // For the reader. What waits for the writer gives nothing once that has given up.

  /// Waits until the writer knows what is here.
  std::optional<Here> WhatIsHere();
  /// Room for the next piece, and for two bytes more, with which a reader finds the end of a file. Waits while too much is
  /// on its way. Empty once the writer has given up.
  std::span<char> Room();
  /// Hands over the first `count` bytes of the last Room. `what`: kTail, kWrite or kCompare.
  void Put(What what, std::size_t count);
  /// Waits for the SHA-1 of the whole file.
  std::optional<std::string> Sha1();
  /// Waits until the tail, or the whole file, was compared: whether it came as before. Once for each.
  std::optional<bool> IsEqual();
  /// The last call. `verified`: for a file that is stored, whether it came twice and equal, or as its key says.
  void End(What what, bool verified = false);

  // For the writer.

  struct Piece {
    What what;
    std::span<const char> bytes;  ///< valid until the next Next
    bool verified = false;
  };
  /// Waits for the next piece; the last one is an end.
  Piece Next();
  /// Waits for it at most so long. Whether there is one.
  bool Await(std::chrono::milliseconds patience);
  void PutHere(Here here);
  void PutSha1(std::string sha1);
  void PutEqual(bool equal);
  /// After the end: gives the memory of all pieces back.
  void Free();
  /// Nobody takes any more.
  void GiveUp();

 private:
  struct Buffer {
    std::unique_ptr<char[]> bytes;
    std::size_t count = 0;
    What what = What::kWrite;
    bool verified = false;
  };

  std::mutex mutex_;
  std::condition_variable forReader_;
  std::condition_variable forWriter_;
  std::vector<std::unique_ptr<char[]>> free_;
  std::size_t made_ = 0;
  std::unique_ptr<char[]> room_;  // the reader's alone
  std::deque<Buffer> queue_;
  Buffer taken_;  // the writer's alone
  std::optional<Here> here_;
  std::optional<std::string> sha1_;
  std::optional<bool> equal_;
  bool gaveUp_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_FILE_STREAM_H_
