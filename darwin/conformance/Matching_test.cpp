// IOServiceGetMatchingServices: what a matching dictionary asks for, and who owns it afterwards.

#include <cstdint>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

CFMutableDictionaryRef MakeDictionary() {
  return CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                   &kCFTypeDictionaryValueCallBacks);
}

/// A dictionary that asks for a class and for one property of it; consumed by the search.
CFMutableDictionaryRef WithProperty(const char* className, CFStringRef key, CFTypeRef value) {
  const CFMutableDictionaryRef matching = IOServiceMatching(className);
  const Owned<CFMutableDictionaryRef> properties(MakeDictionary());
  CFDictionarySetValue(properties.Get(), key, value);
  CFDictionarySetValue(matching, CFSTR(kIOPropertyMatchKey), properties.Get());
  return matching;
}

class Matching : public RegistryTest {
 protected:
  /// A search whose dictionary is kept, to be looked at afterwards.
  static kern_return_t Search(CFMutableDictionaryRef matching, io_iterator_t* iterator) {
    CFRetain(matching);
    return IOServiceGetMatchingServices(MACH_PORT_NULL, matching, iterator);
  }
};

/// Asks for the class of a camera's driver, or for a property that only its service has.
class MatchingOfACamera : public Matching {};

TEST_F(Matching, AClassNameMakesADictionaryOfOneEntry) {
  const Owned<CFMutableDictionaryRef> matching(IOServiceMatching(kDriver));
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
  EXPECT_EQ(CFDictionaryGetCount(matching.Get()), 1);
  EXPECT_TRUE(CFEqual(CFDictionaryGetValue(matching.Get(), CFSTR(kIOProviderClassKey)), CFSTR("com_kelva_Glimmer")));
}

TEST_F(MatchingOfACamera, OnlyServicesOfTheClassAreFound) {
  Plug({.serial = "K1"});
  Plug({.serial = "K2", .peripheralType = 0});
  EXPECT_THAT(SerialsOf(Find(IOServiceMatching(kDriver))), ElementsAre("K1"));
  EXPECT_THAT(SerialsOf(Find(IOServiceMatching(kDiskDriver))), ElementsAre("K2"));
  EXPECT_THAT(Find(IOServiceMatching("com_kelva")), IsEmpty());
}

TEST_F(MatchingOfACamera, ASuperclassFindsItsSubclasses) {
  Plug();
  EXPECT_THAT(Find(WithProperty("IOService", CFSTR("IOClass"), CFSTR("com_kelva_Glimmer"))), SizeIs(1));
}

TEST_F(MatchingOfACamera, EveryPropertyMustBeThereAndEqual) {
  Plug({.serial = "K1", .vendor = "Kelva"});
  Plug({.serial = "O1", .vendor = "Other"});
  EXPECT_THAT(SerialsOf(Find(WithProperty(kDriver, CFSTR("Vendor Identification"), CFSTR("Kelva")))),
              ElementsAre("K1"));
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("Vendor Identification"), CFSTR("Kelv"))), IsEmpty());
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("No Such Property"), CFSTR("Kelva"))), IsEmpty());
}

TEST_F(MatchingOfACamera, APropertyOfAnAncestorDoesNotCount) {
  Plug({.serial = "K1"});
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("USB Serial Number"), CFSTR("K1"))), IsEmpty());
}

TEST_F(MatchingOfACamera, ATextIsNotANumberNorATruthValue) {
  Plug();
  const std::int64_t one = 1;
  const Owned<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &one));
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("Vendor Identification"), number.Get())), IsEmpty());
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("Vendor Identification"), kCFBooleanTrue)), IsEmpty());
}

TEST_F(MatchingOfACamera, AnEmptyPropertyDictionaryAsksForNothing) {
  Plug();
  const CFMutableDictionaryRef matching = IOServiceMatching(kDriver);
  const Owned<CFMutableDictionaryRef> nothing(MakeDictionary());
  CFDictionarySetValue(matching, CFSTR(kIOPropertyMatchKey), nothing.Get());
  EXPECT_THAT(Find(matching), SizeIs(1));
}

TEST_F(MatchingOfACamera, ADictionaryAsAPropertysValueMatchesNoText) {
  Plug();
  const Owned<CFMutableDictionaryRef> nothing(MakeDictionary());
  EXPECT_THAT(Find(WithProperty(kDriver, CFSTR("Vendor Identification"), nothing.Get())), IsEmpty());
}

TEST_F(Matching, PropertiesThatAreNoDictionaryMatchNothing) {
  Plug();
  const CFMutableDictionaryRef matching = MatchingCameras();
  CFDictionarySetValue(matching, CFSTR(kIOPropertyMatchKey), CFSTR("Kelva"));
  EXPECT_THAT(Find(matching), IsEmpty());
}

TEST_F(Matching, AnUnknownKeyIsIgnored) {
  Plug();
  const CFMutableDictionaryRef matching = MatchingCameras();
  CFDictionarySetValue(matching, CFSTR("Nobody Knows This Key"), CFSTR("value"));
  EXPECT_THAT(Find(matching), SizeIs(1));
}

TEST_F(Matching, NoMatchIsSuccessWithoutAnIterator) {
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &iterator), kIOReturnSuccess);
  EXPECT_EQ(iterator, 0u);
}

TEST_F(Matching, TheResultIsASnapshot) {
  const int first = Plug({.serial = "K1"});
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  const Object iterator(number);
  Plug({.serial = "K2"});
  Unplug(first);
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K1"));
}

TEST_F(Matching, AnUnpluggedCameraIsNotFound) {
  const int camera = Plug();
  Unplug(camera);
  EXPECT_THAT(Find(MatchingCameras()), IsEmpty());
}

TEST_F(Matching, ADrainedIteratorGivesNothing) {
  Plug();
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  const Object iterator(number);
  Drain(iterator);
  EXPECT_EQ(IOIteratorNext(iterator.Number()), 0u);
}

TEST_F(Matching, NextOfWhatIsNoIteratorGivesNothing) {
  Plug();
  const Object service = FindCamera();
  EXPECT_EQ(IOIteratorNext(0), 0u);
  EXPECT_EQ(IOIteratorNext(kUntouched), 0u);
  EXPECT_EQ(IOIteratorNext(service.Number()), 0u);
}

TEST_F(Matching, ASearchConsumesOneReferenceOfTheDictionary) {
  Plug();
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  io_iterator_t iterator = 0;
  EXPECT_EQ(Search(matching.Get(), &iterator), kIOReturnSuccess);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
  IOObjectRelease(iterator);
}

TEST_F(Matching, ASearchWithoutMatchConsumesItToo) {
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  io_iterator_t iterator = 0;
  EXPECT_EQ(Search(matching.Get(), &iterator), kIOReturnSuccess);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
}

TEST_F(Matching, WhatCannotBeHandedToTheKernelIsUnsupportedAndConsumed) {
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  const Port port;
  CFDictionarySetValue(matching.Get(), CFSTR("Source"), IONotificationPortGetRunLoopSource(port.Get()));
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(Search(matching.Get(), &iterator), kIOReturnUnsupported);
  EXPECT_EQ(iterator, kUntouched);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
}

TEST_F(Matching, AnUnserialisableValueIsFoundHoweverDeepItIs) {
  const Port port;
  io_iterator_t iterator = kUntouched;
  const CFMutableDictionaryRef matching =
      WithProperty(kDriver, CFSTR("Source"), IONotificationPortGetRunLoopSource(port.Get()));
  EXPECT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, matching, &iterator), kIOReturnUnsupported);
  EXPECT_EQ(iterator, kUntouched);
}

TEST_F(Matching, ANullDictionaryIsABadArgument) {
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, nullptr, &iterator), kIOReturnBadArgument);
  EXPECT_EQ(iterator, kUntouched);
}

}  // namespace
}  // namespace conformance
