#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using GetVerbTest = VerbTest;

TEST_F(GetVerbTest, AFileIsFetchedAndAnExistingOneIsLeftAlone) {
  Put("A.TXT", "abc");
  const std::string into = folder.string();
  EXPECT_EQ(Run({"get", "I:/A.TXT", "--into", into.c_str()}).code, ExitCode::kDone);
  EXPECT_EQ(Text(folder / "A.TXT"), "abc");
  Put("A.TXT", "new");
  EXPECT_EQ(Run({"get", "I:/A.TXT", "--into", into.c_str()}).code, ExitCode::kFailed);
  EXPECT_EQ(Text(folder / "A.TXT"), "abc");
  EXPECT_EQ(Run({"get", "I:/A.TXT", "--into", into.c_str(), "--force"}).code, ExitCode::kDone);
  EXPECT_EQ(Text(folder / "A.TXT"), "new");
}

TEST_F(GetVerbTest, OneOfTwoFilesMissingIsPartial) {
  Put("A.TXT", "abc");
  const std::string into = folder.string();
  EXPECT_EQ(Run({"get", "I:/A.TXT", "I:/B.TXT", "--into", into.c_str()}).code, ExitCode::kPartial);
}

TEST_F(GetVerbTest, AFileInAFolderThatIsMissingIsNotThere) {
  Put("DCIM/100ABCDE/A.TXT", "abc");
  const std::string into = folder.string();
  const Ran missing = Run({"get", "nix/x.JPG", "--into", into.c_str()});
  EXPECT_EQ(missing.code, ExitCode::kFailed);
  EXPECT_EQ(missing.err, "kelva: There is no folder I:/nix on the camera; `kelva ls I:` shows what is there.\n");
  EXPECT_EQ(Run({"get", "I:/dcim/100abcde/nix.jpg", "--into", into.c_str()}).err,
            "kelva: There is no file I:/dcim/100abcde/nix.jpg on the camera; `kelva ls I:/dcim/100abcde` shows what is "
            "there.\n");
  EXPECT_EQ(Run({"get", "nix/x.JPG", "-o", "-"}).code, ExitCode::kFailed);
}

TEST_F(GetVerbTest, AFileOfManyThatIsHereAlreadyNeedsAnotherFolder) {
  Put("DCIM/A.TXT", "abc");
  const std::string into = folder.string();
  EXPECT_EQ(Run({"get", "-r", "DCIM", "-d", into.c_str()}).code, ExitCode::kDone);
  const Ran again = Run({"get", "-r", "DCIM", "-d", into.c_str()});
  EXPECT_NE(again.err.find("--force replaces it, --into chooses another folder."), std::string::npos) << again.err;
}

TEST_F(GetVerbTest, AFileCanGoToStandardOutput) {
  Put("A.TXT", "abc");
  EXPECT_EQ(Run({"get", "I:/A.TXT", "-o", "-"}).out, "abc");
  EXPECT_EQ(Run({"get", "I:/a.txt", "-o", "-"}).out, "abc") << "in either case of letters";
}

}  // namespace
}  // namespace apps
