#ifndef KELVA_VCAM_DEVICE_PICTURES_H_
#define KELVA_VCAM_DEVICE_PICTURES_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vcam/device/Storage.h"

namespace vcam {

/// The extensions of a picture's files, in the order of their file types 1 to 4.
inline constexpr std::array<std::string_view, 4> kPictureExtensions{"JPG", "RAW", "TXT", "128"};

/// The parts of a picture directory's name: three digits from 100 to 999 and up to seven characters.
struct PictureDirectory {
  int number;
  std::string suffix;
};

/// The parts of a picture file's name: up to seven characters, four digits, a full stop and a known extension.
struct PictureFile {
  std::string prefix;
  int number;
  std::size_t type;  ///< index into kPictureExtensions
};

std::optional<PictureDirectory> ParseDirectoryName(std::string_view name);
std::optional<PictureFile> ParseFileName(std::string_view name);

/// One picture: the files of one directory that share prefix and number.
struct Picture {
  PictureDirectory directory;
  std::string prefix;
  int number = 0;
  /// Present files have a stamp, by type.
  std::array<std::optional<FileStamp>, kPictureExtensions.size()> files;

  /// Below the storage folder: "DCIM/100ABCDE/IMG_0001.JPG".
  std::string PathOf(std::size_t type) const;
  std::string DirectoryPath() const;
};

/// All pictures below DCIM, by directory name, then by file name. Other files and directories are passed over.
std::vector<Picture> FindPictures(const Storage& storage);
/// The pictures of one directory.
std::vector<Picture> FindPicturesIn(const Storage& storage, const PictureDirectory& directory);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_PICTURES_H_
