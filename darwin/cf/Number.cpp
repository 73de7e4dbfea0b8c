// Numbers and booleans of CoreFoundation, which registry properties hold.

#include "darwin/cf/Number.h"

#include <cstring>

namespace darwin::cf {
namespace {

template <class Ref>
Ref ToRef(const Object& object) {
  return reinterpret_cast<Ref>(&object);
}

/// Sign-extends, so that -1 of any width is the same number.
template <class Integer>
std::uint64_t Widened(const void* value) {
  Integer integer;
  std::memcpy(&integer, value, sizeof integer);
  return static_cast<std::uint64_t>(std::int64_t{integer});
}

template <class Integer>
bool Narrow(std::uint64_t value, void* result) {
  const auto integer = static_cast<Integer>(value);
  std::memcpy(result, &integer, sizeof integer);
  return static_cast<std::uint64_t>(std::int64_t{integer}) == value;
}

const Truth& ImmortalTruth(bool value) {
  // Never destroyed: constants may be used while the process ends.
  static const auto* truths = new Truth[2]{Truth(false, Lifetime::kImmortal), Truth(true, Lifetime::kImmortal)};
  return truths[value ? 1 : 0];
}

}  // namespace

bool Number::Equals(const Object& other) const {
  return value_ == static_cast<const Number&>(other).value_;
}

CFTypeRef MakeBoolean(bool value) {
  return ToRef<CFTypeRef>(ImmortalTruth(value));
}

}  // namespace darwin::cf

using namespace darwin::cf;

extern "C" {

const CFBooleanRef kCFBooleanTrue = ToRef<CFBooleanRef>(ImmortalTruth(true));
const CFBooleanRef kCFBooleanFalse = ToRef<CFBooleanRef>(ImmortalTruth(false));

CFTypeID CFBooleanGetTypeID(void) {
  return static_cast<CFTypeID>(Type::kBoolean);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
  return static_cast<const Truth&>(FromRef(boolean)).Value();
}

CFTypeID CFNumberGetTypeID(void) {
  return static_cast<CFTypeID>(Type::kNumber);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType theType, const void* valuePtr) {
  if (theType == kCFNumberSInt32Type) return ToRef<CFNumberRef>(*new Number(Widened<std::int32_t>(valuePtr)));
  if (theType == kCFNumberSInt64Type) return ToRef<CFNumberRef>(*new Number(Widened<std::int64_t>(valuePtr)));
  return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr) {
  const std::uint64_t value = static_cast<const Number&>(FromRef(number)).Value();
  if (theType == kCFNumberSInt32Type) return Narrow<std::int32_t>(value, valuePtr);
  return theType == kCFNumberSInt64Type && Narrow<std::int64_t>(value, valuePtr);
}

}  // extern "C"
