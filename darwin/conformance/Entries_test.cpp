// What can be read of an entry: its own properties and its parent.

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using Entries = RegistryTest;
using EntriesOfACamera = RegistryTest;

TEST_F(EntriesOfACamera, APropertyIsGivenAsAnObjectOfTheCallers) {
  Plug();
  const Object service = FindCamera();
  const Owned<CFTypeRef> vendor(
      IORegistryEntryCreateCFProperty(service.Number(), CFSTR("Vendor Identification"), kCFAllocatorDefault, 0));
  ASSERT_NE(vendor.Get(), nullptr);
  EXPECT_TRUE(CFEqual(vendor.Get(), CFSTR("Kelva")));
  EXPECT_EQ(CFGetRetainCount(vendor.Get()), 1);
}

TEST_F(Entries, AMissingPropertyIsNull) {
  Plug();
  const Object service = FindCamera();
  EXPECT_EQ(IORegistryEntryCreateCFProperty(service.Number(), CFSTR("No Such"), kCFAllocatorDefault, 0), nullptr);
}

TEST_F(Entries, AHandleThatIsNoEntryHasNoProperties) {
  EXPECT_EQ(IORegistryEntryCreateCFProperty(0, CFSTR("IOClass"), kCFAllocatorDefault, 0), nullptr);
  EXPECT_EQ(IORegistryEntryCreateCFProperty(kUntouched, CFSTR("IOClass"), kCFAllocatorDefault, 0), nullptr);
}

TEST_F(Entries, OptionsNeverLookUpwards) {
  Plug();
  const Object service = FindCamera();
  constexpr IOOptionBits kEverything = 0xFFFFFFFF;
  EXPECT_EQ(
      IORegistryEntryCreateCFProperty(service.Number(), CFSTR("USB Serial Number"), kCFAllocatorDefault, kEverything),
      nullptr);
}

TEST_F(EntriesOfACamera, ParentsLeadToTheUsbDevice) {
  Plug({.serial = "K7"});
  const Object service = FindCamera();
  const Object inquiry = ParentOf(service);
  const Object device = ParentOf(inquiry);
  EXPECT_EQ(TextProperty(inquiry, "Vendor Identification"), "Kelva");
  EXPECT_EQ(TextProperty(inquiry, "Product Revision Level"), "1.00");
  EXPECT_EQ(TextProperty(device, "USB Serial Number"), "K7");
}

TEST_F(EntriesOfACamera, AParentIsTheSameObjectForAllItsChildren) {
  Plug({.serial = "K1"});
  Plug({.serial = "K2"});
  std::vector<Object> buses;
  for (const Object& service : Find(MatchingCameras())) buses.push_back(ParentOf(ParentOf(ParentOf(service))));
  ASSERT_EQ(buses.size(), 2u);
  EXPECT_EQ(buses[0].Number(), buses[1].Number());
}

TEST_F(Entries, TheWayUpEnds) {
  Plug();
  Object entry = FindCamera();
  int steps = 0;
  io_registry_entry_t parent = kUntouched;
  kern_return_t result = kIOReturnSuccess;
  while ((result = IORegistryEntryGetParentEntry(entry.Number(), kIOServicePlane, &parent)) == kIOReturnSuccess) {
    entry = Object(parent);
    ASSERT_LT(++steps, 100);
  }
  EXPECT_EQ(result, kIOReturnNoDevice);
  EXPECT_EQ(parent, 0u);
}

TEST_F(Entries, AnUnknownPlaneHasNoParents) {
  Plug();
  const Object service = FindCamera();
  io_registry_entry_t parent = kUntouched;
  EXPECT_EQ(IORegistryEntryGetParentEntry(service.Number(), "NoSuchPlane", &parent), kIOReturnNoDevice);
  EXPECT_EQ(parent, 0u);
}

TEST_F(Entries, ADeadHandleHasNoParentAndNothingIsWritten) {
  io_registry_entry_t parent = kUntouched;
  EXPECT_EQ(IORegistryEntryGetParentEntry(0, kIOServicePlane, &parent), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IORegistryEntryGetParentEntry(0x12345678, kIOServicePlane, &parent), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(parent, kUntouched);
}

/// The children of an entry in the service plane, in the iterator's order.
std::vector<Object> ChildrenOf(const Object& entry) {
  io_iterator_t children = 0;
  EXPECT_EQ(IORegistryEntryGetChildIterator(entry.Number(), kIOServicePlane, &children), kIOReturnSuccess);
  return Drain(Object(children));
}

TEST_F(Entries, TheParentHasTheEntryAmongItsChildren) {
  Plug();
  const Object service = FindCamera();
  int found = 0;
  for (const Object& child : ChildrenOf(ParentOf(service))) found += child.Number() == service.Number() ? 1 : 0;
  EXPECT_EQ(found, 1);
}

TEST_F(EntriesOfACamera, ADriverWithoutConnectionsHasNoChildren) {
  Plug();
  EXPECT_EQ(ChildrenOf(FindCamera()).size(), 0u);
}

TEST_F(EntriesOfACamera, AnEntryThatHasGoneIsNobodysChild) {
  const int camera = Plug();
  const Object inquiry = ParentOf(FindCamera());
  const Object bus = ParentOf(ParentOf(inquiry));
  const std::size_t before = ChildrenOf(bus).size();
  Unplug(camera);
  EXPECT_EQ(ChildrenOf(bus).size(), before - 1);
}

TEST_F(Entries, ADeadHandleHasNoChildrenAndNothingIsWritten) {
  io_iterator_t children = kUntouched;
  EXPECT_EQ(IORegistryEntryGetChildIterator(0, kIOServicePlane, &children), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IORegistryEntryGetChildIterator(0x12345678, kIOServicePlane, &children), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(children, kUntouched);
}

TEST_F(Entries, WhatIsNoEntryHasNoChildren) {
  Plug();
  io_iterator_t services = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &services), kIOReturnSuccess);
  const Object iterator(services);
  io_iterator_t children = kUntouched;
  EXPECT_EQ(IORegistryEntryGetChildIterator(iterator.Number(), kIOServicePlane, &children), kIOReturnBadArgument);
}

TEST_F(EntriesOfACamera, ABadCameraIsACompactDiscTwoLevelsBelowItsInquiryData) {
  Plug({.serial = "K9", .revision = "Q42", .peripheralType = 5});
  const Object disc = FindOne(IOServiceMatching("IOCompactDiscServices"));
  const Object inquiry = ParentOf(ParentOf(disc));
  EXPECT_EQ(TextProperty(inquiry, "Vendor Identification"), "Kelva");
  EXPECT_EQ(TextProperty(inquiry, "Product Revision Level"), "Q42");
  EXPECT_EQ(TextProperty(ParentOf(inquiry), "USB Serial Number"), "K9");
  EXPECT_EQ(Find(MatchingCameras()).size(), 0u);
}

TEST_F(EntriesOfACamera, ACompactDiscOfAnotherRevisionIsServedByTheDriver) {
  Plug({.revision = "1.00", .peripheralType = 5});
  EXPECT_EQ(TextProperty(FindCamera(), "IOClass"), kDriver);
  EXPECT_EQ(Find(IOServiceMatching("IOCompactDiscServices")).size(), 0u);
}

}  // namespace
}  // namespace conformance
