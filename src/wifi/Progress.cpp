// Decides before each chunk of a read whether the progress callback is due.

#include "Progress.h"

namespace kelva {

ReadProgress ReadProgress::AtIntervals(void (*callback)(void*, float), void* context, const int* interval,
                                       std::uint32_t total) {
  ReadProgress progress = AfterFirstChunk(callback, context, total);
  progress.interval_ = interval;
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
  if (interval_ == nullptr) return offset != 0;
  const auto interval = static_cast<std::uint32_t>(*interval_);  // a negative interval is a large one
  return interval != 0 && offset % interval == 0;
}

}  // namespace kelva
