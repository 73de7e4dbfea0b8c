// Names, types, key and time of a picture, from its catalogue record.

#include "apps/camera/Picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "apps/commandline/Printable.h"
#include "apps/files/Sha1.h"
#include "base/Ascii.h"
#include "base/Hex.h"
#include "src/wifi/Camera.h"

namespace apps {
namespace {

constexpr std::array<std::string_view, 4> kTypeNames = {"JPG", "RAW", "TXT", "128"};

// Text in a field of fixed width; the NUL may be missing.
template <std::size_t N>
std::string_view TextIn(const char (&field)[N]) {
  return {field, static_cast<std::size_t>(std::find(field, field + N, '\0') - field)};
}

std::string Number(int number, int digits) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%0*d", digits, number);
  return text.data();
}

}  // namespace

std::string_view FileTypeName(int type) {
  return type >= kFirstFileType && type <= kLastFileType ? kTypeNames[static_cast<std::size_t>(type - 1)] : "";
}

std::vector<int> FileTypes(const DcfObj& picture) {
  const std::array<unsigned, 4> has = {picture.hasJpg, picture.hasRaw, picture.hasTxt, picture.has128};
  std::vector<int> types;
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    if (has[static_cast<std::size_t>(type - 1)] != 0) types.push_back(type);
  }
  return types;
}

std::string PictureFolder(const DcfObj& picture) {
  return Number(picture.directoryNumber, 3) + std::string(TextIn(picture.directorySuffix));
}

std::string PictureStem(const DcfObj& picture) {
  return std::string(TextIn(picture.filePrefix)) + Number(picture.fileNumber, 4);
}

std::string PictureFileName(const DcfObj& picture, int type) {
  return PictureStem(picture) + "." + std::string(FileTypeName(type));
}

std::string PicturePath(const DcfObj& picture, int type) {
  return "I:\\DCIM\\" + PictureFolder(picture) + "\\" + PictureFileName(picture, type);
}

std::optional<std::string> PictureKey(const DcfObj& picture) {
  std::string key(TextIn(picture.block7));
  if (!IsKey(key)) return std::nullopt;
  return base::Lower(std::move(key));
}

std::optional<std::string> PictureTime(const DcfObj& picture) {
  const std::string_view text = TextIn(picture.block8);
  if (!base::HasShape(text, "0000-00-00 00:00:00")) return std::nullopt;
  return std::string(text);
}

std::string_view EntryBytes(const DcfObj& picture) {
  return {reinterpret_cast<const char*>(&picture), sizeof picture};
}

std::string PictureFingerprint(const DcfObj& picture) {
  if (const auto key = PictureKey(picture)) return *key;
  const char* begin = reinterpret_cast<const char*>(&picture);
  return base::Hex(std::string_view(begin + offsetof(DcfObj, value5), sizeof(DcfObj) - offsetof(DcfObj, value5)));
}

}  // namespace apps
