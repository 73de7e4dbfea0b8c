#ifndef KELVA_WIFI_BULK_READ_H_
#define KELVA_WIFI_BULK_READ_H_

#include <cstdint>
#include <optional>
#include <string>

#include "BundleSplitter.h"
#include "Camera.h"

namespace kelva {

/// One bulk read: what the camera is asked to assemble, and who hears how far it is.
struct BulkRead {
  std::uint8_t selection;           ///< `select::kBatch` and the three after it
  std::optional<std::string> text;  ///< sent with the selection, with its NUL; none for a selection without data phase
  void (*progress)(void*, float);
  void* context;
  bool flag;  ///< handed to ClearCancel and every transfer
};

/// The bulk-read sequence: asks IsOpen, clears the cancel state, has the bundle prepared, asks its size and reads it
/// into the splitter. Returns the announced size; nothing when the camera is not open, a transfer returned false or the
/// camera announced 0 bytes.
std::optional<std::uint32_t> ReadBundle(Camera& camera, const int& chunkSize, const BulkRead& read,
                                        BundleSplitter& bundle);

}  // namespace kelva

#endif  // KELVA_WIFI_BULK_READ_H_
