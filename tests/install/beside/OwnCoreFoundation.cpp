// Another implementation of CoreFoundation in the process, as far as the names go. The library must not come here.

#include <cstdlib>

extern "C" {
void CFRelease(const void*) {
  std::abort();
}
const void* CFRetain(const void*) {
  std::abort();
}
void CFRunLoopRun() {
  std::abort();
}
unsigned long CFDictionaryGetCount(const void*) {
  std::abort();
}
int IOServiceOpen(unsigned, unsigned, unsigned, unsigned*) {
  std::abort();
}
int IOObjectRelease(unsigned) {
  std::abort();
}
}

int DrawScene() {
  CFRelease(nullptr);
  return 0;
}
