#include "apps/import/Writers.h"

#include <gtest/gtest.h>

#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

class WritersTest : public SyncFolderTest {
 protected:
  void Store(const SyncPlan& plan, const std::string& text) {
    Writers writers(folder_, manifest_, [this](const WriteOutcome& outcome) {
      stored_ += outcome.row ? 1 : 0;
      errors_ += outcome.error;
    });
    for (const SyncItem& item : plan.items) writers.Submit({&item, {text.begin(), text.end()}, "", false});
    writers.Finish();
  }

  int stored_ = 0;
  std::string errors_;
};

TEST_F(WritersTest, FilesAreStoredAndPartOfTheManifest) {
  std::vector<DcfObj> catalogue;
  for (int i = 1; i <= 200; ++i) catalogue.push_back(Picture(i));
  Store(Plan(catalogue), "abc");
  EXPECT_EQ(stored_, 200);
  EXPECT_EQ(Text("100ABCDE/IMG_0200.JPG"), "abc");
  EXPECT_EQ(Plan(catalogue).NewFiles(), 0U);
}

TEST_F(WritersTest, LargeFilesPassOneAtATime) {
  const SyncPlan plan = Plan({Picture(1), Picture(2), Picture(3)});
  Store(plan, std::string(5'000'000, 'x'));
  EXPECT_EQ(stored_, 3);
  EXPECT_EQ(Text("100ABCDE/IMG_0003.JPG").size(), 5'000'000U);
}

TEST_F(WritersTest, AFileThatIsNotWhatItsKeySaysIsNotKept) {
  const SyncPlan plan = Plan({Picture(1, "a9993e364706816aba3e25717850c26c9cd0d89d")});
  Store(plan, "damaged");
  EXPECT_EQ(stored_, 0);
  EXPECT_NE(errors_.find("has another SHA-1 than the catalogue says"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
}

TEST_F(WritersTest, ALinkInPlaceOfAFolderIsAnErrorOfThatFile) {
  std::filesystem::create_directory_symlink("/tmp", path_ + "/100ABCDE");
  Store(Plan({Picture(1)}), "abc");
  EXPECT_EQ(stored_, 0);
  EXPECT_NE(errors_.find("is a symbolic link and is not followed"), std::string::npos);
}

}  // namespace
}  // namespace apps
