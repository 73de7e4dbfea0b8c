// The machine of a Mac without cameras: a memory disk that hdiutil attaches is a service, which ends when it is detached.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <thread>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

constexpr std::int64_t kSectorBytes = 512;
/// A size that no other disk of the machine has, so that the suite sees its own disks alone.
constexpr std::int64_t kSectors = 4242;
constexpr std::chrono::seconds kPatience{20};
/// The kernel tells those who wait for a match a moment after a search finds it.
constexpr std::chrono::milliseconds kSettles{20};

/// The class of a disk's service; another can be named where a system has none of this name.
const char* DiskClass() {
  const char* named = std::getenv("KELVA_CONFORMANCE_CLASS");
  return named != nullptr ? named : "IOMedia";
}

/// The serial numbers of the disks of this process, by the name of the disk. The system uses a name again when its disk has gone.
std::map<std::string, std::string>& Serials() {
  static std::map<std::string, std::string> serials;
  return serials;
}

/// Runs hdiutil and returns its first line.
std::string RunHdiutil(const std::string& arguments) {
  const std::string command = "hdiutil " + arguments;
  std::FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) throw std::runtime_error("\"" + command + "\" could not be started.");
  std::string text;
  for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output)) text.push_back(static_cast<char>(c));
  if (pclose(output) != 0) throw std::runtime_error("\"" + command + "\" failed; its reason is above.");
  return text.substr(0, text.find('\n'));
}

/// "disk4" of hdiutil's answer "/dev/disk4", blanks, and nothing else of use.
std::string DiskName(const std::string& line) {
  constexpr std::string_view kFolder = "/dev/";
  if (!line.starts_with(kFolder)) throw std::runtime_error("hdiutil attach named no device: \"" + line + "\".");
  return line.substr(kFolder.size(), line.find_first_of(" \t") - kFolder.size());
}

bool IsThere(const std::string& disk) {
  for (const Object& service : Find(MatchingCameras())) {
    if (TextProperty(service, "BSD Name") == disk) return true;
  }
  return false;
}

void WaitUntil(const std::string& disk, bool isThere) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (IsThere(disk) != isThere) {
    if (std::chrono::steady_clock::now() > end) {
      throw std::runtime_error("The registry did not follow hdiutil: " + disk +
                               (isThere ? " is missing." : " is still there."));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::this_thread::sleep_for(kSettles);
}

class DiskImageMachine final : public Machine {
 public:
  ~DiskImageMachine() override {
    while (!disks_.empty()) Unplug(disks_.begin()->first);
  }

  int Plug(const Camera& camera) override {
    const std::string disk = DiskName(RunHdiutil("attach -nomount ram://" + std::to_string(kSectors)));
    disks_[next_] = disk;
    Serials()[disk] = camera.serial;
    WaitUntil(disk, true);
    return next_++;
  }

  void Unplug(int camera) override {
    const std::string disk = disks_.at(camera);
    disks_.erase(camera);
    RunHdiutil("detach " + disk);
    WaitUntil(disk, false);
  }

  void Announce(int, std::uint32_t) override { throw std::logic_error("A disk's driver sends nothing on request."); }

  /// The frameworks count nothing that a program could ask for.
  std::string StillHeld() const override { return {}; }

 private:
  std::map<int, std::string> disks_;
  int next_ = 1;
};

}  // namespace

std::unique_ptr<Machine> MakeMachine() {
  return std::make_unique<DiskImageMachine>();
}

CFMutableDictionaryRef MatchingCameras() {
  const CFMutableDictionaryRef matching = IOServiceMatching(DiskClass());
  const Owned<CFMutableDictionaryRef> properties(CFDictionaryCreateMutable(
      kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  const std::int64_t bytes = kSectors * kSectorBytes;
  const Owned<CFNumberRef> size(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &bytes));
  CFDictionarySetValue(properties.Get(), CFSTR("Size"), size.Get());
  CFDictionarySetValue(matching, CFSTR(kIOPropertyMatchKey), properties.Get());
  return matching;
}

std::string SerialOf(io_service_t service) {
  IOObjectRetain(service);
  const auto serial = Serials().find(TextProperty(Object(service), "BSD Name"));
  return serial != Serials().end() ? serial->second : "(none)";
}

}  // namespace conformance
