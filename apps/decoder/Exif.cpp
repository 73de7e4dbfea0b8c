// Reads orientation and time from a JPEG file.
#include "apps/decoder/Exif.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "base/Ascii.h"

namespace apps {
namespace {

struct Unref {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};
using Data = std::unique_ptr<ExifData, Unref>;

// An EXIF part has at most 64 KiB; the parts before it are small.
constexpr std::size_t kMostBytes = 1U << 20;

std::size_t Byte(std::span<const char> bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

// The content of the EXIF part of a file that was cut within it; else all bytes. libexif takes both, but no part that ends
// early.
std::span<const char> Loadable(std::span<const char> bytes) {
  constexpr std::size_t kApp0 = 0xE0;
  constexpr std::size_t kApp1 = 0xE1;
  constexpr std::string_view kStart("Exif\0\0", 6);
  std::size_t at = 2;
  while (at + 4 + kStart.size() <= bytes.size() && Byte(bytes, at) == 0xFF && (Byte(bytes, at + 1) & 0xF0U) == kApp0) {
    const std::size_t end = at + 2 + (Byte(bytes, at + 2) << 8 | Byte(bytes, at + 3));
    const std::span<const char> content = bytes.subspan(at + 4);
    const bool isExif = std::equal(kStart.begin(), kStart.end(), content.begin());
    if (Byte(bytes, at + 1) == kApp1 && isExif) return end > bytes.size() ? content : bytes;
    at = end;
  }
  return bytes;
}

Data Load(std::span<const char> file) {
  Data data(exif_data_new());
  if (!data) return data;
  // By default libexif invents missing mandatory tags, the time included.
  exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  const std::span<const char> bytes = Loadable(file);
  const std::size_t size = std::min(bytes.size(), kMostBytes);
  exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned>(size));
  return data;
}

int OrientationIn(ExifData* data) {
  const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->components != 1 || entry->size < 2) return 1;
  const int value = exif_get_short(entry->data, exif_data_get_byte_order(data));
  return value >= 1 && value <= 8 ? value : 1;
}

std::optional<std::string> TimeIn(ExifData* data) {
  const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_EXIF], EXIF_TAG_DATE_TIME_ORIGINAL);
  constexpr unsigned kLength = 19;
  if (entry == nullptr || entry->format != EXIF_FORMAT_ASCII || entry->size < kLength) return std::nullopt;
  std::string text(reinterpret_cast<const char*>(entry->data), kLength);
  if (!base::HasShape(text, "0000:00:00 00:00:00")) return std::nullopt;
  text[4] = text[7] = '-';
  return text;
}

}  // namespace

std::vector<char> ReadExifThumbnail(std::span<const char> bytes) {
  const Data data = Load(bytes);
  if (!data || data->data == nullptr) return {};
  return {data->data, data->data + data->size};
}

ExifFacts ReadExif(std::span<const char> bytes) {
  const Data data = Load(bytes);
  if (!data) return {};
  return {OrientationIn(data.get()), TimeIn(data.get())};
}

}  // namespace apps
