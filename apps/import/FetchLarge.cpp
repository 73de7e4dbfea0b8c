// Reads a large file in pieces, and goes on where an earlier run ended.
#include "apps/import/FetchLarge.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Turns.h"
#include "apps/import/AskTimes.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// Ends a stream. Unless its reader says more, the file is to be taken up by a later run.
class Sending {
 public:
  explicit Sending(std::shared_ptr<FileStream> stream) : stream_(std::move(stream)) {}
  ~Sending() { stream_->End(what_, verified_); }
  Sending(const Sending&) = delete;
  Sending& operator=(const Sending&) = delete;

  void Store(bool verified) {
    what_ = FileStream::What::kStore;
    verified_ = verified;
  }
  void StoreByKey() { what_ = FileStream::What::kStoreByKey; }
  void Drop() { what_ = FileStream::What::kDrop; }

 private:
  const std::shared_ptr<FileStream> stream_;
  FileStream::What what_ = FileStream::What::kKeep;
  bool verified_ = false;
};

// One attempt to read a file.
class Attempt {
 public:
  Attempt(SyncWork& work, const CutFiles& cuts, const SyncItem& item, kelva::FileReader& reader, FileStream& stream)
      : work_(work), cuts_(cuts), item_(item), reader_(reader), stream_(stream) {}

  // False for a file that is to be read once more, unless this `isLast`.
  bool SendAll(Sending& sending, bool isLast, const AtEnd& atEnd) {
    const std::optional<FileStream::Here> here = TakeUp();
    if (!here || !Send(FileStream::What::kWrite, here->size)) return true;
    if (!atEnd.wait && here->size == 0) {
      sending.StoreByKey();
      return true;
    }
    const std::optional<std::string> sha1 = stream_.Sha1();
    if (!sha1) return true;
    const bool isWhole = here->size == 0;
    const std::string key = item_.ExpectedSha1();
    const bool asKey = key.empty() || key == *sha1;
    const bool isSure = isWhole ? asKey : key == *sha1;
    bool equal = true;
    if (!asKey) work_.files.CheckUnlikeKey(item_, reader_.Size());
    const bool asBefore = isWhole && *sha1 == atEnd.before;
    if ((!isSure && !asBefore) || work_.options.verify) {
      reader_.Select();
      work_.ShowComparing();
      if (!Send(FileStream::What::kCompare, here->compared)) return true;
      const std::optional<bool> answer = stream_.IsEqual();
      if (!answer) return true;
      equal = *answer;
    }
    if (equal) {
      if (!isWhole) LearnTimeOfPart(work_.times, item_, reader_);
      sending.Store(!isSure || work_.options.verify);
      work_.report.CountRead(!asKey, !isWhole);
      return true;
    }
    sending.Drop();
    if (!isLast && (!asKey || !isWhole)) return false;
    work_.report.Fail(item_, asKey ? TwoReadsDiffer(item_) : DiffersEachTime(item_));
    return true;
  }

 private:
  // What an earlier run left of the file, if the camera still sends the same end of it. Nothing when the writer has given
  // up.
  std::optional<FileStream::Here> TakeUp() {
    constexpr std::uint64_t kTail = 65'536;
    if (!cuts_.Has(item_.Key())) return FileStream::Here{};
    if (reader_.ReadsForwardOnly()) HoldForLong(work_.context);  // the part is skipped in one go
    const std::optional<FileStream::Here> here = stream_.WhatIsHere();
    if (!here || here->size == 0 || here->size == reader_.Size()) return here;
    const auto tail = static_cast<std::size_t>(std::min<std::uint64_t>(kTail, here->size));
    const std::span<char> room = stream_.Room();
    if (room.empty()) return std::nullopt;
    stream_.Put(FileStream::What::kTail, reader_.Read(here->size - tail, room.first(tail)));
    const std::optional<bool> fits = stream_.IsEqual();
    if (!fits) return std::nullopt;
    return *fits ? here : FileStream::Here{};
  }

  // False when the writer has given up, which it has reported.
  bool Send(FileStream::What what, std::uint64_t from) {
    for (std::uint64_t at = from; at < reader_.Size();) {
      const std::span<char> room = stream_.Room();
      if (room.empty()) return false;
      const std::size_t count = ReadPiece(what, at, room);
      if (at == 0) LearnTime(work_.times, item_, room.first(count));
      LetOthers(work_.context, reader_, room.first(count));
      stream_.Put(what, count);
      at += count;
      work_.Came(count);
    }
    return true;
  }

  std::size_t ReadPiece(FileStream::What what, std::uint64_t at, std::span<char> room) {
    const std::uint64_t left = reader_.Size() - at;
    // With room for the two bytes more that tell the end.
    const std::size_t most = left > FileStream::kPiece ? FileStream::kPiece : static_cast<std::size_t>(left) + 2;
    const std::uint64_t before = reader_.Position();
    try {
      return reader_.Read(at, room.first(most));
    } catch (const CameraError&) {
      // What came in good order before the error is kept. Without a first byte the reader stands where it did.
      const std::uint64_t now = reader_.Position();
      if (now != before && now > at && now <= at + most) stream_.Put(what, static_cast<std::size_t>(now - at));
      throw;
    }
  }

  SyncWork& work_;
  const CutFiles& cuts_;
  const SyncItem& item_;
  kelva::FileReader& reader_;
  FileStream& stream_;
};

bool Try(SyncWork& work, const CutFiles& cuts, Writers& writers, const SyncItem& item, kelva::FileReader& reader,
         int number, bool isLast, const AtEnd& atEnd) {
  const auto stream = std::make_shared<FileStream>();
  writers.Submit({&item, {}, "", false, true, stream, reader.Size(), number});
  Sending sending(stream);
  try {
    return Attempt(work, cuts, item, reader, *stream).SendAll(sending, isLast, atEnd);
  } catch (const kelva::FileReadError& error) {
    // More than was announced, or another size: what came is not the file that the row would name.
    using Reason = kelva::FileReadError::Reason;
    if (error.Why() == Reason::kSurplus || error.Why() == Reason::kSizeChanged) sending.Drop();
    throw;
  }
}

}  // namespace

std::string TwoReadsDiffer(const SyncItem& item) {
  return "Two reads of " + ShownPath(item.CameraPath()) +
         " differ, so it was not stored; check the cable and the card.";
}

std::string DiffersEachTime(const SyncItem& item) {
  return "What the camera sends of " + ShownPath(item.CameraPath()) +
         " differs from read to read, so it was not stored; check the cable and the card.";
}

void FetchLarge(SyncWork& work, const CutFiles& cuts, Writers& writers, const SyncItem& item, kelva::FileReader& reader,
                int number, const AtEnd& atEnd) {
  if (Try(work, cuts, writers, item, reader, number, false, atEnd)) return;
  reader.Select();
  Try(work, cuts, writers, item, reader, number, true, {});
}

}  // namespace apps
