// Remembers temporary files, so that every way to end the process can remove them.
#include "apps/commandline/Scratch.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace apps {
namespace {

enum State : int { kFree, kFilling, kLive };

struct Slot {
  std::atomic<int> state = kFree;
  int folder = -1;
  std::array<char, 256> name{};
};

// Plain static storage: a signal handler reads it.
constexpr int kSlots = 128;
std::array<Slot, kSlots> slots;

int TakeSlot() {
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (slots[static_cast<std::size_t>(i)].state.compare_exchange_strong(expected, kFilling)) return i;
  }
  throw std::length_error("too many temporary files at once");
}

}  // namespace

ScratchRecord::ScratchRecord(int folder, const std::string& name) {
  if (name.size() >= Slot{}.name.size()) throw std::length_error("name of a temporary file too long");
  index_ = TakeSlot();
  Slot& slot = slots[static_cast<std::size_t>(index_)];
  slot.folder = folder;
  std::memcpy(slot.name.data(), name.c_str(), name.size() + 1);
  slot.state.store(kLive);
}

ScratchRecord::~ScratchRecord() {
  Forget();
}

void ScratchRecord::Forget() {
  if (index_ < 0) return;
  slots[static_cast<std::size_t>(index_)].state.store(kFree);
  index_ = -1;
}

void RemoveScratchFiles() noexcept {
  const int saved = errno;
  for (const Slot& slot : slots) {
    if (slot.state.load() == kLive) ::unlinkat(slot.folder, slot.name.data(), 0);
  }
  errno = saved;
}

}  // namespace apps
