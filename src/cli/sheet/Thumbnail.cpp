#include "sheet/Thumbnail.h"

#include <utility>

#include "sheet/Exif.h"
#include "sheet/Jpeg.h"
#include "sheet/Pixels.h"

namespace kelva {

Thumbnail DrawThumbnail(std::span<const char> jpegFile) {
  Decoded decoded = DecodeJpeg(jpegFile, kThumbnailSide);
  ExifFacts facts = ReadExif(jpegFile);
  const Pixels image = Upright(Shrunk(decoded.image, kThumbnailSide), facts.orientation);
  return {image.width, image.height, EncodeJpeg(image), std::move(facts.time), std::move(decoded.complaint)};
}

}  // namespace kelva
