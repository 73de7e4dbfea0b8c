#ifndef KELVA_APPS_DECODER_EXIF_H_
#define KELVA_APPS_DECODER_EXIF_H_

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace apps {

/// What a JPEG file says of its picture.
struct ExifFacts {
  int orientation = 1;              ///< 1 to 8, how the camera was held
  std::optional<std::string> time;  ///< when it was taken, "2026-03-14 15:09:26"
};

/// Reads the EXIF part of a JPEG file. What is missing or damaged is left at its neutral value.
ExifFacts ReadExif(std::span<const char> bytes);

/// The thumbnail that a camera puts into the EXIF part, a JPEG file of its own; empty where there is none.
std::vector<char> ReadExifThumbnail(std::span<const char> bytes);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_EXIF_H_
