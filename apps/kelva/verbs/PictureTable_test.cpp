#include "apps/kelva/verbs/PictureTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"

namespace apps {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class PictureTableTest : public SilentContext, public testing::Test {};

TEST_F(PictureTableTest, AFileThatItsFolderDoesNotListHasNoSize) {
  FakeCamera camera;
  camera.folder = "I:\\DCIM\\100";
  camera.files["0007.JPG"] = "seven";
  DcfObj picture{};
  picture.directoryNumber = 100;
  picture.fileNumber = 7;
  picture.hasJpg = 1;
  DcfObj missing = picture;
  missing.hasRaw = 1;
  const PictureTable table({picture, missing}, camera, Stop());
  table.Print(out_);
  EXPECT_EQ(Printed(),
            "PICTURE   FILES    SIZE  TIME\n"
            "100/0007  JPG       5 B  no date\n"
            "100/0007  JPG RAW     ?  no date\n"
            "2 pictures, 3 files, 10 B; 1 file of unknown size\n");
  EXPECT_THAT(table.List().Text(), HasSubstr("\"size\":5,\"sizes\":[5]},{"));
  EXPECT_THAT(table.List().Text(), EndsWith("\"size\":null,\"sizes\":[5,null]}]"));
  EXPECT_EQ(table.Totals().Text(), "{\"files\":3,\"bytes\":10,\"unlisted\":1}");
}

}  // namespace
}  // namespace apps
