#ifndef KELVA_WIFI_PROGRESS_H_
#define KELVA_WIFI_PROGRESS_H_

#include <cstdint>

namespace kelva {

/// Reports the progress of a long read: before a chunk, with the fraction of bytes already transferred.
class ReadProgress {
 public:
  /// Reports nothing, for reads of an unknown size.
  static ReadProgress None() { return {}; }

  /// Before each chunk whose offset is a whole multiple of `*interval`, offset 0 included; never when that is 0. The
  /// interval is read anew before each chunk and must live as long as the read.
  static ReadProgress AtIntervals(void (*callback)(void*, float), void* context, const int* interval,
                                  std::uint32_t total);

  /// Before each chunk after the first.
  static ReadProgress AfterFirstChunk(void (*callback)(void*, float), void* context, std::uint32_t total);

  void BeforeChunk(std::uint32_t offset) const;

 private:
  bool IsDue(std::uint32_t offset) const;

  void (*callback_)(void*, float) = nullptr;
  void* context_ = nullptr;
  const int* interval_ = nullptr;  // null: every chunk but the first
  std::uint32_t total_ = 0;
};

}  // namespace kelva

#endif  // KELVA_WIFI_PROGRESS_H_
