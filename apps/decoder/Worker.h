#ifndef KELVA_APPS_DECODER_WORKER_H_
#define KELVA_APPS_DECODER_WORKER_H_

#include <string_view>

namespace apps {

/// What the process says when it can draw: from here on all that it meets comes from a picture.
inline constexpr std::string_view kReady = "KTHR";
/// The exit status of a process that the system does not let give up its rights. It has drawn nothing.
inline constexpr int kCannotConfine = 3;

/// Says kReady and draws pictures from `descriptor` until its end: for each, 8 bytes with the file's size come,
/// little-endian, then the file; the answer goes back. With kStartOnly or kTimeOnly in the size the file may end
/// early; with the latter only its time goes back. With kShownLarge the drawing is larger. Returns false when the other end broke that order.
bool DrawAll(int descriptor);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_WORKER_H_
