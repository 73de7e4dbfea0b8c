// Tells the user of a storage folder whose pictures a camera would not find.
#include "vcam/program/StorageNote.h"

#include "base/Ascii.h"
#include "vcam/device/Pictures.h"
#include "vcam/device/Storage.h"

namespace vcam::program {
namespace {

constexpr int kMostNames = 10'000;

bool IsJpeg(const std::filesystem::path& file) {
  const std::string extension = base::Lower(file.extension().string());
  return extension == ".jpg" || extension == ".jpeg";
}

int CountJpegs(const std::filesystem::path& folder) {
  int jpegs = 0;
  int names = 0;
  std::error_code error;
  std::filesystem::recursive_directory_iterator entry(
      folder, std::filesystem::directory_options::skip_permission_denied, error);
  for (const std::filesystem::recursive_directory_iterator end; !error && entry != end && names < kMostNames; ++names) {
    if (IsJpeg(entry->path()) && entry->is_regular_file(error)) ++jpegs;
    entry.increment(error);
  }
  return jpegs;
}

}  // namespace

std::string StorageNote(const std::filesystem::path& storage) {
  if (!FindPictures(Storage(storage)).empty()) return "";
  const int jpegs = CountJpegs(storage);
  if (jpegs == 0) return "";
  const std::string found = jpegs == 1 ? "1 JPEG file lies" : std::to_string(jpegs) + " JPEG files lie";
  return "The camera has no picture: " + found +
         " elsewhere in the folder, and a camera finds only those in places like DCIM/100ABCDE/IMG_0001.JPG, capital "
         "letters included.";
}

}  // namespace vcam::program
