#ifndef KELVA_VCAM_DEVICE_UPGRADE_H_
#define KELVA_VCAM_DEVICE_UPGRADE_H_

#include <chrono>
#include <cstdint>
#include <span>
#include <string>

#include "base/Bytes.h"
#include "vcam/device/Sha1.h"

namespace vcam {

/// A firmware upgrade: announced with its length, received in chunks in order, then written, which takes time.
///
/// Status on the wire, 12 bytes: progress as a float from 0 to 1, a 32-bit number that is 1 while an upgrade runs, and
/// one that is 1 when the last upgrade failed. Receiving is the first half of the progress, writing the second.
class Upgrade {
 public:
  using Time = std::chrono::system_clock::time_point;

  void Start(std::uint32_t length);
  /// Takes a chunk in; false when no upgrade is being received or the chunk is not the next one.
  bool Receive(std::uint32_t offset, std::span<const std::uint8_t> chunk);
  /// Ends the receiving. False when none was started. An image that is empty or incomplete, or `doomed`, fails.
  bool Finish(Time now, std::chrono::milliseconds duration, bool doomed);
  /// Drops an upgrade that has not been finished.
  void Abandon();

  bool Receiving() const { return phase_ == Phase::kReceiving; }
  bool Writing(Time now) const;
  base::Bytes Status(Time now) const;
  /// The first 12 hexadecimal digits of the SHA-1 of the last image that was written; empty before that.
  std::string Firmware(Time now) const;

 private:
  enum class Phase { kIdle, kReceiving, kWriting, kFailed };

  float Progress(Time now) const;
  bool Failed(Time now) const;

  Phase phase_ = Phase::kIdle;
  std::uint32_t length_ = 0;
  std::uint32_t received_ = 0;
  Sha1 digest_;
  std::string image_;
  std::string previous_;
  bool doomed_ = false;
  Time start_{};
  std::chrono::milliseconds duration_{0};
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_UPGRADE_H_
