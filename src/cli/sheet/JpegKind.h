#ifndef KELVA_CLI_SHEET_JPEG_KIND_H_
#define KELVA_CLI_SHEET_JPEG_KIND_H_

#include <span>

namespace kelva {

/// Whether a JPEG file certainly comes row by row from the top, as cameras write it. A progressive one comes in several
/// passes, so that its decoder holds the whole picture at full size however small it is drawn. False when in doubt.
bool ComesRowByRow(std::span<const char> bytes);

}  // namespace kelva

#endif  // KELVA_CLI_SHEET_JPEG_KIND_H_
