// Strings of CoreFoundation, constant and counted ones.

#include "darwin/cf/String.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

#include "darwin/cf/MacRoman.h"

namespace darwin::cf {
namespace {

CFStringRef Ref(const Object* string) {
  return reinterpret_cast<CFStringRef>(string);
}

std::optional<std::string> Decode(const char* text, CFStringEncoding encoding) {
  if (encoding == kCFStringEncodingMacRoman) return Utf8FromMacRoman(text);
  if (encoding == kCFStringEncodingUTF8 && IsUtf8(text)) return text;
  return std::nullopt;
}

std::optional<std::string> Encode(const std::string& utf8, CFStringEncoding encoding) {
  if (encoding == kCFStringEncodingMacRoman) return MacRomanFromUtf8(utf8);
  if (encoding == kCFStringEncodingUTF8) return utf8;
  return std::nullopt;
}

}  // namespace

bool String::Equals(const Object& other) const {
  return utf8_ == static_cast<const String&>(other).utf8_;
}

CFHashCode String::Hash() const {
  return std::hash<std::string>()(utf8_);
}

const std::string* TextOf(CFTypeRef ref) {
  if (ref == nullptr || FromRef(ref).GetType() != Type::kString) return nullptr;
  return &static_cast<const String&>(FromRef(ref)).Utf8();
}

CFStringRef MakeString(std::string utf8) {
  return Ref(new String(std::move(utf8)));
}

}  // namespace darwin::cf

using namespace darwin::cf;

extern "C" {

CFTypeID CFStringGetTypeID(void) {
  return static_cast<CFTypeID>(Type::kString);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* cStr, CFStringEncoding encoding) {
  if (cStr == nullptr) {
    std::fputs("CoreFoundation: CFStringCreateWithCString() was given no text.\n", stderr);
    std::abort();
  }
  std::optional<std::string> utf8 = Decode(cStr, encoding);
  return utf8 ? MakeString(std::move(*utf8)) : nullptr;
}

Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  const std::string* utf8 = TextOf(theString);
  const std::optional<std::string> text = utf8 != nullptr ? Encode(*utf8, encoding) : std::nullopt;
  if (!text || static_cast<CFIndex>(text->size()) >= bufferSize) return false;
  std::memcpy(buffer, text->c_str(), text->size() + 1);
  return true;
}

CFStringRef __CFStringMakeConstantString(const char* cStr) {
  static std::mutex mutex;
  // Never destroyed: constants may be used while the process ends.
  static auto* constants = new std::map<std::string, const String*>();
  const std::lock_guard lock(mutex);
  const String*& constant = (*constants)[cStr];
  if (constant == nullptr) constant = new String(cStr, Lifetime::kImmortal);
  return Ref(constant);
}

}  // extern "C"
