// Draws one thumbnail: another process decodes it, this one stores it.
#include "apps/thumbnails/Thumbnail.h"

#include <utility>
#include <variant>

#include "apps/decoder/Jpeg.h"

namespace apps {

namespace {

Thumbnail Stored(Drawing drawing) {
  const Pixels& image = drawing.image;
  return {image.width, image.height, EncodeJpeg(image), std::move(drawing.time), std::move(drawing.complaint)};
}

Thumbnail StoredOrThrown(DrawingOrReason answer) {
  if (const auto* reason = std::get_if<std::string>(&answer)) throw NoPicture(*reason);
  return Stored(std::get<Drawing>(std::move(answer)));
}

}  // namespace

Thumbnail DrawThumbnailInStart(Thumbnailer& thumbnailer, std::span<const char> start, const Stop& stop) {
  DrawingOrReason answer = thumbnailer.DrawStart(start, stop);
  if (const auto* reason = std::get_if<std::string>(&answer)) throw NoThumbnail(*reason);
  return Stored(std::get<Drawing>(std::move(answer)));
}

Thumbnail DrawLargePicture(Thumbnailer& thumbnailer, std::span<const char> jpegFile, const Stop& stop) {
  return StoredOrThrown(thumbnailer.DrawLarge(jpegFile, stop));
}

Thumbnail DrawThumbnail(Thumbnailer& thumbnailer, std::span<const char> jpegFile, const Stop& stop) {
  return StoredOrThrown(thumbnailer.Draw(jpegFile, stop));
}

}  // namespace apps
