// The folder on which a camera is mounted.
#include "apps/mount/Place.h"

#include <spawn.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/doctor/linux/Mounts.h"
#include "apps/files/TargetFolder.h"
#include "apps/mount/Source.h"
#include "platform/Process.h"

namespace apps {
namespace {

std::string Home() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && home[0] == '/') return home;
  throw Failure(ExitCode::kUsage,
                "There is no home folder (HOME is not set) for the camera; name a folder: kelva mount DIR.");
}

std::string Absolute(const std::string& path) {
  std::string absolute = std::filesystem::absolute(path).lexically_normal().string();
  while (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
  return absolute;
}

void RequireFree(const std::string& path) {
  const auto mounts = doctor::Mounts();
  const auto here = [&](const doctor::MountedCamera& mount) { return mount.path == path; };
  if (std::any_of(mounts.begin(), mounts.end(), here)) {
    throw Failure(ExitCode::kFailed, "A camera is mounted on " + Printable(path) +
                                         " already; `fusermount3 -u` with this folder ends that mount.");
  }
  std::error_code error;
  const bool empty = std::filesystem::is_empty(path, error);
  if (error) throw SystemFailure("mount the camera on " + Printable(path), error.value());
  if (!empty) {
    throw Failure(ExitCode::kFailed,
                  "There is something in " + Printable(path) + "; name an empty folder, or one that is missing.");
  }
}

}  // namespace

Place::Place(const std::optional<std::string>& named, const std::string& serial)
    : path_(Absolute(named ? *named : Home() + "/" + FolderNameOf(serial))) {
  std::error_code error;
  const auto status = std::filesystem::status(path_, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    TargetFolder::OpenOrMake(path_);
    isMade_ = true;
    return;
  }
  if (error) throw SystemFailure("mount the camera on " + Printable(path_), error.value());
  if (status.type() != std::filesystem::file_type::directory) {
    throw Failure(ExitCode::kFailed, Printable(path_) + " is no folder; a camera is mounted on an empty one.");
  }
  RequireFree(path_);
}

Place::~Place() {
  if (isMade_) ::rmdir(path_.c_str());
}

bool UnmountLazily(const std::string& path) {
  if (::umount2(path.c_str(), MNT_DETACH) == 0) return true;
  std::string program = "fusermount3";
  std::string options = "-uzq";
  std::string end = "--";
  std::string place = path;
  char* const words[] = {program.data(), options.data(), end.data(), place.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, program.c_str(), nullptr, nullptr, words, platform::Environment()) != 0) return false;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status == 0;
}

}  // namespace apps
