#include <gmock/gmock.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/ManifestTest.h"
#include "platform/Files.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

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

TEST_F(ManifestTest, ALookLeavesNothingBehind) {
  EXPECT_FALSE(Manifest(*folder_, false).Find(Row("K1", 1).key).has_value());
  EXPECT_TRUE(fs::is_empty(path_));
}

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
  EXPECT_THAT(WhyNot(), HasSubstr(" is damaged (file is not a database); move it away"));
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
  EXPECT_THAT(why, HasSubstr("another program has locked it; try again"));
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
std::pair<std::string, int> WhyNotRecorded(Manifest& manifest, ManifestRow row) {
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
  const auto [sentence, error] = WhyNotRecorded(manifest, Row("K1", 1));
  EXPECT_THAT(sentence, testing::StartsWith("Cannot write the list of fetched files "));
  EXPECT_THAT(sentence, HasSubstr("make room there"));
  EXPECT_EQ(error, ENOSPC);
}

TEST_F(ManifestTest, AListThatMayNotBeWrittenSaysWhatToDo) {
  { const Manifest made(*folder_, true); }
  Manifest manifest(*folder_, false);
  const auto [sentence, error] = WhyNotRecorded(manifest, Row("K1", 1));
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

}  // namespace
}  // namespace apps
