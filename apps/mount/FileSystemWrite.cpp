// Answers the kernel's requests that change what is on the camera. A file is collected here and sent when it is closed.
#include <fcntl.h>
#include <fuse3/fuse_lowlevel.h>

#include <cerrno>
#include <utility>

#include "apps/camera/RemoteFile.h"
#include "apps/files/SafeName.h"
#include "apps/mount/Errors.h"
#include "apps/mount/FileSystem.h"

namespace apps {
namespace {

// In fuse_file_info::fh of a file: whether this opening counts in its upload.
constexpr std::uint64_t kCounted = 1;

bool Writes(const fuse_file_info& info) {
  return (info.flags & O_ACCMODE) != O_RDONLY;
}

}  // namespace

std::shared_ptr<FileSystem::Upload> FileSystem::UploadOf(std::uint64_t number) {
  const std::scoped_lock lock(mutex_);
  const auto found = uploads_.find(number);
  return found == uploads_.end() ? nullptr : found->second;
}

std::shared_ptr<FileSystem::Upload> FileSystem::UploadAt(std::uint64_t parent, const std::string& name) {
  const std::scoped_lock lock(mutex_);
  for (const auto& [number, upload] : uploads_) {
    const Node* node = nodes_.Find(number);
    if (node != nullptr && node->parent == parent && node->name == name && !upload->isRemoved) return upload;
  }
  return nullptr;
}

bool FileSystem::JoinUpload(std::uint64_t number) {
  const std::scoped_lock lock(mutex_);
  const auto found = uploads_.find(number);
  if (found == uploads_.end()) return false;
  ++found->second->opens;
  return true;
}

// Empty: whatever is in the file on the camera is written over.
void FileSystem::StartUpload(std::uint64_t number) {
  auto fresh = std::make_shared<Upload>();
  const std::scoped_lock lock(mutex_);
  auto& upload = uploads_[number];
  if (upload) {
    upload->spool.Resize(0);
    upload->isSent = upload->isRemoved = false;
    ++upload->opens;
  } else {
    upload = std::move(fresh);
  }
  if (Node* node = nodes_.Find(number)) node->size = 0;
  pieces_.Drop(number);
}

void FileSystem::Open(fuse_req_t request, std::uint64_t number, const fuse_file_info& info) {
  fuse_file_info answer = info;
  answer.fh = 0;
  try {
    if (Writes(info)) {
      if ((info.flags & O_TRUNC) == 0 && JoinUpload(number)) {
        // Two programs write one new file.
      } else if ((info.flags & O_TRUNC) != 0) {
        StartUpload(number);
      } else {
        throw SystemError(EOPNOTSUPP);  // a camera takes whole files
      }
      answer.fh = kCounted;
    }
    fuse_reply_open(request, &answer);
  } catch (const std::exception& error) {
    fuse_reply_err(request, ErrnoOf(error));
  }
}

void FileSystem::Create(fuse_req_t request, std::uint64_t parent, const std::string& name, const fuse_file_info& info) {
  if (SafeName(name) != name) {
    fuse_reply_err(request, EINVAL);  // it would be listed under another name
    return;
  }
  try {
    std::uint64_t number = 0;
    {
      const std::scoped_lock lock(mutex_);
      number = nodes_.Tell(parent, {name, "", 0, 0, false});
    }
    StartUpload(number);
    fuse_entry_param entry{};
    {
      const std::scoped_lock lock(mutex_);
      entry = EntryOf(number, *nodes_.Find(number));
    }
    fuse_file_info answer = info;
    answer.fh = kCounted;
    fuse_reply_create(request, &entry, &answer);
  } catch (const std::exception& error) {
    fuse_reply_err(request, ErrnoOf(error));
  }
}

void FileSystem::Write(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::span<const char> bytes) {
  const auto upload = UploadOf(number);
  if (!upload || offset + bytes.size() > kLargestFile) {
    fuse_reply_err(request, upload ? EFBIG : EBADF);
    return;
  }
  try {
    {
      const std::scoped_lock lock(mutex_);
      upload->spool.Write(offset, bytes);
      upload->isSent = false;
      upload->isWritten = true;
      if (Node* node = nodes_.Find(number)) node->size = upload->spool.Size();
    }
    fuse_reply_write(request, bytes.size());
  } catch (const std::exception& error) {
    fuse_reply_err(request, ErrnoOf(error));
  }
}

void FileSystem::SetAttributes(fuse_req_t request, std::uint64_t number, const struct stat& wanted, int which) {
  try {
    const auto upload = UploadOf(number);
    const bool resizes = (which & FUSE_SET_ATTR_SIZE) != 0;
    if (resizes && !upload) throw SystemError(EOPNOTSUPP);
    const auto size = static_cast<std::uint64_t>(wanted.st_size);
    if (resizes && size > kLargestFile) throw SystemError(EFBIG);
    struct stat status {};
    {
      const std::scoped_lock lock(mutex_);
      Node* node = nodes_.Find(number);
      if (node == nullptr) throw SystemError(ESTALE);
      if (resizes) {
        upload->spool.Resize(size);
        upload->isSent = false;
        node->size = size;
      }
      // A camera keeps neither times nor permissions; as on FAT, who sets them is not refused.
      status = AttributesOf(number, *node);
    }
    fuse_reply_attr(request, &status, kSecondsValid);
  } catch (const std::exception& error) {
    fuse_reply_err(request, ErrnoOf(error));
  }
}

void FileSystem::Flush(fuse_req_t request, std::uint64_t number) {
  const auto upload = UploadOf(number);
  const auto isDone = [&] {
    const std::scoped_lock lock(mutex_);
    return upload->isSent || !upload->isWritten;
  };
  if (!upload || isDone()) {
    fuse_reply_err(request, 0);
    return;
  }
  const Pending::Ticket ticket = pending_.Add(request);
  Put(ticket, 0, 0, [this, ticket, number, upload] {
    if (!upload->isRemoved) Send(number, *upload);
    pending_.Fail(ticket, 0);
  });
}

// On the camera's thread.
void FileSystem::Send(std::uint64_t number, Upload& upload) {
  const std::string path = PathOf(number);
  reading_->Forget();
  {
    const std::scoped_lock lock(mutex_);
    if (const Node* node = nodes_.Find(number)) listings_.erase(node->parent);
    pieces_.Drop(number);
  }
  std::uint64_t size = 0;
  {
    const std::scoped_lock lock(mutex_);
    size = upload.spool.Size();
    upload.isSent = true;
    exifTimes_.Forget(path, size);
  }
  std::uint64_t sent = 0;
  const auto source = [&](std::span<char> chunk) {
    Heard();
    upload.spool.Read(sent, chunk);
    sent += chunk.size();
  };
  try {
    WriteRemoteFile(*context_, session_->Pointer(), path, static_cast<std::uint32_t>(size), source);
  } catch (...) {
    const std::scoped_lock lock(mutex_);
    upload.isSent = false;
    if (Node* node = nodes_.Find(number)) node->isGone = true;
    throw;
  }
}

void FileSystem::Close(fuse_req_t request, std::uint64_t number, const fuse_file_info& info) {
  std::shared_ptr<Upload> unsent;
  if (info.fh == kCounted) {
    const std::scoped_lock lock(mutex_);
    const auto found = uploads_.find(number);
    if (found != uploads_.end() && --found->second->opens == 0) {
      if (!found->second->isSent && !found->second->isWritten) unsent = std::move(found->second);
      uploads_.erase(found);
    }
  }
  if (unsent) {
    Put(0, 0, 0, [this, number, unsent] {
      if (!unsent->isRemoved) Send(number, *unsent);
    });
  }
  fuse_reply_err(request, 0);
}

void FileSystem::Remove(fuse_req_t request, std::uint64_t parent, const std::string& name) {
  const Pending::Ticket ticket = pending_.Add(request);
  Put(ticket, 0, 0, [this, ticket, parent, name] {
    const Folder folder = Current(parent);
    const ShownEntry* entry = folder->Find(name);
    if (entry != nullptr && entry->isFolder) throw SystemError(EISDIR);
    const auto upload = UploadAt(parent, entry != nullptr ? entry->name : name);
    if (entry == nullptr && !upload) throw SystemError(ENOENT);
    if (entry != nullptr) RemoveNow(parent, entry->name);
    // Whoever has the file open may go on writing; what is written goes nowhere.
    if (upload) upload->isRemoved = true;
    pending_.Fail(ticket, 0);
  });
}

void FileSystem::RemoveNow(std::uint64_t parent, const std::string& name) {
  const std::string path = PathOf(parent) + "\\" + name;
  reading_->Forget();
  Changed(parent);
  RemoteDeletions deletions(**session_);
  deletions.Delete(path);
  deletions.CheckGone(path);
}

}  // namespace apps
