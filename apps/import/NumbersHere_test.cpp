#include "apps/import/NumbersHere.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <random>
#include <set>

#include "apps/import/testing/CardsTest.h"
#include "base/testing/RandomSeed.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

class NumbersHereTest : public CardsTest {};

TEST_F(NumbersHereTest, WithoutAListAPictureIsFoundWhereAllItsFilesAre) {
  for (const bool hasKey : {true, false}) {
    card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, hasKey);
    PutHere("IMG_0001.JPG", "another!");
    PutHere("IMG_0001-2.JPG", "jpg of 1");
    PutHere("IMG_0001-2.RAW", "raw of 1");
    EXPECT_EQ(Run(card_).alreadyHere, 2U);
    EXPECT_EQ(Names().size(), 3U);
    LoseList();
  }
}

TEST_F(NumbersHereTest, AJpgThatIsHereBesideAnotherRawIsStoredOnceMoreBesideItsOwn) {
  for (const bool hasKey : {true, false}) {
    card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, hasKey);
    PutHere("IMG_0001.JPG", "jpg of 1");
    PutHere("IMG_0001.RAW", "an edit!");
    EXPECT_EQ(Run(card_).stored, 2U);
    EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001-2.JPG", "IMG_0001-2.RAW"));
    EXPECT_EQ(Here("IMG_0001-2.RAW"), "raw of 1");
    for (const std::string& name : Names()) fs::remove(path_ / name);
    LoseList();
  }
}

TEST_F(NumbersHereTest, WhatIsMissingBesideTheJpgThatIsHereIsStoredThere) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, false);
  PutHere("IMG_0001.JPG", "jpg of 1");
  EXPECT_EQ(Run(card_).alreadyHere, 1U);
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW"));
}

TEST_F(NumbersHereTest, AFileThatThePictureDoesNotHaveParts) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, true);
  PutHere("IMG_0001.JPG", "jpg of 1");
  PutHere("IMG_0001.TXT", "a text");
  Run(card_);
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.TXT", "IMG_0001-2.JPG", "IMG_0001-2.RAW"));
}

TEST_F(NumbersHereTest, AFileWhoseSizeAloneIsTheSameIsAskedForItsContentOnce) {
  card_.Put(1, {{1, "jpg of 1"}, {2, "raw of 1"}}, false);
  PutHere("IMG_0001.JPG", "JPG OF 1");
  PutHere("IMG_0001-2.JPG", "of another size");
  PutHere("IMG_0001-3.JPG", "jpg-of-1");
  Run(card_);
  EXPECT_EQ(Here("IMG_0001-4.RAW"), "raw of 1");
  EXPECT_EQ(card_.camera.reads, 3);
}

TEST_F(NumbersHereTest, TwoPicturesDoNotShareAJpgThatIsHereForTwoRaws) {
  card_.Put(1, {{1, "the same"}, {2, "raw of 1"}}, false);
  Card other("K2");
  other.Put(1, {{1, "the same"}, {2, "raw of 2"}}, false);
  PutHere("IMG_0001.JPG", "the same");
  Run(card_);
  Run(other);
  EXPECT_EQ(Here("IMG_0001.RAW"), "raw of 1");
  EXPECT_THAT(Names(), UnorderedElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001-2.JPG", "IMG_0001-2.RAW"));
}

/// Cards at random, in several runs of two cameras into one folder, of which the list is lost now and then.
class RandomCardsTest : public NumbersHereTest {
 protected:
  /// Eight bytes, always others: only the content tells two files apart.
  std::string NewText() {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%08u", ++texts_);
    return text.data();
  }
  int Below(int count) { return std::uniform_int_distribution(0, count - 1)(random_); }
  void Change(Card& card) {
    std::map<int, std::string> files;
    for (int type = kFirstFileType; type <= kLastFileType; ++type) {
      if (Below(2) == 0) files[type] = NewText();
    }
    if (files.empty()) files[1] = NewText();
    for (const auto& [type, text] : files) belongs_[text] = texts_;
    card.Put(1 + Below(3), files, Below(2) == 0);
  }
  std::vector<int> SomeTypes() {
    if (Below(2) == 0) return {1, 2, 3, 4};
    return {1 + Below(4), 1 + Below(4)};
  }
  static std::string Stem(const std::string& name) { return name.substr(0, name.rfind('.')); }

  /// The files of one picture have one name, and nothing else has it.
  void ExpectEachStemIsOnePicture() {
    std::map<std::string, std::set<unsigned>> ofStem;
    std::map<unsigned, std::set<std::string>> ofPicture;
    for (const std::string& name : Names()) {
      const auto picture = belongs_.find(Here(name));
      const unsigned number = picture == belongs_.end() ? 0 : picture->second;
      ofStem[Stem(name)].insert(number);
      if (number != 0) ofPicture[number].insert(Stem(name));
    }
    for (const auto& [stem, pictures] : ofStem) EXPECT_EQ(pictures.size(), 1U) << stem;
    for (const auto& [picture, stems] : ofPicture) EXPECT_EQ(stems.size(), 1U) << "of one picture";
  }
  void ExpectAllAreHere(const Card& card) {
    std::set<std::string> texts;
    for (const std::string& name : Names()) texts.insert(Here(name));
    for (const auto& [name, text] : card.camera.files) EXPECT_EQ(texts.count(text), 1U) << name;
  }

  std::mt19937 random_{base::RandomSeed()};
  std::map<std::string, unsigned> belongs_;  // the picture of a file, by its content
  unsigned texts_ = 0;
};

TEST_F(RandomCardsTest, FilesOfOnePictureKeepOneNameAndNoOtherHasIt) {
  for (int round = 0; round < 30 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    for (const std::string& name : Names()) fs::remove(path_ / name);
    LoseList();
    for (int i = Below(3); i > 0; --i) PutHere("IMG_000" + std::to_string(1 + Below(3)) + ".RAW", NewText());
    Card cards[] = {Card("K1"), Card("K2")};
    for (int run = 0; run < 8; ++run) {
      Card& card = cards[Below(2)];
      for (int i = Below(3); i > 0; --i) Change(card);
      if (Below(4) == 0) LoseList();
      Run(card, SomeTypes());
      ExpectEachStemIsOnePicture();
    }
    for (Card& card : cards) {
      Run(card);
      ExpectEachStemIsOnePicture();
      ExpectAllAreHere(card);
    }
  }
}

}  // namespace
}  // namespace apps
