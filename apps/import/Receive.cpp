// Writes a file that comes in pieces.
#include "apps/import/Receive.h"

#include <utility>

#include "apps/files/Sha1.h"

namespace apps {
namespace {

class Receiver {
 public:
  Receiver(FileStream& stream, const TargetFolder& folder, unsigned long long size)
      : stream_(stream), size_(size), file_(std::make_unique<NewFile>(folder)) {}

  std::optional<Received> Run() {
    while (true) {
      const FileStream::Piece piece = stream_.Next();
      switch (piece.what) {
        case FileStream::What::kWrite:
          Write(piece.bytes);
          break;
        case FileStream::What::kCompare:
          Compare(piece.bytes);
          break;
        case FileStream::What::kStore:
          return Received{std::move(file_), std::move(sha1_), piece.verified};
        case FileStream::What::kDrop:
        case FileStream::What::kKeep:
          return std::nullopt;
      }
    }
  }

 private:
  void Write(std::span<const char> bytes) {
    file_->Write(bytes);
    sum_.Add(bytes);
    written_ += bytes.size();
    if (written_ < size_) return;
    file_->BeginFlush();
    sha1_ = sum_.Take();
    stream_.PutSha1(sha1_);
  }

  void Compare(std::span<const char> bytes) {
    equal_ = equal_ && file_->HoldsAt(compared_, bytes);
    compared_ += bytes.size();
    if (compared_ == size_) stream_.PutEqual(equal_);
  }

  FileStream& stream_;
  const unsigned long long size_;
  std::unique_ptr<NewFile> file_;
  Sha1Sum sum_;
  std::string sha1_;
  unsigned long long written_ = 0;
  unsigned long long compared_ = 0;
  bool equal_ = true;
};

}  // namespace

std::optional<Received> Receive(FileStream& stream, const TargetFolder& folder, unsigned long long size) {
  return Receiver(stream, folder, size).Run();
}

}  // namespace apps
