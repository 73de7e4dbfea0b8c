#include <cstdarg>

#include "tests/umockdev/HandOver.h"

// The interface of ThreadSanitizer's runtime, which gcc ships without a header; and the linker's two names of a wrapped call.
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
extern "C" int __real_ioctl(int descriptor, unsigned long request, void* argument);
extern "C" int __wrap_ioctl(int descriptor, unsigned long request, ...);

namespace mock {
namespace {

char handedOver;

}  // namespace

void GiveOver() {
  __tsan_release(&handedOver);
}

void TakeOver() {
  __tsan_acquire(&handedOver);
}

}  // namespace mock

int __wrap_ioctl(int descriptor, unsigned long request, ...) {
  std::va_list arguments;
  va_start(arguments, request);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  mock::GiveOver();
  const int result = __real_ioctl(descriptor, request, argument);
  mock::TakeOver();
  return result;
}
