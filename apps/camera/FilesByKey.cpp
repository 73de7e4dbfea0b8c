// Asks a camera which files it has by their SHA-1, without reading them.
#include "apps/camera/FilesByKey.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>

#include "src/wifi/Command.h"
#include "src/wifi/LittleEndian.h"

namespace apps {
namespace {

// What every transport of the library asks for at once.
constexpr std::size_t kTablePiece = 65'536;
constexpr std::size_t kTableEntry = 4;  // of an entry of the table: the file's size

// The table of the files that the camera has selected, as far as it arrives in one piece.
std::string TableOfSizes(Camera& camera, std::size_t entries) {
  std::uint32_t announced = 0;
  if (!kelva::AskSelectedSize(camera, true, announced) || announced < entries * kTableEntry) return "";
  std::string piece(kTablePiece, '\0');
  const _VscCdb read = kelva::Block(kelva::Operation::kReadChunk, kelva::read_chunk::kBundle);
  const int moved = kelva::ReadAnswer(camera, read, piece.data(), static_cast<int>(kTablePiece), true);
  piece.resize(kelva::BytesArrived(moved, piece.size()));
  return piece;
}

void AskFor(Camera& camera, std::span<const std::string> keys, std::vector<bool>& there) {
  const std::string text = std::accumulate(keys.begin(), keys.end(), std::string());
  camera.ClearCancel(true);
  const _VscCdb select = kelva::Block(kelva::Operation::kSelect, kelva::select::kBatch);
  std::string table;
  if (kelva::SendText(camera, select, text.c_str(), text.size(), true)) table = TableOfSizes(camera, keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    there.push_back(table.size() >= keys.size() * kTableEntry && kelva::LoadU32(table.data() + i * kTableEntry) != 0);
  }
}

}  // namespace

std::vector<bool> HasFiles(Camera& camera, const std::vector<std::string>& keys) {
  constexpr std::size_t kMostAtOnce = 1000;
  std::vector<bool> there;
  for (std::size_t at = 0; at < keys.size(); at += kMostAtOnce) {
    AskFor(camera, std::span(keys).subspan(at, std::min(kMostAtOnce, keys.size() - at)), there);
  }
  return there;
}

}  // namespace apps
