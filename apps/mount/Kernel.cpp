// The kernel's side of the mounted folder: what it asks, and the end of the mount.
#include "apps/mount/Kernel.h"

#include <fcntl.h>
#include <fuse3/fuse_lowlevel.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/doctor/linux/Mounts.h"
#include "base/FileDescriptor.h"

namespace apps {
namespace {

FileSystem& Of(fuse_req_t request) {
  return *static_cast<FileSystem*>(fuse_req_userdata(request));
}

// After the end every request gets the same answer.
bool HasEnded(fuse_req_t request) {
  const int error = Of(request).Ended();
  if (error != 0) fuse_reply_err(request, error);
  return error != 0;
}

void Init(void* files, fuse_conn_info* connection) {
  constexpr unsigned kLargestRequest = 1 << 20;  // of reads too: libfuse derives their bound from this one
  connection->max_write = kLargestRequest;
  connection->max_readahead = kLargestRequest;
  connection->want |= connection->capable & (FUSE_CAP_ASYNC_READ | FUSE_CAP_PARALLEL_DIROPS | FUSE_CAP_ATOMIC_O_TRUNC);
  // A request to read is shorter than the way through a pipe.
  connection->want &= ~static_cast<unsigned>(FUSE_CAP_SPLICE_READ);
  // A read would list the folder again to see whether the file has changed; the next open does.
  connection->want &= ~static_cast<unsigned>(FUSE_CAP_AUTO_INVAL_DATA);
  if (!static_cast<FileSystem*>(files)->IsWritable()) {
    connection->want &= ~static_cast<unsigned>(FUSE_CAP_ATOMIC_O_TRUNC);
  }
}

void Lookup(fuse_req_t request, fuse_ino_t parent, const char* name) {
  if (!HasEnded(request)) Of(request).Lookup(request, parent, name);
}

void Forget(fuse_req_t request, fuse_ino_t number, std::uint64_t count) {
  Of(request).Forget(number, count);
  fuse_reply_none(request);
}

void ForgetMany(fuse_req_t request, std::size_t count, fuse_forget_data* forgotten) {
  for (std::size_t i = 0; i < count; ++i) Of(request).Forget(forgotten[i].ino, forgotten[i].nlookup);
  fuse_reply_none(request);
}

void GetAttributes(fuse_req_t request, fuse_ino_t number, fuse_file_info*) {
  if (!HasEnded(request)) Of(request).GetAttributes(request, number);
}

void Open(fuse_req_t request, fuse_ino_t number, fuse_file_info* info) {
  if (!HasEnded(request)) Of(request).Open(request, number, *info);
}

void Read(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset, fuse_file_info*) {
  if (!HasEnded(request)) Of(request).Read(request, number, static_cast<std::uint64_t>(offset), size);
}

void Close(fuse_req_t request, fuse_ino_t number, fuse_file_info* info) {
  Of(request).Close(request, number, *info);
}

void OpenFolder(fuse_req_t request, fuse_ino_t number, fuse_file_info* info) {
  if (!HasEnded(request)) Of(request).OpenFolder(request, number, *info);
}

void ReadFolder(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset, fuse_file_info* info) {
  if (HasEnded(request)) return;
  Of(request).ReadFolder(request, number, static_cast<std::uint64_t>(offset), size, *info, false);
}

void ReadFolderPlus(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset, fuse_file_info* info) {
  if (HasEnded(request)) return;
  Of(request).ReadFolder(request, number, static_cast<std::uint64_t>(offset), size, *info, true);
}

void CloseFolder(fuse_req_t request, fuse_ino_t, fuse_file_info* info) {
  FileSystem::CloseFolder(request, *info);
}

void SetAttributes(fuse_req_t request, fuse_ino_t number, struct stat* wanted, int which, fuse_file_info*) {
  if (!HasEnded(request)) Of(request).SetAttributes(request, number, *wanted, which);
}

void Create(fuse_req_t request, fuse_ino_t parent, const char* name, mode_t, fuse_file_info* info) {
  if (!HasEnded(request)) Of(request).Create(request, parent, name, *info);
}

void Write(fuse_req_t request, fuse_ino_t number, const char* bytes, std::size_t size, off_t offset, fuse_file_info*) {
  if (!HasEnded(request)) Of(request).Write(request, number, static_cast<std::uint64_t>(offset), {bytes, size});
}

void Flush(fuse_req_t request, fuse_ino_t number, fuse_file_info*) {
  if (!HasEnded(request)) Of(request).Flush(request, number);
}

void Remove(fuse_req_t request, fuse_ino_t parent, const char* name) {
  if (!HasEnded(request)) Of(request).Remove(request, parent, name);
}

// A camera has no commands for folders.
void MakeFolder(fuse_req_t request, fuse_ino_t, const char*, mode_t) {
  fuse_reply_err(request, EPERM);
}

void RemoveFolder(fuse_req_t request, fuse_ino_t, const char*) {
  fuse_reply_err(request, EPERM);
}

// A camera has no command for it. With this answer mv and file managers copy the file and delete the old one, as between
// two disks.
void Rename(fuse_req_t request, fuse_ino_t, const char*, fuse_ino_t, const char*, unsigned) {
  fuse_reply_err(request, EXDEV);
}

fuse_lowlevel_ops Operations(bool writable) {
  fuse_lowlevel_ops all{};
  all.init = Init;
  all.lookup = Lookup;
  all.forget = Forget;
  all.forget_multi = ForgetMany;
  all.getattr = GetAttributes;
  all.open = Open;
  all.read = Read;
  all.release = Close;
  all.opendir = OpenFolder;
  all.readdir = ReadFolder;
  all.readdirplus = ReadFolderPlus;
  all.releasedir = CloseFolder;
  if (!writable) return all;  // the kernel answers the rest
  all.setattr = SetAttributes;
  all.create = Create;
  all.write = Write;
  all.flush = Flush;
  all.unlink = Remove;
  all.mkdir = MakeFolder;
  all.rmdir = RemoveFolder;
  all.rename = Rename;
  return all;
}

// After a lazy unmount: a camera that is silent for so long hangs, and whoever has its files open is answered for so long.
constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kLastWords{500};
constexpr std::int64_t kLook = 100;

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

void Kernel::Freed::operator()(fuse_session* session) const {
  fuse_session_destroy(session);
}

Kernel::Kernel(FileSystem& files, const std::string& source) : files_(files) {
  std::string options = "-osubtype=kelva,default_permissions,fsname=" + source;
  if (!files.IsWritable()) options += ",ro";
  std::string name = "kelva-mount";
  std::array<char*, 3> words = {name.data(), options.data(), nullptr};
  fuse_args arguments = FUSE_ARGS_INIT(2, words.data());
  const fuse_lowlevel_ops operations = Operations(files.IsWritable());
  session_.reset(fuse_session_new(&arguments, &operations, sizeof(operations), &files));
  fuse_opt_free_args(&arguments);
  if (!session_) {
    throw Failure(ExitCode::kFailed, "libfuse does not take the options of this mount; install its version 3.");
  }
}

Kernel::~Kernel() {
  Unmount();
}

void Kernel::Mount(const std::string& path) {
  if (fuse_session_mount(session_.get(), path.c_str()) != 0) {
    throw Failure(ExitCode::kFailed, "The system refused to mount the camera on " + Printable(path) +
                                         "; see whether the package fuse3 is installed and /dev/fuse may be opened.");
  }
  mounted_ = true;
  path_ = path;
}

bool Kernel::IsShown() const {
  const auto mounts = doctor::Mounts();
  return std::any_of(mounts.begin(), mounts.end(), [this](const auto& mount) { return mount.path == path_; });
}

// For the next poll, in milliseconds: -1 without an end, 0 when Serve is over.
std::int64_t Kernel::TimeLeft(bool isShown) {
  if (!isShown && files_.Ended() == 0 && files_.Silence() > kPatience) {
    files_.End(ENODEV);
    Leave(kLastWords);
  }
  const std::int64_t until = until_.load();
  if (until != 0) return std::max<std::int64_t>(until - Now(), 0);
  return isShown ? -1 : kLook;
}

void Kernel::Serve() {
  const base::FileDescriptor mounts(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
  bool isShown = true;
  fuse_buf buffer{};
  while (fuse_session_exited(session_.get()) == 0) {
    const std::int64_t left = TimeLeft(isShown);
    if (left == 0) break;
    std::array<pollfd, 3> watched{{{fuse_session_fd(session_.get()), POLLIN, 0},
                                   {wakeUp_.Descriptor(), POLLIN, 0},
                                   {isShown ? mounts.Get() : -1, POLLPRI, 0}}};
    ::poll(watched.data(), watched.size(), static_cast<int>(left));
    if (watched[2].revents != 0) isShown = IsShown();
    if (watched[1].revents != 0) {
      wakeUp_.Clear();
      files_.Answer();
    }
    if (watched[0].revents == 0) continue;
    const int count = fuse_session_receive_buf(session_.get(), &buffer);
    if (count == -EINTR || count == -EAGAIN) continue;
    if (count <= 0) {
      isOver_ = true;  // unmounted, and nobody has a file open
      break;
    }
    fuse_session_process_buf(session_.get(), &buffer);
  }
  std::free(buffer.mem);  // NOLINT: libfuse allocated it
}

void Kernel::Leave(std::chrono::milliseconds patience) {
  until_.store(Now() + patience.count());
  wakeUp_.Signal();
}

void Kernel::Unmount() {
  // libfuse looks at the connection first. Another mount may be there by now while this one is still used.
  if (!mounted_ || (wasUnmounted_ && !isOver_)) return;
  mounted_ = false;
  fuse_session_unmount(session_.get());
}

}  // namespace apps
