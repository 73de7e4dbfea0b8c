// Every decoder of the library, each given exactly the bytes that arrived, in memory of just that size, so that a read
// past them is seen.

#include <memory>
#include <string>
#include <vector>

#include "fuzz/InputReader.h"
#include "src/wifi/BundleTables.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfLayout.h"
#include "src/wifi/DirectoryListing.h"
#include "src/wifi/FatalAssertion.h"

namespace {

/// A copy at the end of an allocation of just its size.
class ExactBytes {
 public:
  explicit ExactBytes(std::span<const std::uint8_t> bytes) : size_(bytes.size()), bytes_(new char[bytes.size()]) {
    std::copy(bytes.begin(), bytes.end(), bytes_.get());
  }
  std::span<const char> Get() const { return {bytes_.get(), size_}; }

 private:
  std::size_t size_;
  std::unique_ptr<char[]> bytes_;
};

void DecodePicture(std::span<const char> bytes) {
  if (bytes.size() < sizeof(_VscCdbDcfHeader)) return;
  const auto* header = reinterpret_cast<const _VscCdbDcfHeader*>(bytes.data());
  const std::int64_t headerSize = kelva::DcfHeaderSize(*header);
  if (headerSize < 0 || headerSize > static_cast<std::int64_t>(bytes.size()) || !Camera::ValidateDcfHeader(header)) {
    return;
  }
  const std::span<const char> records = bytes.subspan(static_cast<std::size_t>(headerSize));
  if (records.size() >= static_cast<std::size_t>(header->stride)) {
    const ExactBytes record(
        {reinterpret_cast<const std::uint8_t*>(records.data()), static_cast<std::size_t>(header->stride)});
    const DcfObj picture = kelva::DcfLayout(header).Decode(record.Get().data());
    Camera::DcfFilename(picture, 1);
  }
}

/// Splits a bundle that arrives in two pieces.
void Split(kelva::TableDecoder decoder, std::span<const char> bundle, std::size_t firstPiece) {
  kelva::BundleSplitter splitter(std::move(decoder));
  splitter.Append(bundle.first(std::min(firstPiece, bundle.size())));
  splitter.Append(bundle.subspan(std::min(firstPiece, bundle.size())));
  splitter.TakeFiles();
}

}  // namespace

void kelva::FailAssertion(const char*, const char*) {
  __builtin_trap();
}

std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool, std::string, bool, int) {
  return {};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Camera::throwExceptions_ = false;
  InputReader input(data, size);
  const std::uint8_t decoder = input.Byte();
  const std::uint8_t piece = input.Byte();
  const ExactBytes exact(input.Rest());
  const std::vector<std::string> keys(piece % 5, "key");
  switch (decoder % 6) {
    case 0:
      DecodePicture(exact.Get());
      break;
    case 1:
      Split(kelva::DecodeCrashLogTable, exact.Get(), piece);
      break;
    case 2:
      Split(kelva::DecodeCalibrationTable, exact.Get(), piece);
      break;
    case 3:
      Split([&keys](auto head) { return kelva::DecodeBatchTable(keys, head); }, exact.Get(), piece);
      break;
    case 4:
      Split([](auto head) { return kelva::DecodeCompressedRawTable("key", head); }, exact.Get(), piece);
      break;
    default:
      kelva::DecodeListing(exact.Get());
  }
  return 0;
}
