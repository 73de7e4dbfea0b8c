// Reference counts and comparison for every CoreFoundation object.

#include "darwin/cf/Object.h"

#include <cstdio>
#include <cstdlib>

namespace darwin::cf {
namespace {

std::atomic<std::size_t> liveObjects{0};

}  // namespace

Object::Object(Type type, Lifetime lifetime) : type_(type), lifetime_(lifetime) {
  if (lifetime_ == Lifetime::kCounted) ++liveObjects;
}

Object::~Object() {
  if (lifetime_ == Lifetime::kCounted) --liveObjects;
}

void Object::Retain() const {
  if (lifetime_ == Lifetime::kCounted) references_.fetch_add(1, std::memory_order_relaxed);
}

void Object::Release() const {
  if (lifetime_ == Lifetime::kCounted && references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::size_t Object::LiveCount() {
  return liveObjects;
}

const Object& FromRef(CFTypeRef ref) {
  if (ref == nullptr) {
    std::fputs("CoreFoundation: a null reference was given to a call that takes an object.\n", stderr);
    std::abort();
  }
  return *static_cast<const Object*>(ref);
}

}  // namespace darwin::cf

using darwin::cf::FromRef;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef cf) {
  FromRef(cf).Retain();
  return cf;
}

void CFRelease(CFTypeRef cf) {
  FromRef(cf).Release();
}

CFIndex CFGetRetainCount(CFTypeRef cf) {
  return FromRef(cf).RetainCount();
}

CFTypeID CFGetTypeID(CFTypeRef cf) {
  return static_cast<CFTypeID>(FromRef(cf).GetType());
}

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2) {
  const auto& first = FromRef(cf1);
  const auto& second = FromRef(cf2);
  return first.GetType() == second.GetType() && first.Equals(second);
}

CFHashCode CFHash(CFTypeRef cf) {
  return FromRef(cf).Hash();
}

}  // extern "C"
