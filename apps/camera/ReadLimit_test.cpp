#include "apps/camera/ReadLimit.h"

#include <gtest/gtest.h>

#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

class ReadLimitTest : public testing::Test, protected SilentContext {
 protected:
  /// How many calls pass, of at most 5000.
  int Passed(std::optional<unsigned long long> listed) {
    Progress progress(context_.reporter, stop_, "", 0);
    ReadLimit limit("I:\\A", listed, Progress::Check, progress);
    return Passed(limit);
  }
  int Passed(ReadLimit& limit) {
    for (int calls = 0; calls < 5000; ++calls) {
      try {
        ReadLimit::Check(&limit, 0);
      } catch (const CameraError& error) {
        message_ = error.what();
        return calls;
      }
    }
    return 5000;
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

// The first call comes before the first byte, so 1025 calls have seen 256 MiB.
TEST_F(ReadLimitTest, AFileThatIsNotListedIsReadUpToABound) {
  EXPECT_EQ(Passed(std::nullopt), 1025);
  EXPECT_EQ(message_,
            "Camera error: no folder lists I:\\A, so 256 MiB are read at most, and it goes on after 268697600");
}

// The first call comes behind the first chunk of 64 KiB.
TEST_F(ReadLimitTest, ABundleIsReadUpToABound) {
  Progress progress(context_.reporter, stop_, "", 0);
  ReadLimit limit = ReadLimit::OfBundle("the crash logs", 1 << 20, Progress::Check, progress);
  EXPECT_EQ(Passed(limit), 16);
  EXPECT_EQ(message_, "Camera error: of the crash logs 1 MiB are read at most, and it goes on after 1114112");
}

TEST_F(ReadLimitTest, HandsTheCallOn) {
  stop_.Request();
  EXPECT_THROW(Passed(1), Stopped);
}

}  // namespace
}  // namespace apps
