#include "apps/import/Manifest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <type_traits>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/files/testing/RecordingCalls.h"
#include "base/testing/ScratchFolder.h"
#include "platform/Files.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class ManifestTest : public testing::Test {
 protected:
  std::string WhyNot(ExitCode code = ExitCode::kFailed) const {
    try {
      Manifest(*folder_, true, std::chrono::milliseconds(1));
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Code(), code);
      return failure.what();
    }
    return "opened";
  }
  // What another program does to the list.
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Elsewhere(const char* sql) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open((path_ / Manifest::kName).c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    return {database, sqlite3_close};
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

constexpr char kSha1[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

ManifestRow Row(const std::string& serial, int type) {
  return {{serial, "00ff", type, "print"}, "100/IMG.JPG", kSha1, 5'000'000'000ULL, true, false};
}

// Who can read a file can lock it, and a list that somebody else has locked keeps every sync from its end.
TEST_F(ManifestTest, OnlyWhoMayWriteIntoTheFolderCanOpenTheList) {
  const fs::path list = path_ / Manifest::kName;
  const auto modeOf = [&] { return fs::status(list).permissions(); };
  fs::permissions(path_, fs::perms(0755));
  Manifest(*folder_, true, std::chrono::milliseconds(1));
  EXPECT_EQ(modeOf(), fs::perms(0600));
  fs::permissions(list, fs::perms(0644));  // as earlier versions made it
  Manifest(*folder_, true, std::chrono::milliseconds(1));
  EXPECT_EQ(modeOf(), fs::perms(0600));
  fs::permissions(path_, fs::perms(0775));
  Manifest(*folder_, true, std::chrono::milliseconds(1));
  EXPECT_EQ(modeOf(), fs::perms(0660));
}

/// How many descriptors of this process are of a file.
int OpenDescriptorsOf(const fs::path& path) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator("/dev/fd")) {
    if (platform::PathOf(std::stoi(entry.path().filename())) == path) ++count;
  }
  return count;
}

TEST_F(ManifestTest, TheFileIsClosedAtTheEnd) {
  const fs::path file = fs::canonical(path_) / Manifest::kName;
  {
    Manifest manifest(*folder_, true);
    manifest.Record({Row("K1", 1)});
    manifest.Find(Row("K1", 1).key);
    EXPECT_GT(OpenDescriptorsOf(file), 0);
  }
  EXPECT_EQ(OpenDescriptorsOf(file), 0);
}

TEST_F(ManifestTest, TheFileIsClosedWhenItCannotBeUsed) {
  Elsewhere("PRAGMA user_version=99");
  WhyNot();
  EXPECT_EQ(OpenDescriptorsOf(fs::canonical(path_) / Manifest::kName), 0);
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
  manifest.MarkDeleted({Row("K1", 1).key});
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key)->deleted);
}

TEST_F(ManifestTest, ALookLeavesNothingBehind) {
  EXPECT_FALSE(Manifest(*folder_, false).Find(Row("K1", 1).key).has_value());
  EXPECT_TRUE(fs::is_empty(path_));
}

// Its prepared statements belong to it, and so does the connection that they hold.
static_assert(!std::is_move_constructible_v<Manifest> && !std::is_move_assignable_v<Manifest>);

// The system calls a removed folder by its old name and " (deleted)", which another folder can have.
TEST_F(ManifestTest, TheListOfAnotherFolderThatCameToThePathIsNotTaken) {
  const base::ScratchFolder scratch;
  const std::string path = scratch.Path() / "gone";
  std::filesystem::create_directory(path);
  const TargetFolder folder = TargetFolder::Open(path);
  std::filesystem::remove(path);
  std::filesystem::create_directory(path + " (deleted)");
  try {
    const Manifest manifest(folder, true);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr("was moved while its list was opened"));
  }
}

TEST_F(ManifestTest, ADamagedManifestIsAFailureThatSaysWhatToDo) {
  std::ofstream(path_ / Manifest::kName) << std::string(5000, 'x');
  EXPECT_THAT(WhyNot(), HasSubstr("if it is damaged, move it away"));
}

TEST_F(ManifestTest, ALinkInItsPlaceIsNotFollowed) {
  fs::create_symlink("/tmp/elsewhere.sqlite", path_ / Manifest::kName);
  EXPECT_THAT(WhyNot(), HasSubstr("is a symbolic link and is not followed"));
}

TEST_F(ManifestTest, TheListOfAnotherProgramIsRefused) {
  Elsewhere("PRAGMA user_version=-1");
  EXPECT_THAT(WhyNot(), HasSubstr("was made by another program; move it away"));
  Elsewhere("PRAGMA user_version=2");
  EXPECT_THAT(WhyNot(), HasSubstr("was made by a newer version of this tool"));
}

TEST_F(ManifestTest, ALockedListIsCalledLockedAndNotDamaged) {
  const Manifest made(*folder_, true);
  const auto other = Elsewhere("BEGIN EXCLUSIVE");
  const std::string why = WhyNot(ExitCode::kBusy);
  EXPECT_THAT(why, HasSubstr("another program has locked it; repeat the command"));
  EXPECT_THAT(why, Not(HasSubstr("damaged")));
}

TEST_F(ManifestTest, AListThatIsLockedWhenRowsComeIsCalledLockedToo) {
  Manifest manifest(*folder_, true, std::chrono::milliseconds(1));
  const auto other = Elsewhere("BEGIN IMMEDIATE");
  try {
    manifest.Record({Row("K1", 1)});
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kBusy);
    EXPECT_THAT(failure.what(), HasSubstr("another program has locked it"));
  }
}

TEST_F(ManifestTest, CommandsThatAnotherProgramLeftInTheListDoNotRun) {
  Manifest(*folder_, true).Record({Row("K1", 1)});
  Elsewhere("CREATE TRIGGER vanish AFTER INSERT ON files BEGIN DELETE FROM files; END");
  Manifest manifest(*folder_, true);
  manifest.Record({Row("K2", 1)});
  EXPECT_TRUE(manifest.Find(Row("K1", 1).key).has_value());
  EXPECT_TRUE(manifest.Find(Row("K2", 1).key).has_value());
}

sqlite3* lastOpened = nullptr;

int KeepOpened(sqlite3* database, const char**, const sqlite3_api_routines*) {
  lastOpened = database;
  return SQLITE_OK;
}

int Number(const char* question) {
  sqlite3_stmt* statement = nullptr;
  EXPECT_EQ(sqlite3_prepare_v2(lastOpened, question, -1, &statement, nullptr), SQLITE_OK);
  EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
  const int number = sqlite3_column_int(statement, 0);
  sqlite3_finalize(statement);
  return number;
}

int Setting(int setting) {
  int value = -1;
  sqlite3_db_config(lastOpened, setting, -1, &value);
  return value;
}

/// While it lives, each new connection is noted.
class NotingConnections {
 public:
  NotingConnections() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(KeepOpened)); }
  ~NotingConnections() { sqlite3_reset_auto_extension(); }
  NotingConnections(const NotingConnections&) = delete;
  NotingConnections& operator=(const NotingConnections&) = delete;
};

TEST_F(ManifestTest, RowsAreOnDiskWhenTheyAreRecordedAndTheFileIsNotTrusted) {
  const NotingConnections noting;
  const Manifest manifest(*folder_, true);
  ASSERT_NE(lastOpened, nullptr);
  constexpr int kExtra = 3;
  EXPECT_EQ(Number("PRAGMA synchronous"), kExtra);
  EXPECT_EQ(Setting(SQLITE_DBCONFIG_DEFENSIVE), 1);
  EXPECT_EQ(Setting(SQLITE_DBCONFIG_TRUSTED_SCHEMA), 0);
  EXPECT_EQ(Setting(SQLITE_DBCONFIG_ENABLE_TRIGGER), 0);
  EXPECT_EQ(Setting(SQLITE_DBCONFIG_ENABLE_VIEW), 0);
}

TEST_F(ManifestTest, AnotherProgramsLockIsWaitedForFiveSeconds) {
  const NotingConnections noting;
  const Manifest manifest(*folder_, true);
  EXPECT_EQ(Number("PRAGMA busy_timeout"), 5000);
}

/// The sentence of a row that cannot be recorded, and errno.
std::pair<std::string, int> WhyNotRecorded(Manifest& manifest) {
  ManifestRow row = Row("K1", 1);
  row.path = std::string(100'000, 'n');
  try {
    manifest.Record({row});
  } catch (const Failure& failure) {
    return {failure.what(), failure.SystemError()};
  }
  return {"recorded", 0};
}

TEST_F(ManifestTest, AListThatHasNoRoomIsAFullDisk) {
  const NotingConnections noting;
  Manifest manifest(*folder_, true);
  EXPECT_EQ(sqlite3_exec(lastOpened, "PRAGMA max_page_count=2", nullptr, nullptr, nullptr), SQLITE_OK);
  const auto [sentence, error] = WhyNotRecorded(manifest);
  EXPECT_THAT(sentence, testing::StartsWith("Cannot write the list of fetched files "));
  EXPECT_THAT(sentence, HasSubstr("make room there"));
  EXPECT_EQ(error, ENOSPC);
}

TEST_F(ManifestTest, AListThatMayNotBeWrittenSaysWhatToDo) {
  { const Manifest made(*folder_, true); }
  Manifest manifest(*folder_, false);
  const auto [sentence, error] = WhyNotRecorded(manifest);
  EXPECT_THAT(sentence, HasSubstr("choose another place, or have it mounted for writing"));
  EXPECT_EQ(error, EROFS);
}

TEST_F(ManifestTest, AFolderInPlaceOfTheListIsTheSystemsError) {
  fs::create_directory(path_ / Manifest::kName);
  const std::string why = WhyNot();
  EXPECT_THAT(why, testing::StartsWith("Cannot open the list of fetched files "));
  EXPECT_THAT(why, HasSubstr("Is a directory"));
}

TEST_F(ManifestTest, AListWithoutItsTableIsNamedAsDamaged) {
  Manifest manifest(*folder_, true);
  Elsewhere("DROP TABLE files");
  try {
    manifest.Find(Row("K1", 1).key);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), testing::StartsWith("Cannot read the list of fetched files "));
    EXPECT_THAT(failure.what(),
                HasSubstr(": no such table: files; if it is damaged, move it away, and files that are"));
  }
}

// As a first run leaves it that was killed before it made the table.
TEST_F(ManifestTest, AnEmptyFileOfTheNameIsAListOfNothingForALook) {
  std::ofstream(path_ / Manifest::kName).close();
  Manifest look(*folder_, false);
  const Manifest::Reading reading(look);
  EXPECT_FALSE(look.Find(Row("K1", 1).key).has_value());
  EXPECT_EQ(fs::file_size(path_ / Manifest::kName), 0U);
}

TEST_F(ManifestTest, ALookTakesBackWhatAKilledRunHalfWrote) {
  Manifest(*folder_, true).Record({Row("K1", 1)});
  const auto writing = Elsewhere(
      "PRAGMA cache_size=2; BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000) "
      "INSERT INTO files SELECT 'K2', '00ff', i, 'print', 'path', 'sum', 1, 1, 0, 'now' FROM n");
  const fs::path killed = path_ / "killed";  // the disk in the middle of the change
  fs::create_directory(killed);
  for (const std::string end : {"", "-journal"}) {
    fs::copy_file(path_ / (std::string(Manifest::kName) + end), killed / (std::string(Manifest::kName) + end));
  }
  const TargetFolder folder = TargetFolder::Open(killed);
  Manifest look(folder, false);
  EXPECT_TRUE(look.Find(Row("K1", 1).key).has_value());
  EXPECT_FALSE(look.Find(Row("K2", 1).key).has_value());
}

CutRow Cut(const std::string& serial) {
  return {Row(serial, 1).key, 5'000'000'000ULL, "100/.kelva-1.part", 7};
}

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

}  // namespace
}  // namespace apps
