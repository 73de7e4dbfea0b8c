// The picture catalogue, and the commands that name, read and delete one of its pictures.

#include <algorithm>
#include <boost/format.hpp>
#include <cstdio>
#include <iterator>
#include <locale>

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
constexpr std::size_t kPathCapacity = 48;
constexpr int kNameFieldWidth = sizeof(DcfObj::filePrefix);

struct FileType {
  const char* extension;
  unsigned int DcfObj::*present;
};

/// File types 1 to 4.
constexpr FileType kFileTypes[] = {
    {"JPG", &DcfObj::hasJpg},
    {"RAW", &DcfObj::hasRaw},
    {"TXT", &DcfObj::hasTxt},
    {"128", &DcfObj::has128},
};

const FileType* FindFileType(int type) {
  return type >= 1 && type <= static_cast<int>(std::size(kFileTypes)) ? &kFileTypes[type - 1] : nullptr;
}

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

std::string Camera::DcfFilename(const DcfObj& obj, int type) {
  const FileType* fileType = FindFileType(type);
  if (fileType == nullptr) kelva::ReportProtocolError("Unknown filetype.");
  char name[kPathCapacity];
  std::snprintf(name, sizeof(name), "%.*s%04d.%s", kNameFieldWidth, obj.filePrefix, obj.fileNumber,
                fileType != nullptr ? fileType->extension : "INVALID");
  return name;
}

std::vector<char> Camera::ReadFile(const DcfObj& obj, int type, void (*progress)(void*, float), void* context,
                                   bool flag) {
  const FileType* fileType = FindFileType(type);
  if (fileType == nullptr || obj.*(fileType->present) == 0) {
    // Another locale may group the digits of the number.
    boost::format message("ReadFile() file type %d does not exist.", std::locale::classic());
    kelva::ReportProtocolError((message % type).str());
    return {};
  }
  char path[kPathCapacity];
  std::snprintf(path, sizeof(path), "I:\\DCIM\\%03d%.*s\\%.*s%04d.%s", obj.directoryNumber, kNameFieldWidth,
                obj.directorySuffix, kNameFieldWidth, obj.filePrefix, obj.fileNumber, fileType->extension);
  return ReadFile(path, progress, context, flag);
}

bool Camera::DeleteDcfObject(const DcfObj& obj) {
  ClearCancel(true);
  return kelva::SendBytes(*this, Block(Operation::kAction, kelva::action::kDeletePicture),
                          reinterpret_cast<const char*>(&obj), kIdentitySize, true);
}
