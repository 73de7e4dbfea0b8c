#include "src/ui/osx/KelvaHelper/Callback.h"

#include <gtest/gtest.h>

#import "tests/gnustep/WorkspaceRecorder.h"

namespace {

class CallbackTest : public testing::Test {
 protected:
  CallbackTest() { Workspace() = WorkspaceRecord(); }

  /// Calls Callback with a camera of which only the end is observed.
  void Attach() {
    released_ = false;
    Callback(boost::shared_ptr<Camera>(static_cast<Camera*>(nullptr), [this](Camera*) { released_ = true; }), &launch_);
  }

  bool launch_ = true;
  bool released_ = false;
};

TEST_F(CallbackTest, WithTheFlagFalseTheWorkspaceIsNotAsked) {
  launch_ = false;
  Attach();
  EXPECT_TRUE(Workspace().lookups.empty());
  EXPECT_TRUE(Workspace().launches.empty());
}

TEST_F(CallbackTest, WithTheFlagTrueTheApplicationIsLaunchedByItsIdentifier) {
  Attach();
  ASSERT_EQ(Workspace().lookups.size(), 1U);
  EXPECT_EQ(Workspace().lookups[0], "com.kelva.Desktop");
  ASSERT_EQ(Workspace().launches.size(), 1U);
  EXPECT_EQ(Workspace().launches[0].path, "/Applications/Stand-in.app");
}

TEST_F(CallbackTest, LaunchHasTheOneOptionAndNeitherConfigurationNorError) {
  Attach();
  ASSERT_EQ(Workspace().launches.size(), 1U);
  EXPECT_EQ(Workspace().launches[0].options, 0x80U);
  EXPECT_FALSE(Workspace().launches[0].hasConfiguration);
  EXPECT_FALSE(Workspace().launches[0].hasError);
}

TEST_F(CallbackTest, EachCallReadsTheFlagAnew) {
  Attach();
  launch_ = false;
  Attach();
  launch_ = true;
  Attach();
  EXPECT_EQ(Workspace().launches.size(), 2U);
}

TEST_F(CallbackTest, ApplicationThatIsNotInstalledIsPassedOver) {
  Workspace().installedPath = nil;
  Attach();
  EXPECT_EQ(Workspace().lookups.size(), 1U);
  EXPECT_TRUE(Workspace().launches.empty());
}

TEST_F(CallbackTest, EmptyPathIsPassedOverToo) {
  Workspace().installedPath = @"";
  Attach();
  EXPECT_TRUE(Workspace().launches.empty());
}

TEST_F(CallbackTest, CameraIsReleasedWhenTheCallReturns) {
  Attach();
  EXPECT_TRUE(released_);
  launch_ = false;
  Attach();
  EXPECT_TRUE(released_);
}

TEST_F(CallbackTest, PoolIsEmptiedBeforeTheCallReturns) {
  // Were there no pool inside, the objects would live until the end of this one.
  @autoreleasepool {
    Attach();
    EXPECT_EQ(Workspace().pooledObjects, 1);
    EXPECT_EQ(Workspace().drainedObjects, 1);
    Attach();
    EXPECT_EQ(Workspace().drainedObjects, 2);
  }
}

}  // namespace
