// Limits a file to those who may write into its folder.
#include "apps/files/FolderWriters.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/Bytes.h"
#include "platform/Files.h"

namespace apps {
namespace {

constexpr std::uint32_t kVersion = 2;
constexpr std::size_t kHead = 4;
constexpr std::size_t kEntry = 8;  // tag and permissions in 16 bits each, and a user or group
constexpr std::uint16_t kReadWrite = 6;
constexpr std::uint16_t kWrite = 2;

// Tags. Those of named users and groups are treated as the owning group is.
constexpr std::uint16_t kAclOwner = 1;
constexpr std::uint16_t kAclOwningGroup = 4;
constexpr std::uint16_t kAclMask = 0x10;
constexpr std::uint16_t kAclOthers = 0x20;

constexpr mode_t kOwnerAlone = S_IRUSR | S_IWUSR;

/// Reading and writing for each class of users that may write into the folder.
mode_t ModeFor(const struct stat& folder) {
  mode_t mode = kOwnerAlone;
  if ((folder.st_mode & S_IWGRP) != 0) mode |= S_IRGRP | S_IWGRP;
  if ((folder.st_mode & S_IWOTH) != 0) mode |= S_IROTH | S_IWOTH;
  return mode;
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::uint16_t MaskOf(std::span<const std::uint8_t> acl) {
  for (std::size_t at = kHead; at < acl.size(); at += kEntry) {
    if (base::Load<std::uint16_t>(acl, at) == kAclMask) return base::Load<std::uint16_t>(acl, at + 2);
  }
  return kReadWrite;
}

/// What an entry of the folder becomes in the file's list.
std::uint16_t PermissionsFor(std::uint16_t tag, std::uint16_t inFolder, std::uint16_t mask, bool sameGroup) {
  if (tag == kAclOwner || tag == kAclMask) return kReadWrite;
  if (tag == kAclOwningGroup && !sameGroup) return 0;
  const int effective = tag == kAclOthers ? inFolder : inFolder & mask;
  return (effective & kWrite) != 0 ? kReadWrite : std::uint16_t{0};
}

}  // namespace

std::string AclForWriters(std::string_view folder, bool sameGroup) {
  const std::span<const std::uint8_t> bytes = BytesOf(folder);
  if (bytes.size() < kHead || bytes.size() % kEntry != kHead || base::Load<std::uint32_t>(bytes, 0) != kVersion) {
    return "";
  }
  const std::uint16_t mask = MaskOf(bytes);
  base::Bytes acl(bytes.begin(), bytes.end());
  for (std::size_t at = kHead; at < acl.size(); at += kEntry) {
    const auto tag = base::Load<std::uint16_t>(bytes, at);
    const auto inFolder = base::Load<std::uint16_t>(bytes, at + 2);
    base::Store(std::span(acl), at + 2, PermissionsFor(tag, inFolder, mask, sameGroup));
  }
  return {acl.begin(), acl.end()};
}

void LimitToWriters(int folder, const char* name) {
  struct stat status {};
  if (::fstat(folder, &status) != 0) return;
  const std::string acl = platform::AccessListOf(folder);
  const mode_t mode = ModeFor(status);
  const bool alone = mode == kOwnerAlone && acl.empty();
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  const bool sameGroup = alone || ::fchownat(folder, name, kSameOwner, status.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
  const std::string forFile = acl.empty() ? "" : AclForWriters(acl, sameGroup);
  if (!forFile.empty() && platform::SetAccessList(folder, name, forFile)) return;
  // The folder's default list may have given the file one, for people who may only read here.
  platform::RemoveAccessList(folder, name);
  const mode_t limit = acl.empty() && sameGroup ? mode : kOwnerAlone;
  const bool limited = ::fchmodat(folder, name, limit, AT_SYMLINK_NOFOLLOW) == 0;
  static_cast<void>(limited);
}

}  // namespace apps
