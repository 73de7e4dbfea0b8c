#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "base/FileDescriptor.h"
#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"

// A camera on a cable as a folder: this kernel's own file system over its own USB and SCSI.

namespace {

namespace fs = std::filesystem;
using tap::Check;
using tap::Note;

constexpr const char* kSerial = "M1";
constexpr const char* kPlace = "/tmp/camera";
constexpr const char* kLarge = "DCIM/100ABCDE/IMG_0009.RAW";
constexpr std::size_t kLargeSize = 8'000'000;

bool IsMounted() {
  std::ifstream table("/proc/mounts");
  const std::string mounts{std::istreambuf_iterator<char>(table), {}};
  return mounts.find(kPlace) != std::string::npos;
}

void Mount() {
  const Outcome mount = RunProgram({"kelva", "mount", "--serial", kSerial, kPlace});
  Check(mount.code == 0 && IsMounted(), "kelva mount ended with " + std::to_string(mount.code) + ": " + mount.output);
}

void CompareWholeCard() {
  const Card card("mount");
  PutPictures(card);
  card.Put("DCIM/101ABCDE/IMG_0010.JPG", 65'537);
  card.Put("MISC/NOTE.TXT", 42);
  card.Put(kLarge, kLargeSize);
  const Plugged plugged(card.Inserted(kSerial));
  Mount();
  int files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(card.folder())) {
    const std::string path = fs::relative(entry.path(), card.folder());
    if (!entry.is_regular_file() || path.starts_with(".")) continue;
    const Outcome compare = RunProgram({"cmp", entry.path(), (fs::path(kPlace) / path).string()});
    Check(compare.code == 0, path + ": " + compare.output);
    ++files;
  }
  Note(std::to_string(files) + " files are equal");
  Check(files >= 6, "only " + std::to_string(files) + " files were compared");
  const Outcome end = RunProgram({"fusermount3", "-u", kPlace});
  Check(end.code == 0 && Eventually([] { return !IsMounted(); }), end.output);
  Check(Eventually([] { return !fs::exists(kPlace); }, 5), "the folder is still there");
}

/// The error of a read that the kernel cannot have at hand; 0 when it gave bytes.
int ErrorOfReadAt(const base::FileDescriptor& file, off_t offset) {
  std::array<char, 4096> buffer{};
  return ::pread(file.Get(), buffer.data(), buffer.size(), offset) < 0 ? errno : 0;
}

void PullTheCable() {
  const Card card("mount");
  card.Put(kLarge, kLargeSize);
  Plugged plugged(card.Inserted(kSerial));
  Mount();
  const base::FileDescriptor file(::open((fs::path(kPlace) / kLarge).c_str(), O_RDONLY | O_CLOEXEC));
  Check(file && ErrorOfReadAt(file, 0) == 0, "the camera's file cannot be read");
  plugged.Pull();
  const auto pulled = std::chrono::steady_clock::now();
  const int error = ErrorOfReadAt(file, kLargeSize / 2);
  const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - pulled;
  Note("a read after the pull ended after " + std::to_string(waited.count()) + " s: " + std::strerror(error));
  Check(error == ENODEV, "a read after the pull gave " + std::string(std::strerror(error)));
  Check(waited.count() < 1, "a read after the pull took longer than a second");
  Check(Eventually([] { return !IsMounted(); }, 1), "the mount is still there");
  Check(Eventually([] { return !fs::exists(kPlace); }, 5), "the folder is still there");
}

}  // namespace

std::vector<tap::Case> MountCases() {
  return {{"a mounted camera gives its files byte for byte", CompareWholeCard},
          {"a pulled cable ends the mount", PullTheCable}};
}
