#include <gmock/gmock.h>

#include <fstream>

#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::Not;

class SheetRunTest : public VerbTest {
 protected:
  Ran Sheet(std::vector<const char*> more = {}) {
    more.insert(more.begin(), {"pictures", "--sheet", path_.c_str()});
    return Run(more);
  }
  std::string Page() const { return Text(path_); }
  std::size_t FilesHere() const {
    const std::filesystem::directory_iterator here(folder);
    return static_cast<std::size_t>(std::distance(begin(here), end(here)));
  }

  std::string path_ = (folder / "sheet.html").string();
};

TEST_F(SheetRunTest, EveryPictureIsOnTheSheet) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", TinyJpeg::File(1, {90}));
  Put("DCIM/100ABCDE/IMG_0002.JPG", TinyJpeg::File(1, {90}));
  Put("DCIM/101ABCDE/IMG_0001.RAW", "raw");
  const Ran ran = Sheet();
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_THAT(ran.out, HasSubstr("2 drawn"));
  EXPECT_THAT(ran.out, HasSubstr("1 without a JPEG file, 0 failed\n"));
  for (const char* part : {"camera K1", "3 pictures", "IMG_0002", "101ABCDE", "no JPEG", "</html>"}) {
    EXPECT_THAT(Page(), HasSubstr(part));
  }
}

TEST_F(SheetRunTest, ADamagedPictureIsReportedAndTheSheetIsThere) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "no picture");
  Put("DCIM/100ABCDE/IMG_0002.JPG", TinyJpeg::File(1, {90}));
  const Ran ran = Sheet();
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("There is no thumbnail of I:/DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_THAT(Page(), HasSubstr("cannot be drawn"));
  EXPECT_THAT(Page(), HasSubstr("IMG_0002"));
}

TEST_F(SheetRunTest, AFileThatIsThereAlreadyStaysUnlessForced) {
  std::ofstream(path_) << "mine";
  const Ran ran = Sheet();
  EXPECT_EQ(ran.code, ExitCode::kFailed);
  EXPECT_THAT(ran.err, HasSubstr("--force replaces it"));
  EXPECT_EQ(Page(), "mine");
  EXPECT_EQ(Sheet({"--force"}).code, ExitCode::kDone);
  EXPECT_THAT(Page(), HasSubstr("There are no pictures"));
  EXPECT_EQ(FilesHere(), 2U) << "the drive and the sheet";
}

TEST_F(SheetRunTest, FetchedFilesAreLinkedAndNotReadAgain) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", TinyJpeg::File(1, {90}));
  EXPECT_EQ(Run({"sync", folder.c_str()}).code, ExitCode::kDone);
  const Ran ran = Sheet({"--json"});
  EXPECT_THAT(ran.out, HasSubstr("\"drawn\":1,\"fetched\":1,"));
  EXPECT_THAT(ran.out, HasSubstr("\"links\":[\"100ABCDE/IMG_0001.JPG\"]"));
  EXPECT_THAT(Page(), HasSubstr("href=\"./100ABCDE/IMG_0001.JPG\""));
}

TEST_F(SheetRunTest, AListThatCannotBeReadIsSaidAndTheSheetIsDrawn) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", TinyJpeg::File(1, {90}));
  std::ofstream(folder / ".kelva-manifest.sqlite") << std::string(4096, 'x');
  const Ran ran = Sheet();
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_THAT(ran.err, HasSubstr("list of fetched files"));
}

TEST_F(SheetRunTest, NamesOfTheCameraCannotBecomeMarkup) {
  Put("DCIM/100<b>\"'/<IMG0001.JPG", TinyJpeg::File(1, {90}));
  EXPECT_EQ(Sheet().code, ExitCode::kDone);
  EXPECT_THAT(Page(), HasSubstr("&lt;IMG0001"));
  EXPECT_THAT(Page(), Not(HasSubstr("<IMG0001")));
}

TEST_F(SheetRunTest, AFolderOrNothingIsNoNameOfASheet) {
  EXPECT_EQ(Run({"pictures", "--sheet", "/tmp/"}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"pictures", "--sheet", ".."}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"pictures", "--sheet", ""}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"pictures", "--sheet", "/dev/null/folder/x.html"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"pictures", "--force"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
