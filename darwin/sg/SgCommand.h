#ifndef KELVA_DARWIN_SG_SG_COMMAND_H_
#define KELVA_DARWIN_SG_SG_COMMAND_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "darwin/sg/SgSystem.h"
#include "wire/TransferStatus.h"

namespace darwin::sg {

/// SG_FLAG_MMAP_IO, which glibc's <scsi/sg.h> does not have: the data stay in the mapped reserved buffer.
inline constexpr unsigned kFlagMmapIo = 4;

enum class DataPhase { kNone, kToDevice, kFromDevice };

/// One SCSI command. `data` is `length` bytes of the caller's, sent or filled; null without a data phase, and when the
/// data stay in the node's mapped buffer.
struct SgRequest {
  std::span<const std::uint8_t> cdb;
  DataPhase phase = DataPhase::kNone;
  void* data = nullptr;
  std::uint32_t length = 0;
  std::uint32_t timeoutMs = 0;
  bool intoMapped = false;
};

/// How the command ended, as the kernel tells.
struct SgOutcome {
  int error = 0;  ///< errno of the call; unless it is 0, the other members mean nothing
  std::uint16_t hostStatus = 0;
  std::uint16_t driverStatus = 0;  ///< without the bit that announces sense data
  std::uint8_t status = 0;
  wire::Sense sense;
  std::int64_t moved = 0;  ///< asked minus residual, unchecked: the residual is the device's claim

  /// True when the command ended in order and moved between 0 and `length` bytes: only then are there data.
  bool Succeeded(std::uint32_t length) const;
};

/// Sends the command exactly once, with every signal held back, and waits for its end.
SgOutcome RunCommand(SgSystem& system, int descriptor, const SgRequest& request);

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_COMMAND_H_
