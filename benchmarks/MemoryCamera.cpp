#include "benchmarks/MemoryCamera.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "src/wifi/VscRegister.h"

namespace bench {

namespace {

constexpr int kChunkSize = 65536;
constexpr int kProgressInterval = 262144;
template <typename Key>
const std::string* Find(const std::map<Key, std::string>& answers, const Key& key) {
  const auto found = answers.find(key);
  return found == answers.end() ? nullptr : &found->second;
}

}  // namespace

MemoryCamera::MemoryCamera() : Camera(kChunkSize, kProgressInterval) {}

void MemoryCamera::PutFile(const std::string& path, std::string bytes) {
  files_[path] = std::move(bytes);
}

void MemoryCamera::PutListing(const std::string& path, std::string bytes) {
  listings_[path] = std::move(bytes);
}

void MemoryCamera::PutDataSet(unsigned char subCode, std::string bytes) {
  dataSets_[subCode] = std::move(bytes);
}

bool MemoryCamera::Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) {
  switch (static_cast<kelva::Operation>(cdb.bytes[0])) {
    case kelva::Operation::kSelect:
      return Select(cdb.bytes[2], buffer);
    case kelva::Operation::kQuery:
      AnswerSize(size, buffer);
      return selected_ != nullptr;
    case kelva::Operation::kReadChunk:
      AnswerChunk(cdb, size, buffer);
      return true;
    default:
      return false;
  }
}

bool MemoryCamera::Select(unsigned char subCode, const char* path) {
  if (subCode == kelva::select::kFile) {
    selected_ = Find(files_, std::string(path));
  } else if (subCode == kelva::select::kDirectory) {
    selected_ = Find(listings_, std::string(path));
  } else {
    selected_ = Find(dataSets_, subCode);
  }
  return selected_ != nullptr;
}

void MemoryCamera::AnswerSize(int& size, char* buffer) const {
  const auto total = static_cast<std::uint32_t>(selected_ == nullptr ? 0 : selected_->size());
  size = sizeof total;
  std::memcpy(buffer, &total, sizeof total);
}

void MemoryCamera::AnswerChunk(const _VscCdb& cdb, int& size, char* buffer) const {
  std::uint32_t offset = 0;
  std::memcpy(&offset, cdb.bytes + 3, sizeof offset);
  const std::size_t left = offset < selected_->size() ? selected_->size() - offset : 0;
  const std::size_t moved = std::min(left, static_cast<std::size_t>(size));
  std::memcpy(buffer, selected_->data() + offset, moved);
  size = static_cast<int>(moved);
}

}  // namespace bench

// The library's lookup by serial number asks for the cameras of a platform; a measurement in memory has none.
std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool, std::string, bool, int) {
  return {};
}
