#ifndef KELVA_APPS_THUMBNAILS_THUMBNAIL_H_
#define KELVA_APPS_THUMBNAILS_THUMBNAIL_H_

#include <optional>
#include <span>
#include <string>

#include "apps/commandline/Stop.h"
#include "apps/decoder/Jpeg.h"
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

/// Thrown for the start of a file without a sound EXIF thumbnail: the whole file may be drawn.
class NoThumbnail : public NoPicture {
 public:
  using NoPicture::NoPicture;
};

/// Draws the EXIF thumbnail of a JPEG file of which only the start is there. Throws NoThumbnail, and what
/// Thumbnailer::Draw throws.
Thumbnail DrawThumbnailInStart(Thumbnailer& thumbnailer, std::span<const char> start, const Stop& stop);

/// A picture to be shown large. Throws NoPicture, and what Thumbnailer::Draw throws.
Thumbnail DrawLargePicture(Thumbnailer& thumbnailer, std::span<const char> jpegFile, const Stop& stop);

/// Throws NoPicture, and what Thumbnailer::Draw throws.
Thumbnail DrawThumbnail(Thumbnailer& thumbnailer, std::span<const char> jpegFile, const Stop& stop);

}  // namespace apps

#endif  // KELVA_APPS_THUMBNAILS_THUMBNAIL_H_
