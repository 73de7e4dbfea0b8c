#include "darwin/cf/Accounting.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "base/WakeUp.h"

namespace darwin {
namespace {

TEST(Accounting, AnObjectCountsUntilItsLastRelease) {
  const std::size_t before = LiveCoreFoundationObjects();
  const CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, "text", kCFStringEncodingMacRoman);
  CFRetain(string);
  EXPECT_EQ(LiveCoreFoundationObjects(), before + 1);
  CFRelease(string);
  EXPECT_EQ(LiveCoreFoundationObjects(), before + 1);
  CFRelease(string);
  EXPECT_EQ(LiveCoreFoundationObjects(), before);
}

TEST(Accounting, ConstantsDoNotCount) {
  const std::size_t before = LiveCoreFoundationObjects();
  EXPECT_NE(CFSTR("a constant of this test"), nullptr);
  EXPECT_NE(kCFBooleanTrue, kCFBooleanFalse);
  EXPECT_EQ(LiveCoreFoundationObjects(), before);
}

TEST(Accounting, ADescriptorCountsWhileItIsOpen) {
  const std::size_t before = OpenDescriptors();
  {
    const base::WakeUp twoOfThem;
    EXPECT_EQ(OpenDescriptors(), before + 2);
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
}  // namespace darwin
