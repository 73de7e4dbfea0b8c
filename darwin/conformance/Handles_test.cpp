// Handle numbers and their user references.

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using Handles = RegistryTest;

/// A number that is no longer a handle.
io_object_t StaleHandle() {
  Object service = FindCamera();
  const io_object_t number = service.Number();
  IOObjectRelease(service.Take());
  return number;
}

TEST_F(Handles, OneObjectHasOneNumberHoweverItIsReached) {
  Plug();
  const Object first = FindCamera();
  const Object second = FindCamera();
  EXPECT_NE(first.Number(), 0u);
  EXPECT_EQ(first.Number(), second.Number());
}

TEST_F(Handles, DifferentObjectsHaveDifferentNumbers) {
  Plug({.serial = "K1"});
  Plug({.serial = "K2"});
  const std::vector<Object> found = Find(MatchingCameras());
  ASSERT_EQ(found.size(), 2u);
  EXPECT_NE(found[0].Number(), found[1].Number());
}

TEST_F(Handles, EachReturnAddsOneReference) {
  Plug();
  const Object first = FindCamera();
  { const Object second = FindCamera(); }
  EXPECT_EQ(SerialOf(first), "K1");
}

TEST_F(Handles, TheLastReleaseEndsTheNumber) {
  Plug();
  const io_object_t stale = StaleHandle();
  EXPECT_EQ(IORegistryEntryCreateCFProperty(stale, CFSTR("IOClass"), kCFAllocatorDefault, 0), nullptr);
  EXPECT_EQ(IOObjectRelease(stale), KERN_INVALID_NAME);
}

TEST_F(Handles, RetainAddsAReference) {
  Plug();
  const Object service = FindCamera();
  EXPECT_EQ(IOObjectRetain(service.Number()), KERN_SUCCESS);
  EXPECT_EQ(IOObjectRelease(service.Number()), KERN_SUCCESS);
  EXPECT_EQ(SerialOf(service), "K1");
}

TEST_F(Handles, ZeroMayBeRetainedAndReleased) {
  EXPECT_EQ(IOObjectRetain(0), KERN_SUCCESS);
  EXPECT_EQ(IOObjectRelease(0), KERN_SUCCESS);
}

TEST_F(Handles, ReleasingAnIteratorReleasesNothingElse) {
  Plug();
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  Object iterator(number);
  const Object service = NextOf(iterator);
  iterator = Object();
  EXPECT_EQ(SerialOf(service), "K1");
}

}  // namespace
}  // namespace conformance
