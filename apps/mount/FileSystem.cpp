// Answers the kernel's requests for names, attributes and folders.
#include "apps/mount/FileSystem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "apps/camera/FolderListing.h"
#include "apps/import/TakenTime.h"
#include "apps/mount/Errors.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

// A listing that took long is believed longer, so that a large folder is not listed without end.
constexpr auto kListingValid = 1s;
constexpr int kTimesItsCost = 10;
constexpr std::size_t kMostListings = 8;

/// A folder that a program has open: the listing of that moment, so that its places hold.
struct OpenFolder {
  std::shared_ptr<const ShownFolder> folder;
};

OpenFolder* FolderOf(const fuse_file_info& info) {
  return reinterpret_cast<OpenFolder*>(info.fh);  // NOLINT: the kernel hands the number back
}

// What a folder tells of an entry without its attributes.
struct stat TypeOf(const ShownEntry& entry) {
  struct stat status {};
  constexpr std::uint64_t kUnknown = 0xFFFFFFFF;
  status.st_ino = kUnknown;
  status.st_mode = entry.isFolder ? S_IFDIR : S_IFREG;
  return status;
}

// Of files without a date: the same in each mount, so that nobody takes them for changed. The first day that archives and
// memory cards can write down.
std::time_t Undated() {
  return MomentHere(std::chrono::local_days(std::chrono::year(1980) / 1 / 1));
}

}  // namespace

FileSystem::FileSystem(bool writable, Events events)
    : writable_(writable), events_(std::move(events)), undated_(Undated()) {}

struct stat FileSystem::AttributesOf(std::uint64_t number, const Node& node) const {
  struct stat status {};
  status.st_ino = number;
  const mode_t write = writable_ ? 0200 : 0;
  status.st_mode = node.isFolder ? S_IFDIR | 0555 | write : S_IFREG | 0444 | write;
  status.st_nlink = node.isFolder ? 2 : 1;
  status.st_uid = ::getuid();
  status.st_gid = ::getgid();
  status.st_size = static_cast<off_t>(node.size);
  constexpr std::uint64_t kBlock = 512;
  status.st_blocks = static_cast<blkcnt_t>((node.size + kBlock - 1) / kBlock);
  status.st_blksize = static_cast<blksize_t>(Pieces::kSize);
  status.st_mtim.tv_sec = node.changed != 0 ? node.changed : undated_;
  status.st_ctim = status.st_atim = status.st_mtim;
  return status;
}

fuse_entry_param FileSystem::EntryOf(std::uint64_t number, const Node& node) const {
  fuse_entry_param entry{};
  entry.ino = number;
  entry.attr = AttributesOf(number, node);
  entry.attr_timeout = entry.entry_timeout = kSecondsValid;
  return entry;
}

FileSystem::Folder FileSystem::Fresh(std::uint64_t number) {
  const std::scoped_lock lock(mutex_);
  const auto found = listings_.find(number);
  if (found == listings_.end() || Clock::now() > found->second.came + found->second.valid) return nullptr;
  return found->second.folder;
}

// On the camera's thread.
FileSystem::Folder FileSystem::Current(std::uint64_t number) {
  if (Folder known = Fresh(number)) return known;
  const std::string path = PathOf(number);
  const auto start = Clock::now();
  reading_->Forget();
  auto folder = std::make_shared<ShownFolder>(ListFolder(**session_, path));
  times_.Fill(**session_, path, *folder);
  const std::scoped_lock lock(mutex_);
  if (listings_.size() >= kMostListings && listings_.count(number) == 0) {
    const auto older = [](const auto& a, const auto& b) { return a.second.came < b.second.came; };
    listings_.erase(std::min_element(listings_.begin(), listings_.end(), older));
  }
  const auto now = Clock::now();
  const auto valid = std::max<Clock::duration>(kListingValid, kTimesItsCost * (now - start));
  listings_[number] = Listing{folder, now, valid};
  return folder;
}

std::string FileSystem::PathOf(std::uint64_t number) {
  const std::scoped_lock lock(mutex_);
  std::string path = nodes_.PathOf(number);
  if (path.empty()) throw SystemError(ESTALE);
  return path;
}

void FileSystem::Put(Pending::Ticket ticket, std::uint64_t file, std::uint64_t offset, std::function<void()> run) {
  work_.Put({file, offset, std::move(run), [this, ticket](int error) { pending_.Fail(ticket, error); }});
}

void FileSystem::WithFolder(fuse_req_t request, std::uint64_t number,
                            std::function<void(Pending::Ticket, const Folder& folder)> then) {
  const Pending::Ticket ticket = pending_.Add(request);
  if (const Folder known = Fresh(number)) return then(ticket, known);
  Put(ticket, 0, 0, [this, ticket, number, then = std::move(then)] { then(ticket, Current(number)); });
}

// Under the lock. A file that is being written has the size that it has here.
std::uint64_t FileSystem::Tell(std::uint64_t parent, const ShownEntry& entry, std::time_t changed) {
  const std::uint64_t number = nodes_.Tell(parent, entry);
  Node& node = *nodes_.Find(number);
  node.changed = changed;
  if (const auto upload = uploads_.find(number); upload != uploads_.end()) node.size = upload->second->spool.Size();
  return number;
}

void FileSystem::Told(Pending::Ticket ticket, std::uint64_t parent, const ShownEntry& entry, std::time_t changed) {
  const auto request = pending_.Take(ticket);
  if (!request) return;
  std::uint64_t number = 0;
  fuse_entry_param answer{};
  {
    const std::scoped_lock lock(mutex_);
    number = Tell(parent, entry, changed);
    answer = EntryOf(number, *nodes_.Find(number));
  }
  // The kernel does not count what it did not get.
  if (fuse_reply_entry(*request, &answer) != 0) Forget(number, 1);
}

void FileSystem::Lookup(fuse_req_t request, std::uint64_t parent, const std::string& name) {
  WithFolder(request, parent, [this, parent, name](Pending::Ticket ticket, const Folder& folder) {
    if (const ShownEntry* entry = folder->Find(name)) return Found(ticket, parent, folder, *entry);
    // A new file is listed when it is sent.
    if (UploadAt(parent, name)) return Told(ticket, parent, {name, "", 0, 0, false}, 0);
    pending_.Fail(ticket, ENOENT);
  });
}

void FileSystem::Forget(std::uint64_t number, std::uint64_t count) {
  const std::scoped_lock lock(mutex_);
  nodes_.Forget(number, count);
  if (nodes_.Find(number) != nullptr) return;
  pieces_.Drop(number);
  streams_.erase(number);
  listings_.erase(number);
}

// As the last lookup had them. The kernel looks a path up anew when it does not believe its name any longer; what is asked for
// here is an open file, of which each read beyond the end would list the folder.
void FileSystem::GetAttributes(fuse_req_t request, std::uint64_t number) {
  struct stat status {};
  {
    const std::scoped_lock lock(mutex_);
    const Node* node = nodes_.Find(number);
    if (node != nullptr && !node->isGone) status = AttributesOf(number, *node);
  }
  if (status.st_ino == 0) {
    fuse_reply_err(request, ENOENT);
  } else {
    fuse_reply_attr(request, &status, kSecondsValid);
  }
}

void FileSystem::OpenFolder(fuse_req_t request, std::uint64_t number, const fuse_file_info& info) {
  WithFolder(request, number, [this, info](Pending::Ticket ticket, const Folder& folder) {
    const auto waiting = pending_.Take(ticket);
    if (!waiting) return;
    auto open = std::make_unique<apps::OpenFolder>(apps::OpenFolder{folder});
    fuse_file_info answer = info;
    answer.fh = reinterpret_cast<std::uintptr_t>(open.get());
    if (fuse_reply_open(*waiting, &answer) == 0) static_cast<void>(open.release());
  });
}

void FileSystem::ReadFolder(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::size_t size,
                            const fuse_file_info& info, bool withAttributes) {
  const Folder folder = FolderOf(info)->folder;
  const std::vector<ShownEntry>& entries = folder->Entries();
  std::vector<char> answer(size);
  std::vector<std::uint64_t> told;
  std::size_t used = 0;
  const std::scoped_lock lock(mutex_);
  const std::string path = nodes_.PathOf(number);
  for (std::uint64_t at = offset; at < entries.size(); ++at) {
    const ShownEntry& entry = entries[at];
    const auto room = size - used;
    const auto next = static_cast<off_t>(at + 1);
    const char* name = entry.Shown().c_str();
    std::size_t needed = 0;
    std::uint64_t child = 0;
    if (withAttributes) {
      fuse_entry_param attributes{};
      attributes.attr = TypeOf(entry);
      // The kernel asks for the attributes of a picture whose date is not known when somebody wants them.
      if (const auto changed = TimeOf(path, *folder, entry)) {
        child = Tell(number, entry, *changed);
        attributes = EntryOf(child, *nodes_.Find(child));
      }
      needed = fuse_add_direntry_plus(request, answer.data() + used, room, name, &attributes, next);
    } else {
      const struct stat status = TypeOf(entry);
      needed = fuse_add_direntry(request, answer.data() + used, room, name, &status, next);
    }
    if (child != 0) told.push_back(child);
    if (needed > room) {
      if (child != 0) {
        nodes_.Forget(child, 1);
        told.pop_back();
      }
      break;
    }
    used += needed;
  }
  if (fuse_reply_buf(request, answer.data(), used) == 0) return;
  for (const std::uint64_t child : told) nodes_.Forget(child, 1);
}

void FileSystem::CloseFolder(fuse_req_t request, const fuse_file_info& info) {
  delete FolderOf(info);  // NOLINT: the kernel closes it once
  fuse_reply_err(request, 0);
}

void FileSystem::Changed(std::uint64_t folder) {
  const std::scoped_lock lock(mutex_);
  listings_.erase(folder);
}

}  // namespace apps
