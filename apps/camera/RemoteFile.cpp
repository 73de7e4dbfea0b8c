// Reads, writes and deletes one file on the camera, and checks what the library does not.

#include "apps/camera/RemoteFile.h"

#include <utility>
#include <vector>

#include "apps/camera/Advice.h"
#include "apps/camera/CameraPath.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/commandline/Words.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

// What a camera's transport moves at once.
constexpr std::size_t kPiece = 65'536;

Failure Failed(const std::string& sentence) {
  return Failure(ExitCode::kFailed, sentence);
}

// A camera refuses to list a folder that is not there; the folders above it tell.
std::optional<CameraDirent> EntryIn(KnownListings& listings, const std::string& path) {
  try {
    return listings.Find(path);
  } catch (const CameraTransferError& error) {
    if (AdviceFor(std::string_view(error.what())).code != ExitCode::kRefused) throw;
    const SplitPath split = Split(path);
    const std::string folder = RequireFolder(listings.From(), split.folder);
    if (folder == split.folder || listings.Find(folder + "\\" + split.name)) throw;
    return std::nullopt;
  }
}

// Deletes a partial upload, so that nobody takes it for the whole file.
void TakeBack(Context& context, Camera& camera, const std::string& path) {
  bool deleted = false;
  try {
    deleted = camera.DeleteFile(path.c_str());
  } catch (const CameraError&) {
    // Ignored: the caller reports the error that stopped the upload.
  }
  if (!deleted) {
    context.reporter.Note("The camera may hold an unfinished " + ShownPath(path) +
                          "; delete it before you send it again.");
  }
}

}  // namespace

CameraDirent FileEntry(Camera& camera, const std::string& path) {
  KnownListings listings(camera);
  return FileEntry(listings, path);
}

CameraDirent FileEntry(KnownListings& listings, const std::string& path) {
  const auto entry = EntryIn(listings, path);
  if (!entry) {
    RequireFolder(listings.From(), Split(path).folder);
    throw Failed("There is no file " + ShownPath(path) + " on the camera; `kelva ls " + ShownPath(Split(path).folder) +
                 "` shows what is there.");
  }
  if ((entry->attributes & kelva::kAttributeDirectory) != 0) {
    throw Failed(ShownPath(path) + " is a folder; name a file in it (`kelva ls` shows them).");
  }
  return *entry;
}

RemoteFile::RemoteFile(Context& context, boost::shared_ptr<Camera> camera, std::string path,
                       std::optional<unsigned long long> known)
    : context_(context), path_(std::move(path)) {
  unsigned long long listed = 0;
  // A log may grow between the listing and the selection, so both are asked once more when they differ.
  for (int attempt = 0; attempt < 2; ++attempt) {
    context.stop.Check();
    reader_.reset();
    listed = known ? *std::exchange(known, std::nullopt) : SizeOf(FileEntry(*camera, path_));
    if (listed == 0) return;
    reader_.emplace(camera, path_);
    if (reader_->Size() == listed) return;
  }
  throw Failed("The camera lists " + ShownPath(path_) + " with " + Counted(listed, "byte") + " but announces " +
               std::to_string(reader_->Size()) + ", twice; nothing was read, try again when the file is at rest.");
}

void RemoteFile::Read(const Take& take) {
  Progress progress(context_.reporter, context_.stop, Split(path_).name, Size());
  Read(progress, 0, take);
}

void RemoteFile::Read(Progress& progress, unsigned long long before, const Take& take) {
  if (!reader_) return;
  std::vector<char> piece(kPiece);
  for (std::size_t count = piece.size(); count == piece.size();) {
    progress.At(before + reader_->Position());
    count = reader_->ReadOn(piece);
    take(std::span(piece).first(count));
    LetOthers(context_, *reader_, std::span(piece).first(count));
  }
}

std::string Sha1OfRemote(kelva::FileReader& reader, const std::function<void(std::size_t)>& came) {
  std::vector<char> piece(4 * kPiece);
  Sha1Sum sum;
  for (std::uint64_t at = 0; at < reader.Size();) {
    const std::size_t count = reader.Read(at, piece);
    sum.Add(std::span(piece).first(count));
    at += count;
    came(count);
  }
  return sum.Take();
}

void WriteRemoteFile(Context& context, const boost::shared_ptr<Camera>& camera, const std::string& path,
                     std::uint32_t size, const kelva::ByteSource& source) {
  Sha1Sum sent;
  HoldForLong(context);
  try {
    Progress progress(context.reporter, context.stop, Split(path).name, size);
    const auto fill = [&](std::span<char> chunk) {
      source(chunk);
      sent.Add(chunk);
    };
    kelva::WriteFile(*camera, path, size, fill, Progress::Callback, &progress);
  } catch (...) {
    TakeBack(context, *camera, path);
    throw;
  }
  context.Doing("read back " + ShownPath(path));
  LetOthers(context);
  RemoteFile back(context, camera, path);
  Sha1Sum arrived;
  back.Read([&](std::span<const char> bytes) { arrived.Add(bytes); });
  if (back.Size() != size || arrived.Take() != sent.Take()) {
    throw Failed("The camera now holds something else in " + ShownPath(path) +
                 " than was sent; delete it and send it again.");
  }
}

void RemoteDeletions::Renew() {
  before_.Forget();
  after_.Forget();
}

void RemoteDeletions::Delete(const std::string& path) {
  FileEntry(before_, path);
  if (!before_.From().DeleteFile(path.c_str())) {
    throw Failure(ExitCode::kRefused, "The camera refused to delete " + ShownPath(path) + ".");
  }
}

void RemoteDeletions::CheckGone(const std::string& path) {
  // Another file's name may differ in the case of letters alone.
  const auto was = before_.Find(path);
  const auto listed = after_.Find(path);
  if (listed && (!was || listed->name == was->name)) {
    throw Failure(ExitCode::kRefused, "The camera accepted the command but still lists " + ShownPath(path) +
                                          "; it may be write-protected.");
  }
}

}  // namespace apps
