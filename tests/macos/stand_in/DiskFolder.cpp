// Stands in for a Mac's registry of disks: each file of a folder, which the other hdiutil fills, is a disk's service.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "darwin/registry/DefaultSource.h"

namespace {

namespace fs = std::filesystem;

/// The folder, for as long as the program runs; a death test's process takes its parent's. hdiutil is looked for beside this
/// file first.
class Folder {
 public:
  Folder() {
    if (const char* parents = std::getenv("KELVA_DISK_FOLDER")) {
      path_ = parents;
      return;
    }
    std::string name = fs::temp_directory_path() / "kelva-disks.XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("There is no room for a temporary folder.");
    path_ = name;
    isOurs_ = true;
    setenv("KELVA_DISK_FOLDER", name.c_str(), 1);
    const char* before = std::getenv("PATH");
    const std::string path = std::string(KELVA_STAND_INS) + ":" + (before != nullptr ? before : "/bin:/usr/bin");
    setenv("PATH", path.c_str(), 1);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    if (isOurs_) fs::remove_all(path_);
  }

  /// The disks that are attached, by name, each with the number of its bytes.
  std::map<std::string, std::uint64_t> Disks() const {
    std::map<std::string, std::uint64_t> disks;
    for (const auto& file : fs::directory_iterator(path_)) {
      const std::string name = file.path().filename();
      std::uint64_t bytes = 0;
      if (name.starts_with("disk") && std::ifstream(file.path()) >> bytes) disks[name] = bytes;
    }
    return disks;
  }

 private:
  fs::path path_;
  bool isOurs_ = false;
};

const Folder theFolder;

class DiskSource final : public darwin::RegistrySource {
 public:
  void Start(darwin::Registry& registry) override { Dispatch(registry); }
  int Descriptor() const override { return -1; }
  int TimeoutMs() const override { return 10; }

  void Dispatch(darwin::Registry& registry) override {
    const std::map<std::string, std::uint64_t> disks = theFolder.Disks();
    for (auto entry = entries_.begin(); entry != entries_.end();) {
      if (disks.contains(entry->first)) {
        ++entry;
        continue;
      }
      registry.Terminate(entry->second);
      entry = entries_.erase(entry);
    }
    for (const auto& [name, bytes] : disks) {
      if (!entries_.contains(name)) entries_[name] = Publish(registry, name, bytes);
    }
  }

 private:
  static darwin::EntryId Publish(darwin::Registry& registry, const std::string& name, std::uint64_t bytes) {
    const darwin::EntryId disk = registry.Add(
        registry.Root(),
        {{"IOMedia", "IOStorage", "IOService", "IORegistryEntry"}, {{"BSD Name", name}, {"Size", bytes}}, {}});
    registry.RegisterService(disk);
    return disk;
  }

  std::map<std::string, darwin::EntryId> entries_;
};

}  // namespace

namespace darwin {

std::unique_ptr<RegistrySource> DefaultSource() {
  return std::make_unique<DiskSource>();
}

}  // namespace darwin
