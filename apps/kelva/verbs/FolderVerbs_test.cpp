#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using FolderVerbsTest = VerbTest;

TEST_F(FolderVerbsTest, AFolderIsListedWithControlCharactersMadeVisible) {
  Put("A.TXT", "abc");
  Put("D/B.TXT", "");
  EXPECT_EQ(Run({"ls"}).out, "----a  3  A.TXT\nd----     D\n");
  EXPECT_EQ(Run({"tree"}).out, "I:\n  A.TXT  3 B\n  D\\\n    B.TXT  0 B\n2 files, 3 B\n");
}

TEST_F(FolderVerbsTest, AFolderThatIsMissingAndAFileAreErrors) {
  Put("A.TXT", "abc");
  EXPECT_EQ(Run({"ls", "I:/NOPE"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"ls", "DCIM"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
