// Dictionaries of CoreFoundation, with and without the callbacks that retain and compare what they hold.

#include "darwin/cf/Dictionary.h"

namespace darwin::cf {
namespace {

const void* RetainObject(CFAllocatorRef, const void* value) {
  return CFRetain(value);
}

void ReleaseObject(CFAllocatorRef, const void* value) {
  CFRelease(value);
}

template <class CallBacks>
const void* Keep(const CallBacks& callBacks, const void* value) {
  return callBacks.retain != nullptr ? callBacks.retain(kCFAllocatorDefault, value) : value;
}

template <class CallBacks>
void Drop(const CallBacks& callBacks, const void* value) {
  if (callBacks.release != nullptr) callBacks.release(kCFAllocatorDefault, value);
}

template <class CallBacks>
bool Same(const CallBacks& callBacks, const void* first, const void* second) {
  return first == second || (callBacks.equal != nullptr && callBacks.equal(first, second));
}

Dictionary& FromDictionary(CFDictionaryRef ref) {
  return const_cast<Dictionary&>(static_cast<const Dictionary&>(FromRef(ref)));
}

}  // namespace

Dictionary::Dictionary(const CFDictionaryKeyCallBacks* keys, const CFDictionaryValueCallBacks* values)
    : Object(Type::kDictionary),
      keys_(keys != nullptr ? *keys : CFDictionaryKeyCallBacks{}),
      values_(values != nullptr ? *values : CFDictionaryValueCallBacks{}) {}

Dictionary::~Dictionary() {
  for (const auto& [key, value] : entries_) {
    Drop(keys_, key);
    Drop(values_, value);
  }
}

void Dictionary::Set(const void* key, const void* value) {
  // Kept before the old one is dropped: they may be the same object.
  const void* kept = Keep(values_, value);
  const std::size_t index = Find(key);
  if (index == entries_.size()) {
    entries_.emplace_back(Keep(keys_, key), kept);
    return;
  }
  Drop(values_, std::exchange(entries_[index].second, kept));
}

const void* Dictionary::Get(const void* key) const {
  const std::size_t index = Find(key);
  return index == entries_.size() ? nullptr : entries_[index].second;
}

bool Dictionary::HoldsObjects() const {
  return keys_.retain == RetainObject && values_.retain == RetainObject;
}

bool Dictionary::Equals(const Object& other) const {
  const auto& dictionary = static_cast<const Dictionary&>(other);
  if (entries_.size() != dictionary.entries_.size()) return false;
  for (const auto& [key, value] : entries_) {
    const std::size_t index = dictionary.Find(key);
    if (index == dictionary.entries_.size() || !Same(values_, value, dictionary.entries_[index].second)) return false;
  }
  return true;
}

std::size_t Dictionary::Find(const void* key) const {
  std::size_t index = 0;
  while (index < entries_.size() && !Same(keys_, entries_[index].first, key)) ++index;
  return index;
}

}  // namespace darwin::cf

using namespace darwin::cf;

extern "C" {

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0,       RetainObject, ReleaseObject,
                                                                nullptr, CFEqual,      CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, RetainObject, ReleaseObject, nullptr, CFEqual};

CFTypeID CFDictionaryGetTypeID(void) {
  return static_cast<CFTypeID>(Type::kDictionary);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  return reinterpret_cast<CFMutableDictionaryRef>(static_cast<Object*>(new Dictionary(keyCallBacks, valueCallBacks)));
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void* key, const void* value) {
  FromDictionary(theDict).Set(key, value);
}

const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key) {
  return FromDictionary(theDict).Get(key);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict) {
  return static_cast<CFIndex>(FromDictionary(theDict).Entries().size());
}

}  // extern "C"
