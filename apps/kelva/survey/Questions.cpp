// Raw questions to a camera that nobody knows yet.
#include "apps/kelva/survey/Questions.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "src/wifi/Command.h"
#include "src/wifi/LittleEndian.h"
#include "src/wifi/VscRegister.h"

namespace apps::survey {
namespace {

using kelva::Block;
using kelva::Operation;

constexpr int kChunk = 65'536;
constexpr int kInformationSize = 644;
constexpr int kSmallestChunk = 512;
constexpr int kReadsOfEach = 8;

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

int Questions::Transfer(const _VscCdb& block, int direction, int size, char* buffer) {
  stop_.Check();
  if (!camera_->Transfer(block, direction, size, buffer, true)) throw CameraError("the transport gave no answer");
  return size;
}

std::string Questions::Query(std::uint8_t subCode, int room) {
  camera_->ClearCancel(true);
  std::string answer(static_cast<std::size_t>(room), '\0');
  const int moved = Transfer(Block(Operation::kQuery, subCode), kelva::kFromCamera, room, answer.data());
  answer.resize(kelva::BytesArrived(moved, answer.size()));
  return answer;
}

void Questions::Select(std::uint8_t subCode, std::string_view path) {
  camera_->ClearCancel(true);
  std::string bytes(path);
  if (path.empty()) {
    Transfer(Block(Operation::kSelect, subCode), kelva::kNoData, 0, nullptr);
  } else {
    Transfer(Block(Operation::kSelect, subCode), kelva::kToCamera, static_cast<int>(bytes.size()) + 1, bytes.data());
  }
}

std::uint32_t Questions::Size() {
  std::string answer = Query(kelva::query::kSelectedSize, 4);
  answer.resize(4);
  return kelva::LoadU32(answer.data());
}

std::string Questions::Chunk(std::uint64_t offset, int room) {
  _VscCdb block = Block(Operation::kReadChunk, kelva::read_chunk::kSelected);
  kelva::StoreU32(block.bytes + kelva::at::kReadOffset, static_cast<std::uint32_t>(offset));
  std::string bytes(static_cast<std::size_t>(room), '\0');
  const int moved = Transfer(block, kelva::kFromCamera, room, bytes.data());
  bytes.resize(kelva::BytesArrived(moved, bytes.size()));
  return bytes;
}

DataSet Questions::ReadOn(std::uint32_t announced, std::size_t most) {
  DataSet set{announced, {}, false};
  std::size_t arrived = kChunk;
  for (std::uint64_t offset = 0; arrived == kChunk && set.bytes.size() <= most; offset += kChunk) {
    if (offset > std::numeric_limits<std::uint32_t>::max()) return set;
    const std::string chunk = Chunk(offset, kChunk);
    arrived = chunk.size();
    set.bytes += chunk;
  }
  set.whole = arrived != kChunk && set.bytes.size() <= most;
  set.bytes.resize(std::min(set.bytes.size(), most));
  return set;
}

DataSet Questions::Information() {
  Select(kelva::select::kInformation, "");
  const std::uint32_t announced = Size();
  return {announced, Chunk(0, kInformationSize), true};
}

DataSet Questions::WholeInformation() {
  Select(kelva::select::kInformation, "");
  return ReadOn(Size(), kChunk);
}

DataSet Questions::Catalogue(std::size_t most) {
  Select(kelva::select::kCatalogue, "");
  return ReadOn(0, most);
}

DataSet Questions::Folder(const std::string& path, std::size_t most) {
  Select(kelva::select::kDirectory, path);
  return ReadOn(0, most);
}

DataSet Questions::File(const std::string& path, std::size_t most) {
  Select(kelva::select::kFile, path);
  return ReadOn(Size(), most);
}

std::vector<Timing> Questions::TimeChunks(const std::string& path, std::uint32_t size) {
  using Clock = std::chrono::steady_clock;
  std::vector<Timing> timings;
  for (int chunk = kSmallestChunk; chunk <= kChunk; chunk *= 2) {
    // From the start each time: a camera may be readable forward only.
    Select(kelva::select::kFile, path);
    std::vector<double> took;
    for (std::uint64_t at = 0; took.size() < kReadsOfEach && at + static_cast<std::uint64_t>(chunk) <= size;
         at += static_cast<std::uint64_t>(chunk)) {
      const auto begin = Clock::now();
      Chunk(at, chunk);
      took.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
    }
    if (!took.empty()) timings.push_back({chunk, static_cast<int>(took.size()), Median(took)});
  }
  return timings;
}

}  // namespace apps::survey
