// Which calls guard a user's files: the system's, or those of a test.
#include "apps/files/FileCalls.h"

#include <atomic>

#include "apps/files/SystemCalls.h"

namespace apps {
namespace {

std::atomic<FileCalls*>& Chosen() {
  static SystemCalls system;
  static std::atomic<FileCalls*> chosen = &system;
  return chosen;
}

}  // namespace

FileCalls& FileCalls::Current() {
  return *Chosen().load();
}

FileCalls& FileCalls::Replace(FileCalls& calls) {
  return *Chosen().exchange(&calls);
}

}  // namespace apps
