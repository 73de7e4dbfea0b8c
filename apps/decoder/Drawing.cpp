// Draws one small picture.
#include "apps/decoder/Drawing.h"

#include <new>
#include <utility>
#include <vector>

#include "apps/decoder/Exif.h"
#include "apps/decoder/Jpeg.h"

namespace apps {
namespace {

// Draws `jpegFile` as the EXIF part of `file` says.
DrawingOrReason DrawAs(std::span<const char> jpegFile, std::span<const char> file, int longest) {
  try {
    Decoded decoded = DecodeJpeg(jpegFile, longest);
    ExifFacts facts = ReadExif(file);
    return Drawing{Upright(Shrunk(decoded.image, longest), facts.orientation), std::move(facts.time),
                   std::move(decoded.complaint)};
  } catch (const NoPicture& reason) {
    return reason.what();
  } catch (const std::bad_alloc&) {
    return "it takes more memory than a thumbnail is worth";
  }
}

}  // namespace

DrawingOrReason Draw(std::span<const char> jpegFile, int longest) {
  return DrawAs(jpegFile, jpegFile, longest);
}

DrawingOrReason DrawStart(std::span<const char> start) {
  const std::vector<char> thumbnail = ReadExifThumbnail(start);
  if (thumbnail.empty()) return "it has no EXIF thumbnail";
  DrawingOrReason answer = DrawAs(thumbnail, start, kThumbnailSide);
  const auto* drawing = std::get_if<Drawing>(&answer);
  if (drawing != nullptr && !drawing->complaint.empty()) return "its EXIF thumbnail is damaged";
  return answer;
}

}  // namespace apps
