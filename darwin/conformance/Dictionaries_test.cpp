// CoreFoundation's dictionaries, with and without callbacks.

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

CFMutableDictionaryRef MakeDictionary() {
  return CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                   &kCFTypeDictionaryValueCallBacks);
}

CFStringRef MakeString(const char* text) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingMacRoman);
}

TEST(Dictionaries, KeysAndValuesAreKeptAndGivenBack) {
  const Owned<CFStringRef> key(MakeString("key"));
  const Owned<CFStringRef> value(MakeString("value"));
  {
    const Owned<CFMutableDictionaryRef> dictionary(MakeDictionary());
    CFDictionarySetValue(dictionary.Get(), key.Get(), value.Get());
    EXPECT_EQ(CFGetRetainCount(key.Get()), 2);
    EXPECT_EQ(CFGetRetainCount(value.Get()), 2);
  }
  EXPECT_EQ(CFGetRetainCount(key.Get()), 1);
  EXPECT_EQ(CFGetRetainCount(value.Get()), 1);
}

TEST(Dictionaries, AnEqualKeyFindsTheValue) {
  const Owned<CFMutableDictionaryRef> dictionary(MakeDictionary());
  const Owned<CFStringRef> key(MakeString("key"));
  CFDictionarySetValue(dictionary.Get(), CFSTR("key"), CFSTR("value"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), key.Get()), CFSTR("value"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), CFSTR("other")), nullptr);
}

TEST(Dictionaries, ASecondValueReplacesTheFirstAndKeepsTheFirstKey) {
  const Owned<CFMutableDictionaryRef> dictionary(MakeDictionary());
  const Owned<CFStringRef> firstKey(MakeString("key"));
  const Owned<CFStringRef> secondKey(MakeString("key"));
  const Owned<CFStringRef> first(MakeString("1"));
  CFDictionarySetValue(dictionary.Get(), firstKey.Get(), first.Get());
  CFDictionarySetValue(dictionary.Get(), secondKey.Get(), CFSTR("2"));
  EXPECT_EQ(CFDictionaryGetCount(dictionary.Get()), 1);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), CFSTR("key")), CFSTR("2"));
  EXPECT_EQ(CFGetRetainCount(first.Get()), 1);
  EXPECT_EQ(CFGetRetainCount(firstKey.Get()), 2);
  EXPECT_EQ(CFGetRetainCount(secondKey.Get()), 1);
}

TEST(Dictionaries, SettingAValueAgainLeavesItsReferencesAsTheyWere) {
  const Owned<CFMutableDictionaryRef> dictionary(MakeDictionary());
  const Owned<CFStringRef> value(MakeString("value"));
  CFDictionarySetValue(dictionary.Get(), CFSTR("key"), value.Get());
  CFDictionarySetValue(dictionary.Get(), CFSTR("key"), value.Get());
  EXPECT_EQ(CFGetRetainCount(value.Get()), 2);
}

TEST(Dictionaries, WithoutCallbacksNothingIsRetained) {
  const Owned<CFStringRef> key(MakeString("key"));
  const Owned<CFStringRef> value(MakeString("value"));
  const Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
  CFDictionarySetValue(dictionary.Get(), key.Get(), value.Get());
  EXPECT_EQ(CFGetRetainCount(key.Get()), 1);
  EXPECT_EQ(CFGetRetainCount(value.Get()), 1);
}

TEST(Dictionaries, WithoutCallbacksKeysAreComparedByAddress) {
  const Owned<CFStringRef> key(MakeString("key"));
  const Owned<CFStringRef> twin(MakeString("key"));
  const Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
  CFDictionarySetValue(dictionary.Get(), key.Get(), CFSTR("1"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), twin.Get()), nullptr);
  CFDictionarySetValue(dictionary.Get(), twin.Get(), CFSTR("2"));
  EXPECT_EQ(CFDictionaryGetCount(dictionary.Get()), 2);
}

TEST(Dictionaries, WithoutCallbacksAnyPointerMayBeKept) {
  const Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
  int something = 0;
  CFDictionarySetValue(dictionary.Get(), nullptr, &something);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), nullptr), &something);
}

TEST(Dictionaries, AreEqualWhenTheirEntriesAre) {
  const Owned<CFMutableDictionaryRef> first(MakeDictionary());
  const Owned<CFMutableDictionaryRef> second(MakeDictionary());
  CFDictionarySetValue(first.Get(), CFSTR("a"), CFSTR("1"));
  CFDictionarySetValue(first.Get(), CFSTR("b"), CFSTR("2"));
  CFDictionarySetValue(second.Get(), CFSTR("b"), CFSTR("2"));
  EXPECT_FALSE(CFEqual(first.Get(), second.Get()));
  CFDictionarySetValue(second.Get(), CFSTR("a"), CFSTR("1"));
  EXPECT_TRUE(CFEqual(first.Get(), second.Get()));
  EXPECT_EQ(CFGetTypeID(first.Get()), CFDictionaryGetTypeID());
}

}  // namespace
}  // namespace conformance
