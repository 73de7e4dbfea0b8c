// Answers the kernel's requests for the bytes of files, and reads ahead of whoever reads on.
#include <fuse3/fuse_lowlevel.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "apps/mount/Errors.h"
#include "apps/mount/FileSystem.h"

namespace apps {
namespace {

// The kernel asks for 1 MiB at once at most, which may begin within a piece.
constexpr std::size_t kMostPieces = 18;
// As far ahead as a second reader of another file can wait for.
constexpr std::uint64_t kAhead = 4;
constexpr std::size_t kMostStreams = 32;

void Reply(fuse_req_t request, const std::vector<Pieces::Piece>& pieces, std::uint64_t offset, std::size_t size) {
  std::array<iovec, kMostPieces> parts{};
  std::size_t count = 0;
  std::size_t skip = offset % Pieces::kSize;
  for (const Pieces::Piece& piece : pieces) {
    const std::size_t most = piece->Size() > skip ? std::min(piece->Size() - skip, size) : 0;
    // sendmsg only reads, but an iovec has no const pointer.
    parts[count++] = {const_cast<char*>(piece->Data()) + skip, most};
    size -= most;
    skip = 0;
  }
  fuse_reply_iov(request, parts.data(), static_cast<int>(count));
}

}  // namespace

void FileSystem::Read(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::size_t size) {
  std::uint64_t known = 0;
  std::shared_ptr<Upload> upload;
  {
    const std::scoped_lock lock(mutex_);
    if (const Node* node = nodes_.Find(number)) known = node->size;
    if (const auto found = uploads_.find(number); found != uploads_.end()) upload = found->second;
  }
  if (offset >= known || size == 0) {
    fuse_reply_buf(request, nullptr, 0);
    return;
  }
  size = static_cast<std::size_t>(std::min<std::uint64_t>({size, known - offset, (kMostPieces - 1) * Pieces::kSize}));
  const Pending::Ticket ticket = pending_.Add(request);
  if (upload) {
    // Written here, and not yet on the camera.
    std::vector<char> bytes(size);
    upload->spool.Read(offset, bytes);
    if (const auto waiting = pending_.Take(ticket)) fuse_reply_buf(*waiting, bytes.data(), bytes.size());
    return;
  }
  Follow(number, offset, offset + size, known);
  if (ReadKnown(ticket, number, offset, size)) return;
  Put(ticket, number, offset, [this, ticket, number, offset, size] { ReadNow(ticket, number, offset, size); });
}

// Unless the file has another size now. Under the lock.
Pieces::Piece FileSystem::Known(std::uint64_t number, std::uint64_t index) {
  const Node* node = nodes_.Find(number);
  Pieces::Piece piece = pieces_.Find(number, index);
  if (node == nullptr || !piece || index * Pieces::kSize >= node->size) return nullptr;
  return piece->Size() == std::min<std::uint64_t>(Pieces::kSize, node->size - index * Pieces::kSize) ? piece : nullptr;
}

bool FileSystem::ReadKnown(Pending::Ticket ticket, std::uint64_t number, std::uint64_t offset, std::size_t size) {
  std::vector<Pieces::Piece> pieces;
  {
    const std::scoped_lock lock(mutex_);
    const std::uint64_t last = (offset + size - 1) / Pieces::kSize;
    for (std::uint64_t index = offset / Pieces::kSize; index <= last; ++index) {
      Pieces::Piece piece = Known(number, index);
      if (!piece) return false;
      pieces.push_back(std::move(piece));
    }
  }
  if (const auto request = pending_.Take(ticket)) Reply(*request, pieces, offset, size);
  return true;
}

// On the camera's thread.
void FileSystem::ReadNow(Pending::Ticket ticket, std::uint64_t number, std::uint64_t offset, std::size_t size) {
  std::vector<Pieces::Piece> pieces;
  const std::uint64_t last = (offset + size - 1) / Pieces::kSize;
  for (std::uint64_t index = offset / Pieces::kSize; index <= last; ++index) pieces.push_back(PieceNow(number, index));
  if (size <= Pieces::kSize) {
    // Waking the other thread would take as long as the copy.
    if (const auto request = pending_.Take(ticket)) Reply(*request, pieces, offset, size);
    return;
  }
  {
    const std::scoped_lock lock(mutex_);
    answered_.push_back({ticket, std::move(pieces), offset, size});
  }
  events_.toAnswer();
}

void FileSystem::Answer() {
  std::vector<Answered> all;
  {
    const std::scoped_lock lock(mutex_);
    all.swap(answered_);
  }
  for (const Answered& one : all) {
    if (const auto request = pending_.Take(one.ticket)) Reply(*request, one.pieces, one.offset, one.size);
  }
}

Pieces::Piece FileSystem::PieceNow(std::uint64_t number, std::uint64_t index) {
  std::string path;
  std::uint64_t size = 0;
  {
    const std::scoped_lock lock(mutex_);
    if (Pieces::Piece known = Known(number, index)) return known;
    const Node* node = nodes_.Find(number);
    path = nodes_.PathOf(number);
    if (node == nullptr || path.empty()) throw SystemError(ESTALE);
    size = node->size;
  }
  if (index * Pieces::kSize >= size) throw SystemError(EIO);
  Heard();
  Pieces::Piece piece = reading_->Read(number, path, size, index);
  const std::scoped_lock lock(mutex_);
  pieces_.Keep(number, index, piece);
  return piece;
}

void FileSystem::Follow(std::uint64_t number, std::uint64_t offset, std::uint64_t end, std::uint64_t size) {
  const std::scoped_lock lock(mutex_);
  if (streams_.size() >= kMostStreams && streams_.count(number) == 0) {
    const auto older = [](const auto& a, const auto& b) { return a.second.used < b.second.used; };
    streams_.erase(std::min_element(streams_.begin(), streams_.end(), older));
  }
  Stream& stream = streams_[number];
  stream.used = ++uses_;
  const bool readsOn = offset == stream.next && offset != 0;
  stream.next = end;
  const std::uint64_t pieces = (size + Pieces::kSize - 1) / Pieces::kSize;
  stream.ahead = readsOn ? std::min(pieces, (end + Pieces::kSize - 1) / Pieces::kSize + kAhead) : 0;
  if (readsOn) work_.Nudge();
}

// One piece of the selected file, if somebody reads it from start to end. False when there is nothing to do.
bool FileSystem::ReadAhead() {
  const std::uint64_t number = reading_->Selected();
  if (number == 0 || (readAhead_ >= kAhead && work_.HasOther(number))) return false;
  std::uint64_t index = 0;
  {
    const std::scoped_lock lock(mutex_);
    const auto stream = streams_.find(number);
    if (stream == streams_.end()) return false;
    index = stream->second.next / Pieces::kSize;
    while (index < stream->second.ahead && Known(number, index)) ++index;
    if (index >= stream->second.ahead) return false;
  }
  try {
    PieceNow(number, index);
    ++readAhead_;
    return true;
  } catch (const std::exception&) {
    // Whoever asks for these bytes gets the error.
    reading_->Forget();
    return false;
  }
}

}  // namespace apps
