#include "darwin/registry/CameraEntries.h"

#include <CoreFoundation/CoreFoundation.h>

#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

class CameraEntries : public RegistryFixture {
 protected:
  void TearDown() override {
    TheRegistry().Terminate(usbDevice_);
    RegistryFixture::TearDown();
  }

  void Add(const CameraDescription& camera) { usbDevice_ = AddCamera(TheRegistry(), TheRegistry().Root(), camera); }

  /// A text property of what is `levels` above the only service of a class; "(none)" without one.
  static std::string Text(const char* className, int levels, const char* key) {
    io_registry_entry_t entry = First(className);
    for (; levels > 0; --levels) {
      io_registry_entry_t parent = 0;
      IORegistryEntryGetParentEntry(entry, kIOServicePlane, &parent);
      IOObjectRelease(entry);
      entry = parent;
    }
    const CFStringRef name = CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingUTF8);
    const auto value = static_cast<CFStringRef>(IORegistryEntryCreateCFProperty(entry, name, kCFAllocatorDefault, 0));
    char text[64] = "(none)";
    if (value != nullptr) {
      CFStringGetCString(value, text, sizeof text, kCFStringEncodingUTF8);
      CFRelease(value);
    }
    CFRelease(name);
    IOObjectRelease(entry);
    return text;
  }

 private:
  EntryId usbDevice_ = 0;
};

TEST_F(CameraEntries, ADiskIsServedByTheSecondDriver) {
  Add({"K1", "Kelva", "Glimmer", "1.00", 0, {}});
  EXPECT_EQ(Text("com_kelva_Glimmer_ms", 0, "IOClass"), "com_kelva_Glimmer_ms");
  EXPECT_EQ(Count(IOServiceMatching("com_kelva_Glimmer")), 0u);
}

TEST_F(CameraEntries, AnyOtherTypeIsServedByTheFirst) {
  Add({"K1", "Kelva", "Glimmer", "1.00", 31, {}});
  EXPECT_EQ(Text("com_kelva_Glimmer", 0, "IOClass"), "com_kelva_Glimmer");
}

TEST_F(CameraEntries, TheServiceAndItsParentHaveTheInquiryData) {
  Add({"K1", "Kelva", "Glimmer", "1.00", 0, {}});
  for (const int level : {0, 1}) {
    EXPECT_EQ(Text("com_kelva_Glimmer_ms", level, "Vendor Identification"), "Kelva");
    EXPECT_EQ(Text("com_kelva_Glimmer_ms", level, "Product Identification"), "Glimmer");
    EXPECT_EQ(Text("com_kelva_Glimmer_ms", level, "Product Revision Level"), "1.00");
  }
}

TEST_F(CameraEntries, TheSerialNumberSitsOnTheUsbDeviceOnly) {
  Add({"K1", "Kelva", "Glimmer", "1.00", 0, {}});
  EXPECT_EQ(Text("com_kelva_Glimmer_ms", 0, "USB Serial Number"), "(none)");
  EXPECT_EQ(Text("com_kelva_Glimmer_ms", 1, "USB Serial Number"), "(none)");
  EXPECT_EQ(Text("com_kelva_Glimmer_ms", 2, "USB Serial Number"), "K1");
}

TEST_F(CameraEntries, ADeviceWithoutSerialNumberHasNoSuchProperty) {
  Add({"", "Kelva", "Glimmer", "1.00", 0, {}});
  EXPECT_EQ(Text("com_kelva_Glimmer_ms", 2, "USB Serial Number"), "(none)");
}

TEST_F(CameraEntries, OnlyTypeFiveWithTheRevisionIsABadCamera) {
  EXPECT_TRUE(IsBadCamera({"", "Kelva", "", "Q42", 5, {}}));
  EXPECT_FALSE(IsBadCamera({"", "Kelva", "", "Q42", 0, {}}));
  EXPECT_FALSE(IsBadCamera({"", "Kelva", "", "Q43", 5, {}}));
}

TEST_F(CameraEntries, ABadCameraIsACompactDiscTwoLevelsBelowItsInquiryData) {
  Add({"K1", "Kelva", "Glimmer", "Q42", 5, {}});
  EXPECT_EQ(Text("IOCompactDiscServices", 0, "Vendor Identification"), "(none)");
  EXPECT_EQ(Text("IOCompactDiscServices", 1, "Vendor Identification"), "(none)");
  EXPECT_EQ(Text("IOCompactDiscServices", 2, "Vendor Identification"), "Kelva");
  EXPECT_EQ(Text("IOCompactDiscServices", 2, "Product Revision Level"), "Q42");
  EXPECT_EQ(Text("IOCompactDiscServices", 3, "USB Serial Number"), "K1");
  EXPECT_EQ(Count(IOServiceMatching("com_kelva_Glimmer")), 0u);
}

}  // namespace
}  // namespace darwin
