#ifndef KELVA_APPS_DECODER_JPEG_KIND_H_
#define KELVA_APPS_DECODER_JPEG_KIND_H_

#include <span>

namespace apps {

/// Whether a JPEG file certainly comes row by row from the top, as cameras write it. A progressive one comes in several
/// passes, and so does one that has a scan for each colour component, so that its decoder holds the whole picture at full
/// size however small it is drawn. False when in doubt.
bool ComesRowByRow(std::span<const char> bytes);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_JPEG_KIND_H_
