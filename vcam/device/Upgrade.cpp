// The phases of a firmware upgrade and what its status says in each.
#include "vcam/device/Upgrade.h"

#include <algorithm>

namespace vcam {
namespace {

constexpr std::size_t kFirmwareDigits = 12;

}  // namespace

void Upgrade::Start(std::uint32_t length) {
  phase_ = Phase::kReceiving;
  length_ = length;
  received_ = 0;
  digest_ = Sha1();
}

bool Upgrade::Receive(std::uint32_t offset, std::span<const std::uint8_t> chunk) {
  if (!Receiving() || offset != received_ || chunk.size() > length_ - received_) return false;
  digest_.Update(chunk);
  received_ += static_cast<std::uint32_t>(chunk.size());
  return true;
}

bool Upgrade::Finish(Time now, std::chrono::milliseconds duration, bool doomed) {
  if (!Receiving()) return false;
  if (length_ == 0 || received_ != length_) {
    phase_ = Phase::kFailed;
    return true;
  }
  phase_ = Phase::kWriting;
  start_ = now;
  duration_ = duration;
  doomed_ = doomed;
  if (!doomed) {
    previous_ = image_;
    image_ = digest_.Hex().substr(0, kFirmwareDigits);
  }
  return true;
}

void Upgrade::Abandon() {
  if (Receiving()) phase_ = Phase::kFailed;
}

bool Upgrade::Writing(Time now) const {
  if (phase_ != Phase::kWriting) return false;
  return now < start_ + (doomed_ ? duration_ / 2 : duration_);
}

bool Upgrade::Failed(Time now) const {
  return phase_ == Phase::kFailed || (phase_ == Phase::kWriting && doomed_ && !Writing(now));
}

float Upgrade::Progress(Time now) const {
  if (phase_ == Phase::kIdle || length_ == 0) return 0.0F;
  const float received = 0.5F * static_cast<float>(received_) / static_cast<float>(length_);
  if (phase_ != Phase::kWriting) return received;
  if (duration_.count() <= 0) return doomed_ ? 0.75F : 1.0F;
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(now - start_);
  const float written = static_cast<float>(elapsed.count()) / static_cast<float>(duration_.count());
  return 0.5F + 0.5F * std::clamp(written, 0.0F, doomed_ ? 0.5F : 1.0F);
}

base::Bytes Upgrade::Status(Time now) const {
  base::Bytes bytes;
  base::Append(bytes, Progress(now), std::uint32_t{Receiving() || Writing(now)}, std::uint32_t{Failed(now)});
  return bytes;
}

std::string Upgrade::Firmware(Time now) const {
  return Writing(now) && !doomed_ ? previous_ : image_;
}

}  // namespace vcam
