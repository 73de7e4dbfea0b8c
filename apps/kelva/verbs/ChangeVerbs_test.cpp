#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ChangeVerbsTest = VerbTest;

TEST_F(ChangeVerbsTest, AFileIsSentCheckedAndDeleted) {
  const std::string file = (folder / "note.txt").string();
  Put("../note.txt", "hello");
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT"}).code, ExitCode::kDone);
  EXPECT_EQ(Text(storage / "N.TXT"), "hello");
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT", "--force"}).code, ExitCode::kDone);
  EXPECT_EQ(Run({"rm", "I:/N.TXT"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("N.TXT"));
  EXPECT_EQ(Run({"rm", "I:/N.TXT"}).code, ExitCode::kFailed);
}

TEST_F(ChangeVerbsTest, APatternDeletesAllThatItMatchesAndADryRunNone) {
  Put("A.TXT", "one");
  Put("b.txt", "four");
  Put("C.BIN", "");
  const auto dry = Run({"rm", "-n", "*.TXT", "C.TXT"});
  EXPECT_EQ(dry.code, ExitCode::kPartial);
  EXPECT_EQ(dry.out, "I:/A.TXT  3 B\nI:/b.txt  4 B\n");
  EXPECT_TRUE(Has("A.TXT"));
  EXPECT_EQ(Run({"rm", "*.TXT"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("A.TXT"));
  EXPECT_FALSE(Has("b.txt"));
  EXPECT_TRUE(Has("C.BIN"));
  EXPECT_EQ(Run({"rm", "*.TXT"}).err,
            "kelva: There is no file 'I:/*.TXT' on the camera; `kelva ls I:` shows what is there.\n");
}

TEST_F(ChangeVerbsTest, AFileInAFolderThatIsMissingIsNotThere) {
  const auto run = Run({"rm", "nix/x.JPG"});
  EXPECT_EQ(run.code, ExitCode::kFailed);
  EXPECT_EQ(run.err, "kelva: There is no folder I:/nix on the camera; `kelva ls I:` shows what is there.\n");
}

TEST_F(ChangeVerbsTest, OfSeveralFilesTheOneThatIsMissingIsReportedAndTheOthersGo) {
  Put("A.TXT", "one");
  Put("B.TXT", "two");
  const auto run = Run({"rm", "A.TXT", "NOPE.TXT", "B.TXT"});
  EXPECT_EQ(run.code, ExitCode::kPartial);
  EXPECT_EQ(run.err, "kelva: There is no file I:/NOPE.TXT on the camera; `kelva ls I:` shows what is there.\n");
  EXPECT_FALSE(Has("A.TXT"));
  EXPECT_FALSE(Has("B.TXT"));
}

TEST_F(ChangeVerbsTest, APictureIsDeletedByTheNameOfItsFileAlone) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "two");
  Put("DCIM/101ABCDE/IMG_0002.JPG", "three");
  const auto both = Run({"rm", "IMG_0002.JPG", "IMG_0001.JPG"});
  EXPECT_EQ(both.code, ExitCode::kUsage);
  EXPECT_EQ(
      both.err,
      "kelva: IMG_0001.JPG may mean I:/DCIM/100ABCDE/IMG_0001.JPG or I:/DCIM/101ABCDE/IMG_0001.JPG; name the folder "
      "too.\n");
  EXPECT_TRUE(Has("DCIM/101ABCDE/IMG_0002.JPG")) << "nothing was deleted";
  EXPECT_EQ(Run({"rm", "img_0002.jpg"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("DCIM/101ABCDE/IMG_0002.JPG"));
  EXPECT_EQ(Run({"rm", "-n", "IMG_00*.JPG"}).out,
            "I:/DCIM/100ABCDE/IMG_0001.JPG  3 B\nI:/DCIM/101ABCDE/IMG_0001.JPG  3 B\n");
  Put("IMG_0001.JPG", "on the drive itself");
  EXPECT_EQ(Run({"rm", "IMG_0001.JPG"}).code, ExitCode::kDone);
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_FALSE(Has("IMG_0001.JPG"));
}

TEST_F(ChangeVerbsTest, AFileIsSentIntoAFolderThatIsTypedInSmallLetters) {
  const std::string file = (folder / "note.txt").string();
  Put("../note.txt", "hello");
  Put("MISC/A.TXT", "");
  EXPECT_EQ(Run({"put", file.c_str(), "misc/"}).code, ExitCode::kDone);
  EXPECT_EQ(Text(storage / "MISC/note.txt"), "hello");
}

}  // namespace
}  // namespace apps
