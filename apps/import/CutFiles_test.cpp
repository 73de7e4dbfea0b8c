#include "apps/import/CutFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "apps/import/Folders.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

class CutFilesTest : public SyncFolderTest {
 protected:
  static constexpr char kPart[] = ".kelva-0011223344556677-1-1.part";

  CutFilesTest() { std::filesystem::create_directory(path_ + "/100ABCDE"); }

  void Put(const std::string& name, const std::string& text) const { std::ofstream(path_ + "/" + name) << text; }
  bool Has(const std::string& name) const { return std::filesystem::exists(path_ + "/" + name); }
  std::optional<Part> TakeUp(unsigned long long size) {
    return CutFiles(folder_, manifest_).TakeUp(kKey, size, kFile, in_);
  }

  const ManifestKey kKey{"K1", "01", 1, "print"};
  const LocalPath kFile{{"100ABCDE"}, "A.JPG"};
  const std::string kPath = std::string("100ABCDE/") + kPart;
  TargetFolder in_ = folder_.Below("100ABCDE");
};

TEST_F(CutFilesTest, APartIsFoundBySize) {
  Put(kPath, "abc");
  manifest_.RecordCut({kKey, 5, kPath, 0});
  const auto part = TakeUp(5);
  ASSERT_TRUE(part.has_value());
  EXPECT_EQ(part->size, 3U);
  EXPECT_TRUE(part->file->HoldsAt(0, std::string("abc")));
}

TEST_F(CutFilesTest, WhatWasComparedCountsForAWholePartAlone) {
  Put(kPath, "abcde");
  manifest_.RecordCut({kKey, 5, kPath, 4});
  EXPECT_EQ(TakeUp(5)->compared, 4U);
  std::filesystem::resize_file(path_ + "/" + kPath, 3);
  EXPECT_EQ(TakeUp(5)->compared, 0U);
}

TEST_F(CutFilesTest, APartThatDoesNotFitIsRemoved) {
  for (const auto& [size, text] : {std::pair(4, "abc"), std::pair(2, "abc"), std::pair(5, "")}) {
    Put(kPath, text);
    manifest_.RecordCut({kKey, size == 4 ? 5ULL : static_cast<unsigned long long>(size), kPath, 0});
    EXPECT_FALSE(TakeUp(static_cast<unsigned long long>(size)).has_value());
    EXPECT_FALSE(Has(kPath));
    EXPECT_THAT(manifest_.Cuts(), testing::IsEmpty());
  }
}

TEST_F(CutFilesTest, APartOfARunWithAnotherPatternIsBroughtToItsFile) {
  Put(kPart, "abc");
  manifest_.RecordCut({kKey, 5, kPart, 0});
  const auto part = TakeUp(5);
  ASSERT_TRUE(part.has_value());
  EXPECT_TRUE(part->file->HoldsAt(0, std::string("abc")));
  EXPECT_FALSE(Has(kPart));
  EXPECT_EQ(Text(kPath), "abc");
  ASSERT_EQ(manifest_.Cuts().size(), 1U);
  EXPECT_EQ(manifest_.Cuts()[0].path, kPath) << "for the run after this one";
}

TEST_F(CutFilesTest, APartThatCannotBeBroughtIsRemoved) {
  Put(kPart, "abc");
  Put(kPath, "another");
  manifest_.RecordCut({kKey, 5, kPart, 0});
  EXPECT_FALSE(TakeUp(5).has_value());
  EXPECT_FALSE(Has(kPart));
  EXPECT_EQ(Text(kPath), "another");
  EXPECT_THAT(manifest_.Cuts(), testing::IsEmpty());
}

TEST_F(CutFilesTest, APartBehindALinkIsNotBrought) {
  const base::ScratchFolder outside;
  std::ofstream(std::string(outside.Path()) + "/" + kPart) << "mine";
  std::filesystem::create_symlink(outside.Path(), path_ + "/link");
  manifest_.RecordCut({kKey, 5, std::string("link/") + kPart, 0});
  EXPECT_FALSE(TakeUp(5).has_value());
  EXPECT_TRUE(std::filesystem::exists(std::string(outside.Path()) + "/" + kPart));
}

TEST_F(CutFilesTest, NothingButATemporaryFileOfTheTargetIsTouchedOnTheWordOfTheList) {
  const std::string outside = "../" + std::filesystem::path(path_).filename().string() + "-outside.part";
  for (const std::string& path : {std::string("100ABCDE/MINE.JPG"), outside, std::string("/etc/.kelva-1.part")}) {
    if (path.front() != '/') Put(path, "mine");
    manifest_.RecordCut({kKey, 5, path, 0});
    EXPECT_FALSE(TakeUp(5).has_value());
    EXPECT_TRUE(path.front() == '/' || Has(path)) << path;
  }
  std::filesystem::remove(path_ + "/" + outside);
}

TEST_F(CutFilesTest, ALinkInPlaceOfAPartIsNotFollowed) {
  Put("100ABCDE/MINE.JPG", "abc");
  std::filesystem::create_symlink("MINE.JPG", path_ + "/" + kPath);
  manifest_.RecordCut({kKey, 5, kPath, 0});
  EXPECT_FALSE(TakeUp(5).has_value());
  EXPECT_EQ(Text("100ABCDE/MINE.JPG"), "abc");
}

TEST_F(CutFilesTest, APartThatIsInUseIsNotTakenTwice) {
  Put(kPath, "abc");
  manifest_.RecordCut({kKey, 5, kPath, 0});
  const auto first = TakeUp(5);
  EXPECT_TRUE(first.has_value());
  EXPECT_FALSE(TakeUp(5).has_value());
}

TEST_F(CutFilesTest, SweepsLeavePartsAlone) {
  Put(kPath, "abc");
  Put("100ABCDE/.kelva-killed.part", "abc");
  manifest_.RecordCut({kKey, 5, kPath, 0});
  const CutFiles cuts(folder_, manifest_);
  EXPECT_TRUE(cuts.Keeps(kPath));
  Folders folders(folder_, [&](const std::string& path) { return cuts.Keeps(path); });
  folders.For(kFile);
  EXPECT_TRUE(Has(kPath));
  EXPECT_FALSE(Has("100ABCDE/.kelva-killed.part"));
}

TEST_F(CutFilesTest, PartsOfFilesThatAreGoneAreRemoved) {
  Put(kPath, "abc");
  manifest_.RecordCut({kKey, 5, kPath, 0});
  CutFiles(folder_, manifest_).DropIf([](const ManifestKey&) { return false; });
  EXPECT_TRUE(Has(kPath));
  CutFiles(folder_, manifest_).DropIf([this](const ManifestKey& key) { return key == kKey; });
  EXPECT_FALSE(Has(kPath));
  EXPECT_THAT(manifest_.Cuts(), testing::IsEmpty());
}

}  // namespace
}  // namespace apps
