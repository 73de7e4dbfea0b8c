#include "darwin/registry/Matching.h"

#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

class PropertyMatching : public RegistryFixture {
 protected:
  /// How many cameras have this value of the property "Key"; consumes the value.
  static std::size_t CountWith(CFTypeRef value) {
    const CFMutableDictionaryRef matching = IOServiceMatching("Camera");
    const CFMutableDictionaryRef properties = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(properties, CFSTR("Key"), value);
    CFDictionarySetValue(matching, CFSTR(kIOPropertyMatchKey), properties);
    CFRelease(properties);
    CFRelease(value);
    return Count(matching);
  }

  static CFTypeRef Number(std::int64_t value) {
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value);
  }
  static CFTypeRef Text(const char* text) {
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
  }

  /// The property "Key" of a camera that has this value; for the caller.
  CFTypeRef ReadBack(PropertyValue value) {
    const EntryId camera = Publish({{"Camera"}, {{"Key", std::move(value)}}, {}});
    const io_service_t service = First("Camera");
    const CFTypeRef property = IORegistryEntryCreateCFProperty(service, CFSTR("Key"), kCFAllocatorDefault, 0);
    IOObjectRelease(service);
    TheRegistry().Terminate(camera);
    return property;
  }
};

TEST_F(PropertyMatching, NumbersCompareAsUnsigned64Bit) {
  const EntryId camera = Publish({{"Camera"}, {{"Key", std::uint64_t{0xFFFFFFFFFFFFFFFF}}}, {}});
  EXPECT_EQ(CountWith(Number(-1)), 1u);
  EXPECT_EQ(CountWith(Number(1)), 0u);
  TheRegistry().Terminate(camera);
}

TEST_F(PropertyMatching, ATruthValueIsNotANumber) {
  const EntryId camera = Publish({{"Camera"}, {{"Key", true}}, {}});
  EXPECT_EQ(CountWith(kCFBooleanTrue), 1u);
  EXPECT_EQ(CountWith(kCFBooleanFalse), 0u);
  EXPECT_EQ(CountWith(Number(1)), 0u);
  TheRegistry().Terminate(camera);
}

TEST_F(PropertyMatching, TextsCompareByContent) {
  const EntryId camera = Publish({{"Camera"}, {{"Key", std::string("caf\xc3\xa9")}}, {}});
  EXPECT_EQ(CountWith(Text("caf\xc3\xa9")), 1u);
  EXPECT_EQ(CountWith(Text("cafe")), 0u);
  TheRegistry().Terminate(camera);
}

TEST_F(PropertyMatching, ValuesAreReadAsTheObjectsOfTheirType) {
  const std::int64_t seven = 7;
  const CFNumberRef expected = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &seven);
  const CFTypeRef number = ReadBack(std::uint64_t{7});
  const CFTypeRef truth = ReadBack(true);
  EXPECT_TRUE(CFEqual(number, expected));
  EXPECT_TRUE(CFEqual(truth, kCFBooleanTrue));
  for (const CFTypeRef object : {static_cast<CFTypeRef>(expected), number, truth}) CFRelease(object);
}

TEST_F(PropertyMatching, BytesThatAreNoUtf8AreReadAsMacRoman) {
  const CFTypeRef text = ReadBack(std::string("K\xff"));
  const CFStringRef expected = CFStringCreateWithCString(kCFAllocatorDefault, "K\xff", kCFStringEncodingMacRoman);
  ASSERT_NE(text, nullptr);
  EXPECT_TRUE(CFEqual(text, expected));
  CFRelease(text);
  CFRelease(expected);
}

TEST_F(PropertyMatching, ADictionaryWithoutCallbacksCannotBeHandedOver) {
  const CFMutableDictionaryRef matching = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr);
  int anything = 0;
  CFDictionarySetValue(matching, &anything, &anything);
  io_iterator_t iterator = 77;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, matching, &iterator), kIOReturnUnsupported);
  EXPECT_EQ(iterator, 77u);
}

}  // namespace
}  // namespace darwin
