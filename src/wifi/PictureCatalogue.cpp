// The picture catalogue, and the command that deletes one of its pictures.

#include <algorithm>

#include "Camera.h"
#include "CatalogueDecoder.h"
#include "Checks.h"
#include "ChunkedRead.h"
#include "Command.h"
#include "DcfLayout.h"

using kelva::Block;
using kelva::Operation;

namespace {

constexpr std::int32_t kCatalogueVersion = 1;
constexpr int kIdentitySize = 24;

std::vector<DcfObj> DecodeRecords(const _VscCdbDcfHeader* header, const char* records, std::size_t size) {
  if (header->stride == 0) return {};
  const kelva::DcfLayout layout(header);
  const auto stride = static_cast<std::size_t>(header->stride);
  std::vector<DcfObj> pictures;
  pictures.reserve(std::min(size / stride, kelva::kLargestReservation / sizeof(DcfObj)));
  for (; size >= stride; records += stride, size -= stride) pictures.push_back(layout.Decode(records));
  return pictures;
}

}  // namespace

std::vector<DcfObj> kelva::DecodeCatalogue(const std::vector<char>& answer) {
  const auto* header = reinterpret_cast<const _VscCdbDcfHeader*>(answer.data());
  const std::int64_t headerSize = answer.size() < sizeof(*header) ? -1 : kelva::DcfHeaderSize(*header);
  if (headerSize < 0 || headerSize > static_cast<std::int64_t>(answer.size())) {
    kelva::ReportProtocolError("DcfHeader truncated.");
    return {};
  }
  if (!Camera::ValidateDcfHeader(header)) return {};
  const auto start = static_cast<std::size_t>(headerSize);
  return DecodeRecords(header, answer.data() + start, answer.size() - start);
}

std::vector<DcfObj> Camera::GetDcf() {
  if (!IsOpen()) return {};
  ClearCancel(true);
  if (!kelva::SendCommand(*this, Block(Operation::kSelect, kelva::select::kCatalogue), true)) return {};
  kelva::VectorSink sink;
  if (!kelva::ReadChunks(*this, chunkSize_, {kelva::read_chunk::kSelected, true, kelva::ReadProgress::None()}, sink)) {
    return {};
  }
  return kelva::DecodeCatalogue(sink.Take());
}

bool Camera::ValidateDcfHeader(const _VscCdbDcfHeader* header) {
  if (header->version != kCatalogueVersion) {
    kelva::ReportProtocolError("DcfHeader version != 1");
    return false;
  }
  if (header->stride < 0) {
    kelva::ReportProtocolError("Invalid DCF stride.");
    return false;
  }
  for (int i = 0; i < header->fieldCount; ++i) {
    const kelva::DcfField field = kelva::DcfFieldAt(header, i);
    // The sum has 32 bits on purpose: an offset near 2^32 passes here. DcfLayout skips such a field.
    const std::uint32_t end = kelva::DcfFieldSize(field.type) + field.offset;
    if (end > static_cast<std::uint32_t>(header->stride)) {
      kelva::ReportProtocolError("DCF field too big.");
      return false;
    }
  }
  return true;
}

DcfObj Camera::UnpackDcf(const _VscCdbDcfHeader* header, const char* record) {
  return kelva::DcfLayout(header).Decode(record);
}

bool Camera::DeleteDcfObject(const DcfObj& obj) {
  ClearCancel(true);
  return kelva::SendBytes(*this, Block(Operation::kAction, kelva::action::kDeletePicture),
                          reinterpret_cast<const char*>(&obj), kIdentitySize, true);
}
