// Lists a folder within a bound of memory.
#include "apps/camera/FolderListing.h"

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "base/Ascii.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/ChunkedRead.h"
#include "src/wifi/Command.h"
#include "src/wifi/DirectoryListing.h"

namespace apps {
namespace {

// What every transport of the library asks for at once.
constexpr int kListingChunk = 65'536;

/// Collects a listing, and refuses it while it arrives.
class BoundedListing final : public kelva::ChunkSink {
 public:
  explicit BoundedListing(const std::string& path) : path_(path) {}

  void Append(std::span<const char> bytes) override {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    if (bytes_.size() <= kLargestListing) return;
    throw CameraError("the listing of " + ShownPath(path_) + " goes on after " + std::to_string(kLargestListing >> 20) +
                      " MiB");
  }
  const std::vector<char>& Bytes() const { return bytes_; }

 private:
  const std::string& path_;
  std::vector<char> bytes_;
};

}  // namespace

std::vector<CameraDirent> ListFolder(Camera& camera, const std::string& path) {
  camera.ClearCancel(true);
  const _VscCdb select = kelva::Block(kelva::Operation::kSelect, kelva::select::kDirectory);
  if (!kelva::SendText(camera, select, path.c_str(), true)) return {};
  BoundedListing listing(path);
  const kelva::ChunkedRead read{kelva::read_chunk::kSelected, true, kelva::ReadProgress::None()};
  if (!kelva::ReadChunks(camera, kListingChunk, read, listing)) return {};
  return kelva::DecodeListing(listing.Bytes());
}

std::optional<CameraDirent> KnownListings::Find(std::string_view cameraPath) {
  const SplitPath path = Split(cameraPath);
  const Folder& folder = Read(path.folder);
  const auto [first, last] = folder.byName.equal_range(base::Lower(path.name));
  if (first == last) return std::nullopt;
  const auto exact = [&](const auto& place) { return folder.entries[place.second].name == path.name; };
  const auto found = std::find_if(first, last, exact);
  return folder.entries[(found == last ? first : found)->second];
}

const KnownListings::Folder& KnownListings::Read(const std::string& path) {
  if (const auto known = folders_.find(path); known != folders_.end()) return known->second;
  constexpr std::size_t kMostFolders = 8;
  if (folders_.size() == kMostFolders) folders_.clear();
  Folder folder;
  folder.entries = ListFolder(camera_, path);
  for (std::size_t i = 0; i < folder.entries.size(); ++i) {
    if (IsNamed(folder.entries[i])) folder.byName.emplace(base::Lower(folder.entries[i].name), i);
  }
  return folders_.emplace(path, std::move(folder)).first->second;
}

}  // namespace apps
