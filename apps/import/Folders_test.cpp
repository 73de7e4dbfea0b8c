#include "apps/import/Folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "apps/commandline/Failure.h"
#include "apps/files/testing/RecordingCalls.h"
#include "base/testing/ScratchFolder.h"
#include "platform/Files.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class FoldersTest : public testing::Test {
 protected:
  void PutLeftover(const std::string& folder) const { std::ofstream(path_ / folder / kLeftover) << "half"; }
  bool HasLeftover(const std::string& folder) const { return fs::exists(path_ / folder / kLeftover); }

  static constexpr const char* kLeftover = ".kelva-0011223344556677.part";
  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  const TargetFolder target_ = TargetFolder::Open(path_);
  Folders folders_{target_};
};

TEST_F(FoldersTest, AFileWithoutFoldersIsInTheTarget) {
  EXPECT_EQ(folders_.For({{}, "A.JPG"})->Path(), path_);
}

TEST_F(FoldersTest, FoldersAreMadeAsTheyAreNeeded) {
  folders_.For({{"2026", "100ABCDE"}, "A.JPG"});
  folders_.For({{"2026", "101ABCDE"}, "A.JPG"});
  EXPECT_TRUE(fs::is_directory(path_ / "2026/100ABCDE"));
  EXPECT_TRUE(fs::is_directory(path_ / "2026/101ABCDE"));
}

TEST_F(FoldersTest, AFolderThatTakesNoFileIsFoundBeforeOneIsWritten) {
  for (const int error : {EACCES, EROFS, ENOSPC}) {
    RecordingCalls calls(path_);
    calls.FailAt(1, error, "create 100ABCDE/");
    EXPECT_THROW(Folders(target_).Try({{"100ABCDE"}, "A.JPG"}), Failure);
  }
  RecordingCalls calls(path_);
  calls.FailAt(1, EACCES, "make ");
  EXPECT_THROW(folders_.Try({{"101ABCDE"}, "A.JPG"}), Failure);
}

TEST_F(FoldersTest, AFolderIsTriedOnceAndNothingIsLeft) {
  RecordingCalls calls(path_);
  for (int i = 0; i < 3; ++i) folders_.Try({{"100ABCDE"}, "A.JPG"});
  EXPECT_THAT(calls.Log(), ElementsAre("make 100ABCDE", "create 100ABCDE/*.part"));
  EXPECT_TRUE(fs::is_empty(path_ / "100ABCDE"));
}

TEST_F(FoldersTest, WhatIsInTheWayOfOneFolderAloneIsTheSameSentenceForAllItsFiles) {
  std::ofstream(path_ / "100ABCDE") << "a file";
  fs::create_directory_symlink(path_, path_ / "101ABCDE");
  for (const char* name : {"A.JPG", "B.JPG"}) {
    EXPECT_THAT(folders_.Try({{"100ABCDE"}, name}), testing::HasSubstr("Not a directory"));
    EXPECT_THAT(folders_.Try({{"101ABCDE"}, name}), testing::HasSubstr("is a symbolic link and is not followed"));
    EXPECT_EQ(folders_.Try({{"102ABCDE"}, name}), "");
  }
}

TEST_F(FoldersTest, LeftoversOfKilledRunsGoAtTheFirstLookAndNoLater) {
  fs::create_directory(path_ / "100ABCDE");
  PutLeftover("100ABCDE");
  folders_.For({{"100ABCDE"}, "A.JPG"});
  EXPECT_FALSE(HasLeftover("100ABCDE"));
  PutLeftover("100ABCDE");
  // More folders than stay open at once.
  for (int i = 200; i < 400; ++i) folders_.For({{std::to_string(i)}, "A.JPG"});
  folders_.For({{"100ABCDE"}, "A.JPG"});
  EXPECT_TRUE(HasLeftover("100ABCDE"));
}

TEST_F(FoldersTest, NewFoldersAreFlushedWithAllThatLeadToThem) {
  folders_.For({{"2026", "100ABCDE"}, "A.JPG"});
  folders_.For({{"2026", "101ABCDE"}, "A.JPG"});
  const RecordingCalls calls(path_);
  folders_.Flush({{"2026", "100ABCDE"}, {"2026", "101ABCDE"}});
  EXPECT_THAT(calls.Log(), ElementsAre("flush folder 2026/100ABCDE", "flush folder 2026/101ABCDE", "flush folder .",
                                       "flush folder 2026"));
}

TEST_F(FoldersTest, FoldersAboveWithoutNewNamesAreNotFlushedAgain) {
  folders_.For({{"2026", "100ABCDE"}, "A.JPG"});
  folders_.Flush({{"2026", "100ABCDE"}});
  folders_.For({{"2026", "101ABCDE"}, "A.JPG"});
  const RecordingCalls calls(path_);
  folders_.Flush({{"2026", "101ABCDE"}});
  folders_.Flush({{"2026", "101ABCDE"}});
  EXPECT_THAT(calls.Log(),
              ElementsAre("flush folder 2026/101ABCDE", "flush folder 2026", "flush folder 2026/101ABCDE"));
}

TEST_F(FoldersTest, AFolderThatAnEarlierRunMadeIsFlushedOnceToo) {
  fs::create_directory(path_ / "100ABCDE");
  folders_.For({{"100ABCDE"}, "A.JPG"});
  const RecordingCalls calls(path_);
  folders_.Flush({{"100ABCDE"}});
  EXPECT_THAT(calls.Log(), ElementsAre("flush folder 100ABCDE", "flush folder ."));
}

TEST_F(FoldersTest, TheTargetItselfIsFlushedForItsOwnFiles) {
  const RecordingCalls calls(path_);
  folders_.Flush({{}});
  EXPECT_THAT(calls.Log(), ElementsAre("flush folder ."));
}

TEST_F(FoldersTest, AFolderAboveThatCannotBeFlushedIsAFailure) {
  folders_.For({{"100ABCDE"}, "A.JPG"});
  RecordingCalls calls(path_);
  calls.FailAt(2, EIO);
  EXPECT_THROW(folders_.Flush({{"100ABCDE"}}), Failure);
}

TEST_F(FoldersTest, AFolderStaysOpenForItsNextFile) {
  const auto first = folders_.For({{"2026", "100ABCDE"}, "A.JPG"});
  EXPECT_EQ(folders_.For({{"2026", "100ABCDE"}, "B.JPG"}), first);
}

TEST_F(FoldersTest, NotAllFoldersStayOpen) {
  for (int i = 0; i < 150; ++i) folders_.For({{std::to_string(i)}, "A.JPG"});
  int open = 0;
  for (const auto& entry : fs::directory_iterator("/dev/fd")) {
    const fs::path file = platform::PathOf(std::stoi(entry.path().filename()));
    open += file.parent_path() == fs::canonical(path_) ? 1 : 0;
  }
  EXPECT_LE(open, 128);
}

}  // namespace
}  // namespace apps
