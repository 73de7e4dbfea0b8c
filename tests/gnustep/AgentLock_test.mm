#import "src/ui/osx/KelvaHelper/AgentLock.h"

#include <gtest/gtest.h>

namespace {

/// Each test runs in a process of its own: a lock lasts as long as its process.
class AgentLockTest : public testing::Test {
 protected:
  ~AgentLockTest() override { [[NSFileManager defaultManager] removeItemAtPath:folder_ error:nullptr]; }

  NSString* folder_ =
      [NSTemporaryDirectory() stringByAppendingPathComponent:[[NSProcessInfo processInfo] globallyUniqueString]];
};

TEST_F(AgentLockTest, FirstTakesItAndTheSecondDoesNot) {
  EXPECT_TRUE(TakeAgentLock(folder_));
  EXPECT_FALSE(TakeAgentLock(folder_));
}

TEST_F(AgentLockTest, FolderIsMadeWithThoseAboveIt) {
  EXPECT_TRUE(TakeAgentLock([folder_ stringByAppendingPathComponent:@"above/below"]));
  EXPECT_FALSE(TakeAgentLock([folder_ stringByAppendingPathComponent:@"above/below"]));
}

TEST_F(AgentLockTest, LockOfAnotherUserIsAnotherLock) {
  EXPECT_TRUE(TakeAgentLock([folder_ stringByAppendingPathComponent:@"one"]));
  EXPECT_TRUE(TakeAgentLock([folder_ stringByAppendingPathComponent:@"other"]));
}

TEST_F(AgentLockTest, WhereNoLockCanBeHadTheAgentRuns) {
  EXPECT_TRUE(TakeAgentLock(@"/dev/null/no-such-folder"));
}

TEST_F(AgentLockTest, FolderIsBelowTheUsersOwn) {
  EXPECT_TRUE([AgentLockFolder() hasPrefix:NSHomeDirectory()]);
  EXPECT_STREQ([[AgentLockFolder() lastPathComponent] UTF8String], "com.kelva.KelvaHelper");
}

}  // namespace
