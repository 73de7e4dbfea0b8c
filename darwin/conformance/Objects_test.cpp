// CoreFoundation's objects: references, equality, and what stops the process.

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

CFStringRef MakeString(const char* text, CFStringEncoding encoding = kCFStringEncodingMacRoman) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text, encoding);
}

CFNumberRef MakeNumber(std::int64_t value) {
  return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value);
}

std::string Bytes(CFStringRef string, CFStringEncoding encoding) {
  char buffer[64] = "";
  EXPECT_TRUE(CFStringGetCString(string, buffer, sizeof buffer, encoding));
  return buffer;
}

TEST(Objects, ACreatedObjectHasOneReference) {
  const Owned<CFStringRef> string(MakeString("camera"));
  EXPECT_EQ(CFGetRetainCount(string.Get()), 1);
}

TEST(Objects, RetainGivesTheSameObjectWithOneReferenceMore) {
  const Owned<CFStringRef> string(MakeString("camera"));
  EXPECT_EQ(CFRetain(string.Get()), string.Get());
  EXPECT_EQ(CFGetRetainCount(string.Get()), 2);
  CFRelease(string.Get());
  EXPECT_EQ(CFGetRetainCount(string.Get()), 1);
}

TEST(Objects, StringsAreEqualByContent) {
  const Owned<CFStringRef> first(MakeString("Kelva"));
  const Owned<CFStringRef> second(MakeString("Kelva"));
  const Owned<CFStringRef> longer(MakeString("Kelva "));
  EXPECT_TRUE(CFEqual(first.Get(), second.Get()));
  EXPECT_EQ(CFHash(first.Get()), CFHash(second.Get()));
  EXPECT_FALSE(CFEqual(first.Get(), longer.Get()));
}

TEST(Objects, StringsAreEqualWhateverEncodingTheyCameIn) {
  const Owned<CFStringRef> roman(MakeString("caf\x8e"));
  const Owned<CFStringRef> utf8(MakeString("caf\xc3\xa9", kCFStringEncodingUTF8));
  EXPECT_TRUE(CFEqual(roman.Get(), utf8.Get()));
}

TEST(Objects, MacRomanTakesEveryByteAndGivesItBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  const Owned<CFStringRef> string(MakeString(all.c_str()));
  ASSERT_NE(string.Get(), nullptr);
  char buffer[256] = "";
  ASSERT_TRUE(CFStringGetCString(string.Get(), buffer, sizeof buffer, kCFStringEncodingMacRoman));
  EXPECT_EQ(buffer, all);
}

TEST(Objects, MacRomanLettersBecomeTheirUnicodeCharacters) {
  const Owned<CFStringRef> string(MakeString("\x80\xa5\xdb\xff"));
  EXPECT_EQ(Bytes(string.Get(), kCFStringEncodingUTF8), "\xc3\x84\xe2\x80\xa2\xe2\x82\xac\xcb\x87");
}

TEST(Objects, MalformedUtf8MakesNoString) {
  for (const char* text : {"\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\x80"}) {
    EXPECT_EQ(MakeString(text, kCFStringEncodingUTF8), nullptr);
  }
}

TEST(Objects, AStringThatDoesNotFitTheBufferIsNotCopied) {
  const Owned<CFStringRef> string(MakeString("1234"));
  char buffer[5] = "";
  EXPECT_FALSE(CFStringGetCString(string.Get(), buffer, 4, kCFStringEncodingMacRoman));
  EXPECT_TRUE(CFStringGetCString(string.Get(), buffer, 5, kCFStringEncodingMacRoman));
  EXPECT_STREQ(buffer, "1234");
}

TEST(Objects, ACharacterWithoutAPlaceInTheEncodingIsNotCopied) {
  const Owned<CFStringRef> string(MakeString("\xe6\x97\xa5", kCFStringEncodingUTF8));
  char buffer[16] = "";
  EXPECT_FALSE(CFStringGetCString(string.Get(), buffer, sizeof buffer, kCFStringEncodingMacRoman));
}

TEST(Objects, AConstantStringIsOneObjectForEachText) {
  EXPECT_EQ(CFSTR("one"), CFSTR("one"));
  EXPECT_NE(CFSTR("one"), CFSTR("two"));
  const Owned<CFStringRef> made(MakeString("one"));
  EXPECT_TRUE(CFEqual(CFSTR("one"), made.Get()));
}

TEST(Objects, AConstantStringSurvivesAnyNumberOfReleases) {
  const CFStringRef constant = CFSTR("constant");
  for (int i = 0; i < 3; ++i) CFRelease(constant);
  const Owned<CFStringRef> made(MakeString("constant"));
  EXPECT_TRUE(CFEqual(constant, made.Get()));
}

TEST(Objects, TheDefaultModeIsAStringOfItsOwnName) {
  EXPECT_TRUE(CFEqual(kCFRunLoopDefaultMode, CFSTR("kCFRunLoopDefaultMode")));
}

TEST(Objects, NumbersAreEqualByValueWhateverTheirWidth) {
  const std::int32_t narrow = -5;
  const Owned<CFNumberRef> first(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &narrow));
  const Owned<CFNumberRef> second(MakeNumber(-5));
  const Owned<CFNumberRef> other(MakeNumber(5));
  EXPECT_TRUE(CFEqual(first.Get(), second.Get()));
  EXPECT_FALSE(CFEqual(first.Get(), other.Get()));
}

TEST(Objects, ANumberThatDoesNotFitIsSaidToBeLossy) {
  const Owned<CFNumberRef> large(MakeNumber(0x100000001));
  std::int32_t narrow = 0;
  std::int64_t wide = 0;
  EXPECT_FALSE(CFNumberGetValue(large.Get(), kCFNumberSInt32Type, &narrow));
  EXPECT_TRUE(CFNumberGetValue(large.Get(), kCFNumberSInt64Type, &wide));
  EXPECT_EQ(wide, 0x100000001);
}

TEST(Objects, ObjectsOfDifferentTypesAreNotEqual) {
  const Owned<CFNumberRef> one(MakeNumber(1));
  const Owned<CFStringRef> text(MakeString("1"));
  EXPECT_FALSE(CFEqual(one.Get(), text.Get()));
  EXPECT_FALSE(CFEqual(one.Get(), kCFBooleanTrue));
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
  EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
}

TEST(Objects, TypesAreToldApart) {
  const Owned<CFNumberRef> number(MakeNumber(1));
  EXPECT_EQ(CFGetTypeID(CFSTR("text")), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(number.Get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanFalse), CFBooleanGetTypeID());
  EXPECT_NE(CFNumberGetTypeID(), CFBooleanGetTypeID());
}

TEST(ObjectsDeathTest, ANullReferenceStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(CFRelease(nullptr), "");
  EXPECT_DEATH(CFRetain(nullptr), "");
  EXPECT_DEATH(CFEqual(nullptr, CFSTR("text")), "");
  EXPECT_DEATH(CFEqual(CFSTR("text"), nullptr), "");
  EXPECT_DEATH(CFStringCreateWithCString(kCFAllocatorDefault, nullptr, kCFStringEncodingMacRoman), "");
}

}  // namespace
}  // namespace conformance
