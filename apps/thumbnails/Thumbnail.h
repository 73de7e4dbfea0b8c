#ifndef KELVA_APPS_THUMBNAILS_THUMBNAIL_H_
#define KELVA_APPS_THUMBNAILS_THUMBNAIL_H_

#include <optional>
#include <span>
#include <string>

#include "apps/commandline/Stop.h"
#include "apps/thumbnails/Thumbnailer.h"

namespace apps {

/// A small, upright picture of a JPEG file.
struct Thumbnail {
  int width;
  int height;
  std::string jpeg;                 ///< a JPEG file of its own, without EXIF
  std::optional<std::string> time;  ///< when the picture was taken, where the file says so
  std::string complaint;            ///< empty, or what is damaged in a picture that could be drawn in part
};

/// Throws NoPicture, and what Thumbnailer::Draw throws.
Thumbnail DrawThumbnail(Thumbnailer& thumbnailer, std::span<const char> jpegFile, const Stop& stop);

}  // namespace apps

#endif  // KELVA_APPS_THUMBNAILS_THUMBNAIL_H_
