#include "src/ui/linux/KelvaHelper/opener/DesktopApplication.h"

#include <gtest/gtest.h>

#include "src/ui/linux/KelvaHelper/opener/testing/ScratchDesktop.h"

namespace opener {
namespace {

class DesktopApplicationTest : public testing::Test {
 protected:
  const ScratchDesktop& desktop_ = ScratchDesktop::Get();
};

TEST_F(DesktopApplicationTest, IsFoundByItsDesktopId) {
  const DesktopApplication application("org.example.Found");
  ASSERT_TRUE(application);
  EXPECT_EQ(application.Name(), "Stand-in");
}

TEST_F(DesktopApplicationTest, IsFoundInASubfolderThatItsIdNames) {
  EXPECT_TRUE(DesktopApplication("org-example.Nested"));
}

TEST_F(DesktopApplicationTest, WithoutAnEntryItIsNotInstalled) {
  EXPECT_FALSE(DesktopApplication("org.example.Missing"));
}

TEST_F(DesktopApplicationTest, AnEntryWhoseProgramIsMissingIsNotInstalled) {
  EXPECT_FALSE(DesktopApplication("org.example.Broken"));
}

TEST_F(DesktopApplicationTest, AHiddenEntryIsNotInstalled) {
  EXPECT_FALSE(DesktopApplication("org.example.Hidden"));
}

TEST_F(DesktopApplicationTest, AnIdThatClimbsOutOfTheFoldersFindsNothing) {
  EXPECT_FALSE(DesktopApplication("../applications/org.example.Found"));
}

TEST_F(DesktopApplicationTest, LaunchRunsItsCommand) {
  ASSERT_EQ(DesktopApplication("org.example.Found").Launch(), "");
  EXPECT_EQ(desktop_.WordOfTheApplication(), "word");
}

}  // namespace
}  // namespace opener
