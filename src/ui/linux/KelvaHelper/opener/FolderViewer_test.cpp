#include "src/ui/linux/KelvaHelper/opener/FolderViewer.h"

#include <gtest/gtest.h>

#include "src/ui/linux/KelvaHelper/opener/testing/ScratchDesktop.h"

namespace opener {
namespace {

class FolderViewerTest : public testing::Test {
 protected:
  const ScratchDesktop& desktop_ = ScratchDesktop::Get();
};

TEST_F(FolderViewerTest, IsTheUsersOwnProgramForTheType) {
  const FolderViewer viewer("x-content/kelva-test");
  ASSERT_TRUE(viewer);
  EXPECT_EQ(viewer.Name(), "Stand-in");
  EXPECT_EQ(viewer.Id(), "org.example.Viewer");
}

TEST_F(FolderViewerTest, TypeThatNoProgramIsForHasNone) {
  EXPECT_FALSE(FolderViewer("x-content/kelva-nothing"));
}

TEST_F(FolderViewerTest, OpensAFolder) {
  ASSERT_EQ(FolderViewer("x-content/kelva-test").Open("/a/ä%20"), "");
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a/ä%20");
}

TEST_F(FolderViewerTest, FailureIsTheReason) {
  EXPECT_NE(FolderViewer("x-content/kelva-refused").Open("/a"), "");
  EXPECT_NE(FolderViewer("x-content/kelva-test").Open("not a full path"), "");
}

}  // namespace
}  // namespace opener
