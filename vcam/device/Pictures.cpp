// Finds the pictures below DCIM by the rules for names of directories and files.
#include "vcam/device/Pictures.h"

#include <algorithm>
#include <cstdio>

namespace vcam {
namespace {

constexpr std::size_t kMaxText = 7;  // eight bytes with the NUL
constexpr std::size_t kDirectoryDigits = 3;
constexpr std::size_t kFileDigits = 4;
constexpr std::size_t kExtensionLength = 4;  // with the full stop

std::optional<int> Digits(std::string_view text) {
  int value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = 10 * value + (c - '0');
  }
  return value;
}

std::string Padded(int number, int width) {
  std::string text = std::to_string(number);
  return std::string(
             static_cast<std::size_t>(width) - std::min<std::size_t>(text.size(), static_cast<std::size_t>(width)),
             '0') +
         text;
}

bool SamePicture(const Picture& picture, const PictureFile& file) {
  return picture.prefix == file.prefix && picture.number == file.number;
}

}  // namespace

std::optional<PictureDirectory> ParseDirectoryName(std::string_view name) {
  if (name.size() < kDirectoryDigits || name.size() > kDirectoryDigits + kMaxText) return std::nullopt;
  const std::optional<int> number = Digits(name.substr(0, kDirectoryDigits));
  if (!number || *number < 100) return std::nullopt;
  return PictureDirectory{*number, std::string(name.substr(kDirectoryDigits))};
}

std::optional<PictureFile> ParseFileName(std::string_view name) {
  constexpr std::size_t kTail = kFileDigits + kExtensionLength;
  if (name.size() < kTail || name.size() > kTail + kMaxText) return std::nullopt;
  const std::string_view extension = name.substr(name.size() - kExtensionLength);
  const auto type = std::find(kPictureExtensions.begin(), kPictureExtensions.end(), extension.substr(1));
  const std::optional<int> number = Digits(name.substr(name.size() - kTail, kFileDigits));
  if (extension[0] != '.' || type == kPictureExtensions.end() || !number) return std::nullopt;
  return PictureFile{std::string(name.substr(0, name.size() - kTail)), *number,
                     static_cast<std::size_t>(type - kPictureExtensions.begin())};
}

std::string Picture::DirectoryPath() const {
  return "DCIM/" + Padded(directory.number, 3) + directory.suffix;
}

std::string Picture::PathOf(std::size_t type) const {
  return DirectoryPath() + "/" + prefix + Padded(number, 4) + "." + std::string(kPictureExtensions[type]);
}

std::vector<Picture> FindPicturesIn(const Storage& storage, const PictureDirectory& directory) {
  std::vector<Picture> pictures;
  const Picture place{directory, {}, 0, {}};
  // Sorted by name, the files of one picture stand together: they differ in the extension only.
  for (const StorageEntry& entry : storage.List(place.DirectoryPath())) {
    const std::optional<PictureFile> file = ParseFileName(entry.name);
    if (entry.isDirectory || !file) continue;
    if (pictures.empty() || !SamePicture(pictures.back(), *file)) {
      pictures.push_back({directory, file->prefix, file->number, {}});
    }
    pictures.back().files[file->type] = entry.stamp;
  }
  return pictures;
}

std::vector<Picture> FindPictures(const Storage& storage) {
  std::vector<Picture> pictures;
  for (const StorageEntry& entry : storage.List("DCIM")) {
    const std::optional<PictureDirectory> directory = ParseDirectoryName(entry.name);
    if (!entry.isDirectory || !directory) continue;
    std::vector<Picture> found = FindPicturesIn(storage, *directory);
    pictures.insert(pictures.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
  }
  return pictures;
}

}  // namespace vcam
