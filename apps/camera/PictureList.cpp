// Reads the picture catalogue within bounds of memory.
#include "apps/camera/PictureList.h"

#include <algorithm>
#include <cstring>

#include "apps/commandline/Failure.h"
#include "src/wifi/CatalogueDecoder.h"
#include "src/wifi/ChunkedRead.h"
#include "src/wifi/Command.h"
#include "src/wifi/DcfLayout.h"

namespace apps {
namespace {

// What every transport of the library asks for at once.
constexpr int kChunk = 65'536;
// Directory suffix, file prefix, and the numbers of both.
constexpr int kIdentitySize = 24;
// Enough for a million records of the usual 128 bytes, and as much again.
constexpr long long kMostBytes = 256LL << 20;

[[noreturn]] void Refuse(const std::string& what) {
  throw Failure(ExitCode::kFailed,
                "The camera's picture catalogue cannot be used: " + what +
                    "; format the card in the camera, or fetch files by path (`kelva ls`, `kelva get`).");
}

/// Collects a catalogue, and refuses it while it arrives.
class BoundedCatalogue final : public kelva::ChunkSink {
 public:
  void Append(std::span<const char> bytes) override {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    if (bytes_.size() < sizeof(_VscCdbDcfHeader)) return;
    _VscCdbDcfHeader header{};
    std::memcpy(&header, bytes_.data(), sizeof header);
    Check(header);
  }
  const std::vector<char>& Bytes() const { return bytes_; }

 private:
  void Check(const _VscCdbDcfHeader& header) const {
    const long long records =
        static_cast<long long>(bytes_.size()) - std::max<long long>(kelva::DcfHeaderSize(header), 0);
    // A catalogue without records may say anything of their size.
    if (records > 0 && header.stride < kIdentitySize) {
      Refuse("its records have " + std::to_string(header.stride) + " bytes, too few to name a picture");
    }
    if (static_cast<long long>(bytes_.size()) > kMostBytes || records > header.stride * kMostPictures) {
      Refuse("it goes on after " + std::to_string(kMostPictures) + " pictures or " + std::to_string(kMostBytes >> 20) +
             " MB");
    }
  }

  std::vector<char> bytes_;
};

}  // namespace

std::vector<DcfObj> ReadPictures(Camera& camera) {
  if (!camera.IsOpen()) return {};
  camera.ClearCancel(true);
  if (!kelva::SendCommand(camera, kelva::Block(kelva::Operation::kSelect, kelva::select::kCatalogue), true)) return {};
  BoundedCatalogue catalogue;
  const kelva::ChunkedRead read{kelva::read_chunk::kSelected, true, kelva::ReadProgress::None()};
  if (!kelva::ReadChunks(camera, kChunk, read, catalogue)) return {};
  return kelva::DecodeCatalogue(catalogue.Bytes());
}

}  // namespace apps
