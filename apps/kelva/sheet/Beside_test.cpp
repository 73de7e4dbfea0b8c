#include "apps/kelva/sheet/Beside.h"

#include <gtest/gtest.h>

#include <optional>

#include "apps/camera/Picture.h"
#include "apps/kelva/sheet/testing/SheetTest.h"

namespace apps {
namespace {

class BesideTest : public SheetFolderTest {
 protected:
  Beside Here(const std::vector<DcfObj>& catalogue) {
    return {folder_, manifest_.emplace(folder_, false), "K1", catalogue};
  }

  // As `kelva sync` notes that it fetched the picture's JPEG. "one" has this SHA-1.
  void Note(const DcfObj& picture, const std::string& path) {
    Manifest manifest(folder_, true);
    const SyncPlan plan = MakePlan({picture}, "K1", {1}, Pattern(Pattern::kDefault), manifest, nullptr);
    manifest.Record({{plan.items[0].Key(), path, "fe05bcdcdc4928012781a5f1a2a77cbb5398e106", 3}});
  }

  std::optional<Manifest> manifest_;
};

TEST_F(BesideTest, NothingIsHereUnlessItWasFetched) {
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 3), "");
}

TEST_F(BesideTest, AFileInItsFolderIsFoundByNameAndSize) {
  Put("100ABCDE/IMG_0001.JPG", "one");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 3), "100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 4), "") << "another picture of that name";
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, std::nullopt), "");
}

TEST_F(BesideTest, AFileWithoutItsFolderIsFoundWhenOnlyOnePictureHasTheName) {
  Put("IMG_0001.JPG", "one");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 3), "IMG_0001.JPG");
  EXPECT_EQ(Here({MadePicture(1), MadePicture(1, 101)}).Find(MadePicture(1), 1, 3), "");
}

TEST_F(BesideTest, LinksAndFoldersAreNoFetchedFiles) {
  Put("elsewhere", "one");
  std::filesystem::create_symlink("elsewhere", path_ + "/IMG_0001.JPG");
  std::filesystem::create_directories(path_ + "/100ABCDE/IMG_0001.JPG");
  const auto size = std::filesystem::file_size(path_ + "/elsewhere");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, size), "");
}

TEST_F(BesideTest, WhereSyncStoredItCountsBeforeTheName) {
  Put("100ABCDE/IMG_0001.JPG", "two");
  Put("2026/beach.jpg", "one");
  Note(MadePicture(1), "2026/beach.jpg");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 3), "2026/beach.jpg");
  std::filesystem::remove(path_ + "/2026/beach.jpg");
  EXPECT_EQ(Here({MadePicture(1)}).Find(MadePicture(1), 1, 3), "100ABCDE/IMG_0001.JPG");
}

TEST_F(BesideTest, TheContentIsTakenFromHereOnlyWhileItIsWhatWasFetched) {
  const std::string here = "100ABCDE/IMG_0001.JPG";
  Put(here, "one");
  EXPECT_EQ(Here({MadePicture(1)}).Read(MadePicture(1), 1), std::nullopt) << "a name alone proves nothing";
  Note(MadePicture(1), here);
  EXPECT_EQ(Here({MadePicture(1)}).Read(MadePicture(1), 1), (std::vector<char>{'o', 'n', 'e'}));
  Put(here, "two");
  EXPECT_EQ(Here({MadePicture(1)}).Read(MadePicture(1), 1), std::nullopt);
  Put(here, "longer");
  EXPECT_EQ(Here({MadePicture(1)}).Read(MadePicture(1), 1), std::nullopt);
}

}  // namespace
}  // namespace apps
