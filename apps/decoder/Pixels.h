#ifndef KELVA_APPS_DECODER_PIXELS_H_
#define KELVA_APPS_DECODER_PIXELS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace apps {

/// An image of 8-bit red, green and blue, row by row from the top, without padding.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgb;

  /// Where the three bytes of a pixel begin.
  std::size_t At(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 3;
  }
};

/// The image turned as a person would hold it. `orientation` is that of EXIF, 1 to 8; another number turns nothing.
Pixels Upright(const Pixels& image, int orientation);

/// The image made smaller by averaging, so that its longer side has `longest` pixels; a smaller one stays as it is.
Pixels Shrunk(const Pixels& image, int longest);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_PIXELS_H_
