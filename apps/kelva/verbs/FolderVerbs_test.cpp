#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;
using FolderVerbsTest = VerbTest;

TEST_F(FolderVerbsTest, AFolderIsListedWithControlCharactersMadeVisible) {
  Put("A.TXT", "abc");
  Put("D/B.TXT", "");
  EXPECT_EQ(Run({"ls"}).out, "----a  3  A.TXT\nd----     D\n");
  EXPECT_EQ(Run({"tree"}).out, "I:\n  A.TXT  3 B\n  D/\n    B.TXT  0 B\n2 files, 3 B\n");
}

TEST_F(FolderVerbsTest, ANameIsPrintedAsAShellTakesItBack) {
  Put("My notes/it's.txt", "abc");
  EXPECT_EQ(Run({"ls"}).out, "d----    'My notes'\n");
  EXPECT_EQ(Run({"ls", "My notes"}).out, "----a  3  'it'\\''s.txt'\n");
  EXPECT_EQ(Run({"tree"}).out, "I:\n  'My notes'/\n    'it'\\''s.txt'  3 B\n1 file, 3 B\n");
  EXPECT_NE(Run({"ls", "--json"}).out.find(R"("name":"My notes")"), std::string::npos);
}

TEST_F(FolderVerbsTest, AFolderThatIsMissingAndAFileAreErrors) {
  Put("A.TXT", "abc");
  EXPECT_EQ(Run({"ls", "I:/NOPE"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"ls", "A.TXT"}).err, "kelva: I:/A.TXT is a file; `kelva get` fetches it.\n");
  EXPECT_EQ(Run({"ls", "../x"}).err,
            "kelva: There is no folder I:/.. on the camera; `kelva ls I:` shows what is there.\n");
  Put("DCIM/B.TXT", "");
  EXPECT_THAT(Run({"ls", "dcim/nope"}).err, HasSubstr("There is no folder I:/DCIM/nope on the camera."));
  EXPECT_THAT(Run({"ls", "D:/DCIM"}).err, HasSubstr("There is no folder D:/DCIM on the camera."));
  EXPECT_EQ(Run({"ls", ""}).code, ExitCode::kUsage);
}

TEST_F(FolderVerbsTest, AFolderMayBeTypedWithoutItsDriveAndInSmallLetters) {
  Put("DCIM/B.TXT", "");
  EXPECT_EQ(Run({"ls", "DCIM"}).out, "----a  0  B.TXT\n");
  const auto ran = Run({"ls", "I:/dcim"});
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_EQ(ran.out, "----a  0  B.TXT\n");
  EXPECT_EQ(ran.err, "kelva: There is no I:/dcim; there is I:/DCIM.\n");
}

}  // namespace
}  // namespace apps
