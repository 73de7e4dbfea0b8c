// Reads, writes and deletes one file on the camera, and checks what the library does not.

#include "apps/camera/RemoteFile.h"

#include "apps/camera/CameraPath.h"
#include "apps/camera/ReadLimit.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"

namespace apps {
namespace {

Failure Failed(const std::string& sentence) {
  return Failure(ExitCode::kFailed, sentence);
}

std::vector<char> ReadOnce(Context& context, Camera& camera, const std::string& path, unsigned long long size) {
  Progress progress(context.reporter, context.stop, Split(path).name, size);
  ReadLimit limit(ShownPath(path), size, Progress::Callback, progress);
  return camera.ReadFile(path.c_str(), ReadLimit::Check, &limit, true);
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
  const auto entry = FindEntry(camera, path);
  if (!entry) {
    throw Failed("There is no file " + ShownPath(path) + " on the camera; `kelva ls " + ShownPath(Split(path).folder) +
                 "` shows what is there.");
  }
  if ((entry->attributes & kelva::kAttributeDirectory) != 0) {
    throw Failed(ShownPath(path) + " is a folder; name a file in it (`kelva ls` shows them).");
  }
  return *entry;
}

std::vector<char> ReadRemoteFile(Context& context, Camera& camera, const std::string& path) {
  unsigned long long listed = 0;
  unsigned long long received = 0;
  // A log may grow between the listing and the read, so a file whose size differs is read once more.
  for (int attempt = 0; attempt < 2; ++attempt) {
    context.stop.Check();
    listed = SizeOf(FileEntry(camera, path));
    if (listed == 0) return {};
    std::vector<char> bytes = ReadOnce(context, camera, path, listed);
    if (bytes.size() == listed) return bytes;
    received = bytes.size();
  }
  throw Failed("The camera lists " + ShownPath(path) + " with " + std::to_string(listed) + " bytes but sent " +
               std::to_string(received) + ", twice; nothing was kept, repeat the command when the file is at rest.");
}

void WriteRemoteFile(Context& context, Camera& camera, const std::vector<char>& bytes, const std::string& path) {
  try {
    Progress progress(context.reporter, context.stop, Split(path).name, bytes.size());
    camera.WriteFile(path.c_str(), bytes.data(), static_cast<int>(bytes.size()), Progress::Callback, &progress);
  } catch (const Stopped&) {
    TakeBack(context, camera, path);
    throw;
  } catch (const CameraError&) {
    TakeBack(context, camera, path);
    throw;
  }
  context.Doing("read back " + ShownPath(path));
  if (ReadRemoteFile(context, camera, path) != bytes) {
    throw Failed("The camera now holds something else in " + ShownPath(path) +
                 " than was sent; delete it and send it again.");
  }
}

void DeleteRemoteFile(Camera& camera, const std::string& path) {
  FileEntry(camera, path);
  if (!camera.DeleteFile(path.c_str())) {
    throw Failure(ExitCode::kRefused, "The camera refused to delete " + ShownPath(path) + ".");
  }
  if (FindEntry(camera, path)) {
    throw Failure(ExitCode::kRefused, "The camera accepted the command but still lists " + ShownPath(path) +
                                          "; it may be write-protected.");
  }
}

}  // namespace apps
