#ifndef KELVA_APPS_KELVA_THUMBNAIL_WORKER_H_
#define KELVA_APPS_KELVA_THUMBNAIL_WORKER_H_

namespace apps {

/// Draws pictures from `descriptor` until its end: for each, 8 bytes with the file's size come, little-endian, then the
/// file; the answer goes back. Returns false when the other end broke that order.
bool DrawAll(int descriptor);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_THUMBNAIL_WORKER_H_
