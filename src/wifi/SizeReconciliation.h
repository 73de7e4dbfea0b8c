#ifndef KELVA_WIFI_SIZE_RECONCILIATION_H_
#define KELVA_WIFI_SIZE_RECONCILIATION_H_

#include <cstdint>

namespace kelva {

/// Holds the size that arrived against the size that the camera announced. True when everything arrived, also with the
/// one surplus byte that the camera may deliver and that the caller cuts off. Fewer bytes: throws CameraError
/// "ReadFile() truncated.", or returns false. More than one surplus byte is the fatal assertion
/// "data.size() - 1 == fileSize" in `function`.
bool ReconcileSize(std::uint64_t received, std::uint32_t announced, const char* function);

}  // namespace kelva

#endif  // KELVA_WIFI_SIZE_RECONCILIATION_H_
