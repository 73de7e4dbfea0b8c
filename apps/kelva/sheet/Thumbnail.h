#ifndef KELVA_APPS_KELVA_SHEET_THUMBNAIL_H_
#define KELVA_APPS_KELVA_SHEET_THUMBNAIL_H_

#include <optional>
#include <span>
#include <string>

namespace apps {

/// A small, upright picture of a JPEG file.
struct Thumbnail {
  int width;
  int height;
  std::string jpeg;                 ///< a JPEG file of its own, without EXIF
  std::optional<std::string> time;  ///< when the picture was taken, where the file says so
  std::string complaint;            ///< empty, or what is damaged in a picture that could be drawn in part
};

/// The longer side of a thumbnail: sharp at twice the size at which the sheet shows most of them.
inline constexpr int kThumbnailSide = 400;

/// Throws NoPicture.
Thumbnail DrawThumbnail(std::span<const char> jpegFile);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_THUMBNAIL_H_
