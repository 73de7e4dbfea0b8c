#include "apps/camera/ReadLimit.h"

#include <gtest/gtest.h>

#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

class ReadLimitTest : public testing::Test, protected SilentContext {
 protected:
  /// How many calls pass, of at most 100.
  int Passed(std::optional<unsigned long long> listed) {
    Progress progress(context_.reporter, stop_, "", 0);
    ReadLimit limit("I:\\A", listed, Progress::Check, progress);
    for (int calls = 0; calls < 100; ++calls) {
      try {
        ReadLimit::Check(&limit, 0);
      } catch (const CameraError& error) {
        message_ = error.what();
        return calls;
      }
    }
    return 100;
  }

  std::string message_;
};

TEST_F(ReadLimitTest, EndsAReadThatGoesOnBeyondTheListedSize) {
  EXPECT_EQ(Passed(0), 1);
  EXPECT_EQ(Passed(262'143), 1);
  EXPECT_EQ(Passed(262'144), 2);
  EXPECT_EQ(Passed(1'000'000), 4);
  EXPECT_NE(message_.find("lists I:\\A with 1000000 bytes, and it goes on after 1048576"), std::string::npos)
      << message_;
}

TEST_F(ReadLimitTest, LetsAReadGoOnWhenNoSizeIsListed) {
  EXPECT_EQ(Passed(std::nullopt), 100);
}

TEST_F(ReadLimitTest, HandsTheCallOn) {
  stop_.Request();
  EXPECT_THROW(Passed(1), Stopped);
}

}  // namespace
}  // namespace apps
