// Lays out the picture catalogue in any of the layouts that a host must be able to read.
#include "vcam/device/Catalogue.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "src/wifi/DcfObj.h"

namespace vcam {
namespace {

constexpr std::int32_t kVersion = 1;
constexpr std::uint8_t kFiller = 0xEE;
constexpr double kMegabyte = 1e6;

struct PlainField {
  std::size_t offset;
  std::size_t size;
};

// By type number: where the field stands in a plain record.
constexpr std::array<PlainField, 10> kPlainFields{{{offsetof(DcfObj, directorySuffix), 24},
                                                   {offsetof(DcfObj, hasJpg), 4},
                                                   {offsetof(DcfObj, hasRaw), 4},
                                                   {offsetof(DcfObj, hasTxt), 4},
                                                   {offsetof(DcfObj, has128), 4},
                                                   {offsetof(DcfObj, value5), 4},
                                                   {offsetof(DcfObj, value6), 4},
                                                   {offsetof(DcfObj, block7), 48},
                                                   {offsetof(DcfObj, block8), 28},
                                                   {offsetof(DcfObj, value9), 4}}};

void PutText(base::Bytes& record, std::size_t offset, std::size_t width, std::string_view text) {
  std::copy_n(text.begin(), std::min(text.size(), width - 1), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string TimeText(std::time_t seconds) {
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  std::array<char, 48> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &utc);
  return text.data();
}

void PutSizesAndTime(base::Bytes& record, const Picture& picture) {
  double total = 0;
  std::int64_t modified = 0;
  for (const auto& file : picture.files) {
    if (!file) continue;
    total += static_cast<double>(file->size);
    modified = std::max(modified, file->modifiedNs / 1'000'000'000);
  }
  const std::uint64_t jpg = picture.files[0] ? picture.files[0]->size : 0;
  base::Store(std::span(record), offsetof(DcfObj, value5),
              static_cast<std::uint32_t>(std::min<std::uint64_t>(jpg, 0xFFFFFFFF)));
  base::Store(std::span(record), offsetof(DcfObj, value6), static_cast<float>(total / kMegabyte));
  PutText(record, offsetof(DcfObj, block8), sizeof(DcfObj::block8), TimeText(modified));
  base::Store(std::span(record), offsetof(DcfObj, value9), static_cast<std::uint32_t>(modified));
}

void PutRecord(std::span<std::uint8_t> out, const base::Bytes& plain, const CatalogueLayout& layout) {
  for (const CatalogueField& field : layout.fields) {
    if (field.type >= kPlainFields.size()) continue;
    const PlainField from = kPlainFields[field.type];
    if (field.offset > out.size() || out.size() - field.offset < from.size) continue;
    std::copy_n(plain.begin() + static_cast<std::ptrdiff_t>(from.offset), from.size,
                out.begin() + static_cast<std::ptrdiff_t>(field.offset));
  }
}

base::Bytes Header(const CatalogueLayout& layout, Marks& marks) {
  base::Bytes header;
  base::Append(header, kVersion, layout.stride);
  marks.counts.push_back(header.size());
  base::Append(header, static_cast<std::uint32_t>(layout.fields.size()));
  for (const CatalogueField& field : layout.fields) {
    base::Append(header, field.type);
    marks.offsets.push_back(header.size());
    base::Append(header, field.offset);
  }
  return header;
}

void MarkNames(Marks& marks, std::uint64_t record, const CatalogueLayout& layout) {
  for (const CatalogueField& field : layout.fields) {
    if (field.type != 0) continue;
    marks.names.push_back({record + field.offset, sizeof(DcfObj::directorySuffix)});
    marks.names.push_back({record + field.offset + offsetof(DcfObj, filePrefix), sizeof(DcfObj::filePrefix)});
  }
}

}  // namespace

base::Bytes PlainRecord(const Picture& picture, const std::string& key) {
  base::Bytes record(sizeof(DcfObj));
  const std::span<std::uint8_t> out(record);
  PutText(record, offsetof(DcfObj, directorySuffix), sizeof(DcfObj::directorySuffix), picture.directory.suffix);
  PutText(record, offsetof(DcfObj, filePrefix), sizeof(DcfObj::filePrefix), picture.prefix);
  base::Store(out, offsetof(DcfObj, directoryNumber), picture.directory.number);
  base::Store(out, offsetof(DcfObj, fileNumber), picture.number);
  for (std::size_t type = 0; type < kPictureExtensions.size(); ++type) {
    base::Store(out, offsetof(DcfObj, hasJpg) + 4 * type, static_cast<std::uint32_t>(picture.files[type].has_value()));
  }
  PutText(record, offsetof(DcfObj, block7), sizeof(DcfObj::block7), key);
  PutSizesAndTime(record, picture);
  return record;
}

DataSet BuildCatalogue(const std::vector<base::Bytes>& plainRecords, const CatalogueLayout& layout) {
  DataSet catalogue;
  catalogue.AddBytes(Header(layout, catalogue.marks));
  base::Bytes records(plainRecords.size() * layout.stride, kFiller);
  for (std::size_t i = 0; i < plainRecords.size(); ++i) {
    const std::size_t start = i * layout.stride;
    PutRecord(std::span(records).subspan(start, layout.stride), plainRecords[i], layout);
    MarkNames(catalogue.marks, catalogue.Size() + start, layout);
  }
  catalogue.AddBytes(std::move(records));
  return catalogue;
}

}  // namespace vcam
