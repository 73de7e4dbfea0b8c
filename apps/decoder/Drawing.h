#ifndef KELVA_APPS_DECODER_DRAWING_H_
#define KELVA_APPS_DECODER_DRAWING_H_

#include <span>

#include "apps/decoder/Answer.h"

namespace apps {

/// Decodes a JPEG file in this process. The drawing's longer side has at most `longest` pixels.
DrawingOrReason Draw(std::span<const char> jpegFile, int longest = kThumbnailSide);

/// Draws a JPEG file of which only the start is there: its EXIF thumbnail. A reason where it has none, or a damaged one.
DrawingOrReason DrawStart(std::span<const char> start);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_DRAWING_H_
