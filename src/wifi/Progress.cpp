#include "Progress.h"

namespace kelva {

ReadProgress ReadProgress::AtIntervals(void (*callback)(void*, float), void* context, int interval,
                                       std::uint32_t total) {
  ReadProgress progress;
  progress.callback_ = interval != 0 ? callback : nullptr;
  progress.context_ = context;
  progress.interval_ = static_cast<std::uint32_t>(interval);
  progress.total_ = total;
  return progress;
}

ReadProgress ReadProgress::AfterFirstChunk(void (*callback)(void*, float), void* context, std::uint32_t total) {
  ReadProgress progress;
  progress.callback_ = callback;
  progress.context_ = context;
  progress.total_ = total;
  return progress;
}

void ReadProgress::BeforeChunk(std::uint32_t offset) const {
  if (callback_ != nullptr && total_ != 0 && IsDue(offset)) {
    callback_(context_, static_cast<float>(offset) / static_cast<float>(total_));
  }
}

bool ReadProgress::IsDue(std::uint32_t offset) const {
  return interval_ == 0 ? offset != 0 : offset % interval_ == 0;
}

}  // namespace kelva
