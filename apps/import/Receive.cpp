// Writes a file that comes in pieces.
#include "apps/import/Receive.h"

#include <chrono>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

// Less is read again sooner than a row is written.
constexpr unsigned long long kWorthKeeping = 256U << 10;
constexpr unsigned long long kWorthKeepingAtOnce = 32U << 20;
// A camera that sends nothing for so long may hang, and what ends the command then waits for nobody.
constexpr std::chrono::milliseconds kSilence{250};

class Receiver {
 public:
  Receiver(FileStream& stream, Arrival arrival, Manifest& manifest)
      : stream_(stream), arrival_(std::move(arrival)), manifest_(manifest) {}

  std::optional<Received> Run() {
    try {
      Begin();
      return Take();
    } catch (const Failure&) {
      // A full disk, for example. What is kept is taken up when there is room.
      if (!isKept_) GiveBack();
      throw;
    } catch (...) {
      GiveBack();
      throw;
    }
  }

 private:
  void Begin() {
    FileStream::Here here;
    if (arrival_.part) {
      file_ = std::move(arrival_.part->file);
      isKept_ = true;
      compared_ = arrival_.part->compared;
      here = {arrival_.part->size, compared_};
    } else {
      file_ = std::make_unique<NewFile>(arrival_.folder);
    }
    if (here.size == arrival_.size) {
      AddPart();
      // A part that was changed on disk was not compared.
      if (sha1_ != arrival_.part->sha1) here.compared = compared_ = 0;
    }
    stream_.PutHere(here);
  }

  std::optional<Received> Take() {
    while (true) {
      if (written_ >= kWorthKeeping && !stream_.Await(kSilence)) TryKeep();
      const FileStream::Piece piece = stream_.Next();
      switch (piece.what) {
        case FileStream::What::kTail:
          CompareTail(piece.bytes);
          break;
        case FileStream::What::kWrite:
          Write(piece.bytes);
          break;
        case FileStream::What::kCompare:
          Compare(piece.bytes);
          break;
        case FileStream::What::kStore:
        case FileStream::What::kStoreByKey:
          // What cannot be flushed or named is not to be taken up by a later run.
          file_->Drop();
          CheckSize();
          return Received{std::move(file_), std::move(sha1_), piece.verified,
                          piece.what == FileStream::What::kStoreByKey};
        case FileStream::What::kDrop:
          GiveBack();
          return std::nullopt;
        case FileStream::What::kKeep:
          if (written_ >= kWorthKeeping) Keep();
          return std::nullopt;
      }
    }
  }

  // Where files have no locks, another program may have written into it too.
  void CheckSize() const {
    if (file_->Size() == arrival_.size) return;
    throw Failure(ExitCode::kFailed, "Another program wrote into a file that was being fetched; try again.");
  }

  void CompareTail(std::span<const char> bytes) {
    const bool fits = file_->HoldsAt(arrival_.part->size - bytes.size(), bytes);
    if (fits) {
      stream_.PutEqual(true);  // the camera is read while the part is
      AddPart();
    } else {
      GiveBack();
      file_ = std::make_unique<NewFile>(arrival_.folder);
      stream_.PutEqual(false);
    }
  }

  // What an earlier run left belongs to the sum.
  void AddPart() {
    file_->ReadBack([this](std::span<const char> bytes) { Add(bytes); });
  }

  void Write(std::span<const char> bytes) {
    file_->Write(bytes);
    Add(bytes);
    if (written_ >= keepAt_) TryKeep();
  }

  // While more is to come.
  void TryKeep() {
    if (isKept_) return;
    try {
      Keep();
    } catch (const Failure&) {
      keepAt_ += kWorthKeepingAtOnce;  // another program may have locked the list; the file is as good as before
    }
  }

  void Add(std::span<const char> bytes) {
    sum_.Add(bytes);
    written_ += bytes.size();
    if (written_ < arrival_.size) return;
    file_->BeginFlush();
    sha1_ = sum_.Take();
    stream_.PutSha1(sha1_);
  }

  void Compare(std::span<const char> bytes) {
    isEqual_ = isEqual_ && file_->HoldsAt(compared_, bytes);
    if (isEqual_) compared_ += bytes.size();
    if (!isEqual_ || compared_ == arrival_.size) stream_.PutEqual(isEqual_);
  }

  // The row first: a row without its file is passed over, a file without its row is swept.
  void Keep() {
    const LocalPath here{arrival_.path.folders, file_->TemporaryName()};
    manifest_.RecordCut({arrival_.key, arrival_.size, here.Text(), compared_, sha1_});
    file_->Keep();
    isKept_ = true;
  }

  void GiveBack() noexcept {
    if (file_) file_->Drop();
    if (!std::exchange(isKept_, false)) return;
    try {
      manifest_.ForgetCuts({arrival_.key});
    } catch (const std::exception&) {
      // A row without its file is passed over.
    }
  }

  FileStream& stream_;
  Arrival arrival_;
  Manifest& manifest_;
  std::unique_ptr<NewFile> file_;
  bool isKept_ = false;  // the manifest knows the file
  unsigned long long keepAt_ = kWorthKeepingAtOnce;
  Sha1Sum sum_;
  std::string sha1_;
  unsigned long long written_ = 0;
  unsigned long long compared_ = 0;
  bool isEqual_ = true;
};

}  // namespace

std::optional<Received> Receive(FileStream& stream, Arrival arrival, Manifest& manifest) {
  return Receiver(stream, std::move(arrival), manifest).Run();
}

}  // namespace apps
