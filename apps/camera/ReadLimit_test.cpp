#include "apps/camera/ReadLimit.h"

#include <gtest/gtest.h>

#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

TEST(WronglyAnnouncedTest, SaysWhatIsKnownOfTheSize) {
  EXPECT_STREQ(WronglyAnnounced(7, 8).what(),
               "Camera error: the folder gives it 7 bytes, and the camera announces 8 bytes");
  EXPECT_STREQ(
      WronglyAnnounced(std::nullopt, 300'000'000).what(),
      "Camera error: no folder lists it, so 256 MiB are read at most, and the camera announces 300000000 bytes");
}

class ReadLimitTest : public testing::Test, protected SilentContext {
 protected:
  Progress progress_{context_.reporter, stop_, "", 0};
  ReadLimit limit_ = ReadLimit::OfBundle("the crash logs", 1 << 20, Progress::Callback, progress_);
};

// The first call comes behind the first chunk of 64 KiB.
TEST_F(ReadLimitTest, ABundleIsReadUpToABound) {
  for (int call = 1; call <= 16; ++call) ReadLimit::Check(&limit_, 0);
  try {
    ReadLimit::Check(&limit_, 0);
    FAIL();
  } catch (const CameraError& error) {
    EXPECT_STREQ(error.what(), "Camera error: of the crash logs 1 MiB are read at most, and it goes on after 1114112");
  }
}

TEST_F(ReadLimitTest, HandsTheCallOn) {
  stop_.Request();
  EXPECT_THROW(ReadLimit::Check(&limit_, 0), Stopped);
}

}  // namespace
}  // namespace apps
