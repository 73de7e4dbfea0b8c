#include "apps/import/Manifest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "apps/commandline/Failure.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ManifestTest : public testing::Test {
 protected:
  std::string WhyNot() const {
    try {
      Manifest(*folder_, true);
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "opened";
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

constexpr char kSha1[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

ManifestRow Row(const std::string& serial, int type) {
  return {{serial, "00ff", type, "print"}, "100/IMG.JPG", kSha1, 5'000'000'000ULL, true, false};
}

TEST_F(ManifestTest, WhatWasRecordedIsFoundByTheNextRun) {
  Manifest(*folder_, true).Record({Row("K1", 1), Row("K2", 2)});
  Manifest manifest(*folder_, true);
  const auto row = manifest.Find(Row("K1", 1).key);
  ASSERT_TRUE(row.has_value());
  EXPECT_EQ(row->path, "100/IMG.JPG");
  EXPECT_EQ(row->sha1, kSha1);
  EXPECT_EQ(row->size, 5'000'000'000ULL);
  EXPECT_TRUE(row->verified);
  EXPECT_FALSE(row->deleted);
}

TEST_F(ManifestTest, EveryPartOfTheKeyCounts) {
  Manifest manifest(*folder_, true);
  manifest.Record({Row("K1", 1)});
  EXPECT_FALSE(manifest.Find(Row("K2", 1).key).has_value());
  EXPECT_FALSE(manifest.Find(Row("K1", 2).key).has_value());
  ManifestKey other = Row("K1", 1).key;
  other.fingerprint = "another";
  EXPECT_FALSE(manifest.Find(other).has_value());
}

TEST_F(ManifestTest, ManyLooksAtOneStateLeaveTheListUsable) {
  Manifest manifest(*folder_, true);
  manifest.Record({Row("K1", 1)});
  {
    const Manifest::Reading reading(manifest);
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(manifest.Find(Row("K1", 1).key).has_value());
    }
  }
  manifest.Record({Row("K2", 1)});
  EXPECT_TRUE(Manifest(*folder_, true).Find(Row("K2", 1).key).has_value());
}

TEST_F(ManifestTest, TextsAreDataAndNotCommands) {
  Manifest manifest(*folder_, true);
  manifest.Record({Row("'; DROP TABLE files; --", 1)});
  EXPECT_TRUE(manifest.Find(Row("'; DROP TABLE files; --", 1).key).has_value());
}

TEST_F(ManifestTest, DeletionOnTheCameraIsRemembered) {
  Manifest manifest(*folder_, true);
  manifest.Record({Row("K1", 1)});
  manifest.MarkDeleted(Row("K1", 1).key);
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key)->deleted);
}

TEST_F(ManifestTest, ALookLeavesNothingBehind) {
  EXPECT_FALSE(Manifest(*folder_, false).Find(Row("K1", 1).key).has_value());
  EXPECT_TRUE(fs::is_empty(path_));
}

TEST_F(ManifestTest, ADamagedManifestIsAFailureThatSaysWhatToDo) {
  std::ofstream(path_ / Manifest::kName) << std::string(5000, 'x');
  EXPECT_THAT(WhyNot(), HasSubstr("if it is damaged, move it away"));
}

TEST_F(ManifestTest, ALinkInItsPlaceIsNotFollowed) {
  fs::create_symlink("/tmp/elsewhere.sqlite", path_ / Manifest::kName);
  EXPECT_THAT(WhyNot(), HasSubstr("is a symbolic link and is not followed"));
}

}  // namespace
}  // namespace apps
