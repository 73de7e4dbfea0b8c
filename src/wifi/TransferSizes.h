#ifndef KELVA_WIFI_TRANSFER_SIZES_H_
#define KELVA_WIFI_TRANSFER_SIZES_H_

#include "Camera.h"

namespace kelva {

/// The two sizes that a platform class gave its camera, for code beside Camera that moves chunks. A transport of another
/// kind may move less at once than OsxCamera does.
class TransferSizes : Camera {
 public:
  TransferSizes() = delete;

  static const int& ChunkSize(const Camera& camera) { return camera.*(&TransferSizes::chunkSize_); }
  static const int& ProgressInterval(const Camera& camera) { return camera.*(&TransferSizes::progressInterval_); }
};

}  // namespace kelva

#endif  // KELVA_WIFI_TRANSFER_SIZES_H_
