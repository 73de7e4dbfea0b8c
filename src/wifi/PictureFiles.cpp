// The rule by which a camera names the files of a picture.

#include "PictureFiles.h"

#include <boost/format.hpp>
#include <cstdio>
#include <iterator>
#include <locale>

#include "Camera.h"
#include "Checks.h"

namespace {

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

}  // namespace

std::optional<std::string> kelva::PictureFilePath(const DcfObj& picture, int type) {
  const FileType* fileType = FindFileType(type);
  if (fileType == nullptr || picture.*(fileType->present) == 0) return std::nullopt;
  char path[kPathCapacity];
  std::snprintf(path, sizeof(path), "I:\\DCIM\\%03d%.*s\\%.*s%04d.%s", picture.directoryNumber, kNameFieldWidth,
                picture.directorySuffix, kNameFieldWidth, picture.filePrefix, picture.fileNumber, fileType->extension);
  return path;
}

std::string kelva::NoSuchFileType(int type) {
  // Another locale may group the digits of the number.
  boost::format message("ReadFile() file type %d does not exist.", std::locale::classic());
  return (message % type).str();
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
  const std::optional<std::string> path = kelva::PictureFilePath(obj, type);
  if (path) return ReadFile(path->c_str(), progress, context, flag);
  kelva::ReportProtocolError(kelva::NoSuchFileType(type));
  return {};
}
