// Draws one thumbnail: decode, shrink, turn upright, encode.
#include "apps/kelva/sheet/Thumbnail.h"

#include <utility>

#include "apps/kelva/sheet/Exif.h"
#include "apps/kelva/sheet/Jpeg.h"
#include "apps/kelva/sheet/Pixels.h"

namespace apps {

Thumbnail DrawThumbnail(std::span<const char> jpegFile) {
  Decoded decoded = DecodeJpeg(jpegFile, kThumbnailSide);
  ExifFacts facts = ReadExif(jpegFile);
  const Pixels image = Upright(Shrunk(decoded.image, kThumbnailSide), facts.orientation);
  return {image.width, image.height, EncodeJpeg(image), std::move(facts.time), std::move(decoded.complaint)};
}

}  // namespace apps
