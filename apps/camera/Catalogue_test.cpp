#include "apps/camera/Catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/MadePicture.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::HasSubstr;

DcfObj Made(int folder, int number) {
  DcfObj picture = MadePicture(number, folder);
  picture.hasRaw = 1;
  return picture;
}

std::string WhyNot(const std::string& name) {
  try {
    FindPicture({Made(100, 1), Made(101, 1), Made(100, 2)}, name);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "found";
}

TEST(FindPictureTest, ANameThatIsUniqueNeedsNoFolderNoExtensionAndNoCase) {
  for (const char* name : {"IMG_0002", "img_0002.jpg", "100ABCDE/IMG_0002", "I:\\DCIM\\100abcde\\IMG_0002.RAW"}) {
    EXPECT_EQ(FindPicture({Made(100, 1), Made(100, 2)}, name).fileNumber, 2) << name;
  }
}

TEST(FindPictureTest, ANameMayBeAsItIsPrinted) {
  DcfObj odd = Made(100, 1);
  odd.filePrefix[2] = '\xFF';
  ASSERT_EQ(PictureName(odd), "'100ABCDE/IM\\xff_0001'");
  for (const char* name :
       {"IM\\xff_0001", "100ABCDE/IM\\xff_0001", "I:/DCIM/100ABCDE/IM\\xff_0001.JPG", "IM\xFF_0001"}) {
    EXPECT_EQ(FindPicture({odd, Made(100, 2)}, name).fileNumber, 1) << name;
    EXPECT_EQ(FindPictures({odd, Made(100, 2)}, name).size(), 1U) << name;
  }
}

TEST(FindPictureTest, TheSameNameInTwoFoldersNeedsTheFolder) {
  EXPECT_EQ(WhyNot("IMG_0001"), "IMG_0001 may mean 100ABCDE/IMG_0001, 101ABCDE/IMG_0001; name the folder too.");
  EXPECT_EQ(WhyNot("101ABCDE/IMG_0001"), "found");
}

TEST(FindPictureTest, ANameThatIsNotThereIsAnError) {
  EXPECT_THAT(WhyNot("IMG_0003"), HasSubstr("No picture in the camera's catalogue is called"));
}

TEST(CatalogueTest, MembersNameWhatThePictureHas) {
  EXPECT_THAT(PictureMembers(Made(100, 7)).Text(),
              HasSubstr(R"("folder":"100ABCDE","name":"IMG_0007","folder_number":100,"number":7,"types":["JPG","RAW"],)"
                        R"("key":null,"time":null,)"));
  EXPECT_EQ(TypeList(Made(100, 7)), "JPG RAW");
}

}  // namespace
}  // namespace apps
