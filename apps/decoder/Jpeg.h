#ifndef KELVA_APPS_DECODER_JPEG_H_
#define KELVA_APPS_DECODER_JPEG_H_

#include <span>
#include <stdexcept>
#include <string>

#include "apps/decoder/Pixels.h"

namespace apps {

/// Thrown for bytes that hold no picture; what() says why, as the end of a sentence.
class NoPicture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What was drawn of a JPEG file.
struct Decoded {
  Pixels image;
  std::string complaint;  ///< empty, or what is damaged in a picture that could be drawn in part
};

/// Draws a JPEG file at the smallest of the decoder's own scales (eighths) at which its longer side still has `longest`
/// pixels; such a scale leaves out most of the work and the memory. Throws NoPicture.
Decoded DecodeJpeg(std::span<const char> bytes, int longest);

/// The image as a baseline JPEG file.
std::string EncodeJpeg(const Pixels& image);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_JPEG_H_
