#include "apps/import/KnownPicture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <random>
#include <set>

#include "apps/import/testing/CardsTest.h"
#include "base/testing/RandomSeed.h"

namespace apps {
namespace {

using testing::UnorderedElementsAre;

/// A picture whose files change on the camera between two runs.
class KnownPictureTest : public CardsTest {
 protected:
  KnownPicture Known() { return FindPicture(*manifest_, card_.camera.catalogue.front(), "K1"); }
};

TEST_F(KnownPictureTest, OtherFilesAreKnownWhenTheFirstOneIsGone) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}, {3, "txt of 1"}}, true);
  Run(card_);
  card_.Put(1, {{2, "raw of 1"}, {3, "txt of 1"}}, true);
  card_.camera.reads = 0;
  Run(card_);
  EXPECT_EQ(card_.camera.reads, 0);
  EXPECT_EQ(Known().fingerprint, Sha1(std::string("jpg of 1")));
  EXPECT_TRUE(Known().Has(1)) << "it is here";
  card_.Put(1, {{3, "txt of 1"}}, true);
  Run(card_);
  EXPECT_EQ(card_.camera.reads, 0);
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001.TXT"));
}

TEST_F(KnownPictureTest, AFileThatWasRenamedHereIsKnownWhenTheFirstOneIsGone) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, true);
  Run(card_);
  std::filesystem::rename(path_ / "IMG_0001.RAW", path_ / "best.RAW");
  card_.Put(1, {{2, "raw of 1"}}, true);
  Run(card_);
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "best.RAW"));
}

TEST_F(KnownPictureTest, ANewFileComesBesideTheOthersWhicheverOfThemAreGone) {
  for (const bool hasKey : {true, false}) {
    card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, hasKey);
    Run(card_);
    card_.Put(1, {{2, "raw of 1"}, {3, "txt of 1"}}, hasKey);
    Run(card_);
    EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001.TXT"));
    card_.Put(1, {{3, "txt of 1"}, {4, "128 of 1"}}, hasKey);
    Run(card_);
    EXPECT_EQ(Here("IMG_0001.128"), "128 of 1");
    EXPECT_EQ(Names().size(), 4U);
    for (const std::string& name : Names()) std::filesystem::remove(path_ / name);
    LoseList();
  }
}

TEST_F(KnownPictureTest, ARawComesBesideItsJpgAndAJpgBesideItsRaw) {
  for (const bool hasKey : {true, false}) {
    card_.Put(1, {{1, "jpg of 1"}}, hasKey);
    card_.Put(2, {{2, "raw of 2"}}, hasKey);
    Run(card_);
    card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, hasKey);
    card_.Put(2, {{1, "jpg of 2"}, {2, "raw of 2"}}, hasKey);
    Run(card_);
    EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0002.JPG", "IMG_0002.RAW"));
    for (const std::string& name : Names()) std::filesystem::remove(path_ / name);
    LoseList();
  }
}

// Nothing tells it from another picture that has the name of one that is gone.
TEST_F(KnownPictureTest, APictureWhoseFirstFileIsAnotherNowIsAnotherPicture) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, true);
  Run(card_);
  card_.Put(1, {{1, "another!"}, {2, "raw of 1"}}, true);
  Run(card_);
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001-2.JPG", "IMG_0001-2.RAW"));
  EXPECT_EQ(Here("IMG_0001-2.JPG"), "another!");
}

TEST_F(KnownPictureTest, ANewPictureWithTheNameOfAGoneOneIsNotItsCompanion) {
  for (const bool hasKey : {true, false}) {
    card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, hasKey);
    Run(card_);
    card_.Put(1, {{2, "RAW OF 2"}, {3, "TXT OF 2"}}, hasKey);
    Run(card_);
    EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001-2.RAW", "IMG_0001-2.TXT"));
    for (const std::string& name : Names()) std::filesystem::remove(path_ / name);
    LoseList();
  }
}

/// Files come and go on a camera, and each picture keeps one of those that were fetched.
class ChangingCardTest : public KnownPictureTest {
 protected:
  using Files = std::map<int, std::string>;

  int Below(int count) { return std::uniform_int_distribution(0, count - 1)(random_); }
  std::string NewText() {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%08u", ++texts_);
    return text.data();
  }
  void Change(Files& files) {
    const int kept = Below(kLastFileType) + 1;
    for (int type = kFirstFileType; type <= kLastFileType; ++type) {
      if (files.count(type) == 0) {
        if (Below(2) == 0 && lost_.count(type) == 0) files[type] = NewText();
      } else if (type != kept && Below(2) == 0 && files.size() > 1) {
        files.erase(type);
        lost_.insert(type);
      }
    }
  }

  std::mt19937 random_{base::RandomSeed()};
  unsigned texts_ = 0;
  std::set<int> lost_;  // such a file does not come back with another content: that would be another picture
};

TEST_F(ChangingCardTest, ThePictureKeepsItsNameAndNothingIsDoubled) {
  for (int round = 0; round < 40 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    const bool hasKey = Below(2) == 0;
    for (const std::string& name : Names()) std::filesystem::remove(path_ / name);
    LoseList();
    lost_.clear();
    Files files{{Below(kLastFileType) + 1, NewText()}};
    std::set<std::string> ever;
    for (int run = 0; run < 6; ++run) {
      card_.Put(1, files, hasKey);
      Run(card_);
      for (const auto& [type, text] : files) ever.insert(PictureFileName(card_.camera.catalogue.front(), type));
      EXPECT_THAT(Names(), testing::UnorderedElementsAreArray(ever));
      // At most one kind of change a run, so that a file of the picture stays.
      const Files before = files;
      Change(files);
      const bool stays =
          std::any_of(before.begin(), before.end(), [&](const auto& file) { return files.count(file.first) == 1; });
      if (!stays) files = before;
    }
  }
}

}  // namespace
}  // namespace apps
