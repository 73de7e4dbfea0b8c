#include "apps/import/Manifest.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/ManifestTest.h"

namespace apps {
namespace {

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
  manifest.MarkDeleted({Row("K1", 1).key});
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key)->deleted);
}

// Its prepared statements belong to it, and so does the connection that they hold.
static_assert(!std::is_move_constructible_v<Manifest> && !std::is_move_assignable_v<Manifest>);

TEST_F(ManifestTest, CutFilesAreRememberedUntilTheyAreForgottenOrWhole) {
  Manifest(*folder_, true).RecordCut(Cut("K1"));
  Manifest manifest(*folder_, true);
  manifest.RecordCut(Cut("K2"));
  manifest.RecordCut({Cut("K2").key, 6, "other", 0});
  ASSERT_EQ(manifest.Cuts().size(), 2U);
  EXPECT_EQ(manifest.Cuts()[0].key, Cut("K1").key);
  EXPECT_EQ(manifest.Cuts()[0].size, 5'000'000'000ULL);
  EXPECT_EQ(manifest.Cuts()[0].path, "100/.kelva-1.part");
  EXPECT_EQ(manifest.Cuts()[0].compared, 7U);
  EXPECT_EQ(manifest.Cuts()[1].path, "other");
  manifest.ForgetCuts({Cut("K2").key});
  EXPECT_EQ(manifest.Cuts().size(), 1U);
  manifest.Record({Row("K1", 1)});
  EXPECT_EQ(manifest.Cuts().size(), 0U);
}

TEST_F(ManifestTest, OneRowCanBeMarkedAfterAnother) {
  Manifest manifest(*folder_, true);
  manifest.Record({Row("K1", 1), Row("K1", 2), Row("K1", 3)});
  manifest.MarkDeleted({Row("K1", 1).key});
  manifest.MarkDeleted({Row("K1", 3).key});
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key)->deleted);
  EXPECT_FALSE(manifest.Find(Row("K1", 2).key)->deleted);
  EXPECT_TRUE(manifest.Find(Row("K1", 3).key)->deleted);
}

TEST_F(ManifestTest, RowsThatCannotBeCommittedAreNotThereAndTheListStaysUsable) {
  Manifest manifest(*folder_, true);
  RecordingCalls calls(path_);
  for (const int error : {EIO, ENOSPC, EDQUOT, EROFS}) {
    calls.FailAt(1, error);
    try {
      manifest.Record({Row("K1", 1), Row("K2", 1)});
      FAIL();
    } catch (const Failure& failure) {
      EXPECT_THAT(failure.what(), testing::StartsWith("Cannot write the list of fetched files "));
      EXPECT_EQ(failure.SystemError(), error);
    }
    EXPECT_FALSE(manifest.Find(Row("K1", 1).key).has_value());
  }
  manifest.Record({Row("K1", 1)});
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key).has_value());
}

TEST_F(ManifestTest, ASignalDuringACommitChangesNothing) {
  RecordingCalls calls(path_);
  calls.FailEach(1, 3, EINTR);
  Manifest(*folder_, true).Record({Row("K1", 1)});
  EXPECT_TRUE(Manifest(*folder_, false).Find(Row("K1", 1).key).has_value());
}

TEST_F(ManifestTest, AListOfTheVersionBeforeHasNoCutFilesAndTakesThem) {
  // As version 1.0 makes it, and with a row of it.
  Elsewhere(
      "CREATE TABLE files(serial TEXT NOT NULL, picture TEXT NOT NULL, type INTEGER NOT NULL, fingerprint TEXT NOT "
      "NULL,"
      "path TEXT NOT NULL, sha1 TEXT NOT NULL, size INTEGER NOT NULL, verified INTEGER NOT NULL, deleted INTEGER NOT "
      "NULL,"
      "stored TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ','now')),"
      "PRIMARY KEY(serial, picture, type, fingerprint)) WITHOUT ROWID; PRAGMA user_version=1;"
      "INSERT INTO files(serial, picture, type, fingerprint, path, sha1, size, verified, deleted)"
      "VALUES('K1', '00ff', 1, 'print', '100/IMG.JPG', 'sum', 3, 0, 0)");
  Manifest manifest(*folder_, true);
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key).has_value());
  EXPECT_THAT(manifest.Cuts(), testing::IsEmpty());
  manifest.ForgetCuts({Cut("K1").key});
  manifest.RecordCut(Cut("K1"));
  EXPECT_EQ(manifest.Cuts().size(), 1U);
}

TEST_F(ManifestTest, TheVersionBeforeReadsAndWritesAListWithCutFiles) {
  Manifest(*folder_, true).RecordCut(Cut("K1"));
  // What version 1.0 does at its start, and with a file that it fetched.
  Elsewhere(
      "CREATE TABLE IF NOT EXISTS files(serial TEXT NOT NULL);"
      "INSERT OR REPLACE INTO files(serial, picture, type, fingerprint, path, sha1, size, verified, deleted)"
      "VALUES('K1', '00ff', 1, 'print', '100/IMG.JPG', 'sum', 3, 0, 0)");
  Manifest manifest(*folder_, true);
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key).has_value());
  EXPECT_EQ(manifest.Cuts().size(), 1U) << "the next sync sees that the file is whole";
}

TEST_F(ManifestTest, TheVersionBeforeLeavesOtherFilesAndFilesThatWereLetGoAlone) {
  const ManifestRow other = {{"K1", "other 493a", 0, "7"}, "100/MVI.MP4", kSha1, 7, false, false};
  {
    Manifest manifest(*folder_, true);
    manifest.Record({other, Row("K1", 1), Row("K1", 2)});
    manifest.LetGo({Row("K1", 2).key});
    EXPECT_TRUE(manifest.Find(Row("K1", 2).key)->IsLetGo());
  }
  // What version 1.0 does with a file that it fetched, and with one that it deleted on the camera.
  Elsewhere(
      "INSERT OR REPLACE INTO files(serial, picture, type, fingerprint, path, sha1, size, verified, deleted)"
      "VALUES('K1', '00ff', 3, 'print', '100/IMG.TXT', 'sum', 3, 0, 0);"
      "UPDATE files SET deleted=1 WHERE serial='K1' AND picture='00ff' AND type=1 AND fingerprint='print'");
  Manifest manifest(*folder_, true);
  EXPECT_EQ(manifest.Find(other.key)->path, "100/MVI.MP4");
  EXPECT_FALSE(manifest.Find(other.key)->deleted);
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key)->deleted);
  EXPECT_TRUE(manifest.Find(Row("K1", 2).key)->IsLetGo());
  EXPECT_TRUE(manifest.Find(Row("K1", 3).key).has_value());
}

}  // namespace
}  // namespace apps
