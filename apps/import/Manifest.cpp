// The list of fetched files: an SQLite database in the target folder.
#include "apps/import/Manifest.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/FolderLock.h"
#include "platform/Files.h"

namespace apps {
namespace {

constexpr int kVersion = 1;

constexpr const char* kSchema = R"(
  CREATE TABLE IF NOT EXISTS files(
    serial TEXT NOT NULL, picture TEXT NOT NULL, type INTEGER NOT NULL, fingerprint TEXT NOT NULL,
    path TEXT NOT NULL, sha1 TEXT NOT NULL, size INTEGER NOT NULL, verified INTEGER NOT NULL, deleted INTEGER NOT NULL,
    stored TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ','now')),
    PRIMARY KEY(serial, picture, type, fingerprint)) WITHOUT ROWID;
  PRAGMA user_version=1;)";

// Beside the first table since it first had need of it: a version that does not know it leaves it alone.
constexpr const char* kCutSchema = R"(
  CREATE TABLE IF NOT EXISTS cut(
    serial TEXT NOT NULL, picture TEXT NOT NULL, type INTEGER NOT NULL, fingerprint TEXT NOT NULL,
    size INTEGER NOT NULL, path TEXT NOT NULL, compared INTEGER NOT NULL, sha1 TEXT NOT NULL,
    PRIMARY KEY(serial, picture, type, fingerprint)) WITHOUT ROWID;)";

bool IsLink(const TargetFolder& folder, const std::string& name) {
  struct stat status {};
  return ::fstatat(folder.Fd(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
}

std::string PathIn(const TargetFolder& folder, const std::string& name) {
  const std::string path = platform::PathOf(folder.Fd());
  return path.empty() ? folder.PathOf(name) : path + "/" + name;
}

// errno behind an SQLite error that is the disk's; 0 for an error that is the database's own.
int SystemErrorOf(int code, sqlite3* database, const std::string& path) {
  if (code == SQLITE_FULL) return ENOSPC;
  if (code == SQLITE_READONLY) return ::access(path.c_str(), W_OK) != 0 ? errno : EROFS;
  if (code == SQLITE_IOERR || code == SQLITE_CANTOPEN) return sqlite3_system_errno(database);
  return 0;
}

Failure Damaged(const std::string& path, const std::string& what) {
  return Failure(ExitCode::kFailed, "The list of fetched files " + Printable(path) + " is damaged (" + Printable(what) +
                                        "); move it away, and files that are here are recognised by their content.");
}

}  // namespace

class Manifest::Statement {
 public:
  Statement(Manifest& manifest, const char* sql) : manifest_(manifest) {
    if (sqlite3_prepare_v2(manifest.database_, sql, -1, &statement_, nullptr) != SQLITE_OK) manifest.Fail("read");
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  /// For the next use. A statement that is not reset holds the database.
  void Reset() {
    sqlite3_reset(statement_);
    bound_ = 0;
  }
  Statement& Bind(const std::string& text) {
    sqlite3_bind_text(statement_, ++bound_, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    return *this;
  }
  Statement& Bind(long long number) {
    sqlite3_bind_int64(statement_, ++bound_, number);
    return *this;
  }
  Statement& Bind(const ManifestKey& key) {
    return Bind(key.serial).Bind(key.picture).Bind(static_cast<long long>(key.type)).Bind(key.fingerprint);
  }
  /// True when there is a row.
  bool Step(const std::string& doing) {
    const int result = sqlite3_step(statement_);
    if (result != SQLITE_ROW && result != SQLITE_DONE) manifest_.Fail(doing);
    return result == SQLITE_ROW;
  }
  std::string Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text == nullptr ? "" : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
  }
  long long Number(int column) const { return sqlite3_column_int64(statement_, column); }

 private:
  Manifest& manifest_;
  sqlite3_stmt* statement_ = nullptr;
  int bound_ = 0;
};

namespace {

// Resets a prepared statement on every way out: a statement that is not reset keeps the database locked.
template <typename Statement>
class Use {
 public:
  explicit Use(Statement& statement) : statement_(statement) {}
  ~Use() { statement_.Reset(); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  Statement* operator->() const { return &statement_; }

 private:
  Statement& statement_;
};

}  // namespace

Manifest::Manifest() = default;

Manifest::Manifest(const TargetFolder& folder, bool make, std::chrono::milliseconds patience)
    : path_(folder.PathOf(std::string(kName))) {
  const std::string name(kName);
  if (IsLink(folder, name)) {
    throw Failure(ExitCode::kFailed, Printable(path_) + " is a symbolic link and is not followed; remove it.");
  }
  if (!make && !folder.Has(name)) return;
  try {
    Open(PathIn(folder, name), SQLITE_OPEN_READWRITE | (make ? SQLITE_OPEN_CREATE : 0), patience);
    RequireListOf(folder);
    if (make) LimitToWriters(folder, name);
    // A look may write where it can, to take back what a killed run half wrote: without that nothing can be read.
    if (!make) Execute("PRAGMA query_only=ON", "open");
    CheckVersion(make);
    RequireSound(folder);
    hasCuts_ = database_ != nullptr && HasCutTable();
  } catch (...) {
    sqlite3_close(database_);
    throw;
  }
}

void Manifest::Open(const std::string& path, int flags, std::chrono::milliseconds patience) {
  if (sqlite3_open_v2(path.c_str(), &database_, flags, nullptr) != SQLITE_OK) Fail("open");
  sqlite3_busy_timeout(database_, static_cast<int>(patience.count()));
  // The file may come from another program, which could have left commands of its own in it.
  sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  // EXTRA flushes the folder once more when the journal is gone. Otherwise a power cut could bring the journal back, and
  // the journal would take the last rows away. Each row is looked up once, so a large cache would only cost memory.
  // fullfsync counts on macOS, where fsync leaves the rows in the drive's own memory.
  Execute("PRAGMA synchronous=EXTRA; PRAGMA fullfsync=1; PRAGMA cache_size=-256", "open");
}

// SQLite takes paths alone, and another folder may have come to the path since this one was opened.
void Manifest::RequireListOf(const TargetFolder& folder) const {
  struct stat ours {};
  struct stat opened {};
  const char* path = sqlite3_db_filename(database_, "main");
  if (::fstatat(folder.Fd(), kName.data(), &ours, AT_SYMLINK_NOFOLLOW) == 0 && ::lstat(path, &opened) == 0 &&
      ours.st_ino == opened.st_ino && ours.st_dev == opened.st_dev) {
    return;
  }
  throw Failure(ExitCode::kFailed,
                "The folder of " + Printable(path_) + " was moved while its list was opened; try again.");
}

Manifest::~Manifest() {
  find_.reset();
  ofPicture_.reset();
  insert_.reset();
  forget_.reset();
  sqlite3_close(database_);
}

Manifest::Reading::Reading(Manifest& manifest) : manifest_(manifest) {
  if (manifest_.database_ != nullptr) manifest_.Execute("BEGIN");
}

Manifest::Reading::~Reading() {
  if (manifest_.database_ != nullptr) sqlite3_exec(manifest_.database_, "COMMIT", nullptr, nullptr, nullptr);
}

Manifest::Statement& Manifest::Prepared(std::unique_ptr<Statement>& statement, const char* sql) {
  if (!statement) statement = std::make_unique<Statement>(*this, sql);
  return *statement;
}

void Manifest::CheckVersion(bool make) {
  const long long found = [this] {
    Statement version(*this, "PRAGMA user_version");
    version.Step("read");
    return version.Number(0);
  }();
  if (found > kVersion) {
    throw Failure(ExitCode::kFailed, "The list of fetched files " + Printable(path_) +
                                         " was made by a newer version of this tool; use that one.");
  }
  if (found < 0) {
    throw Failure(ExitCode::kFailed, "The list of fetched files " + Printable(path_) +
                                         " was made by another program; move it away, and files that are here are "
                                         "recognised by their content.");
  }
  if (found != 0) return;
  if (!make) {
    sqlite3_close(std::exchange(database_, nullptr));  // without a table there is nothing to look at
  } else if (sqlite3_db_readonly(database_, "main") == 0) {
    Transact([this] { Execute(kSchema); });
  }
}

// A damaged page can read as an empty one, and then all that it listed would be fetched once more.
void Manifest::RequireSound(const TargetFolder& folder) {
  if (database_ == nullptr) return;
  const Reading reading(*this);  // nobody writes meanwhile
  const std::string what = WhatIsDamaged(folder);
  if (what.empty()) return;
  throw Damaged(path_, what);
}

// Empty for a sound list. SQLite takes a page that ends early for one that ends in zeros.
std::string Manifest::WhatIsDamaged(const TargetFolder& folder) {
  Statement check(*this, "PRAGMA integrity_check(1)");
  const std::string found = check.Step("read") ? check.Text(0) : "";
  Statement pages(*this, "SELECT page_count * page_size FROM pragma_page_count, pragma_page_size");
  pages.Step("read");
  struct stat file {};
  const bool isCut = ::fstatat(folder.Fd(), kName.data(), &file, AT_SYMLINK_NOFOLLOW) != 0 ||
                     file.st_size < static_cast<off_t>(pages.Number(0));
  if (isCut) return "its end is missing";
  return found == "ok" ? "" : found;
}

void Manifest::Execute(const char* sql, const std::string& doing) {
  if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(doing);
}

// All of a change or nothing of it.
void Manifest::Transact(const std::function<void()>& change) {
  Execute("BEGIN IMMEDIATE");
  try {
    change();
    const int result = UntilDone([this] {
      return FileCalls::Current().Commit([this] {
        Execute("COMMIT");
        return 0;
      });
    });
    if (result != 0) throw SystemFailure("write the list of fetched files " + Printable(path_), errno);
  } catch (...) {
    sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void Manifest::Fail(const std::string& doing) const {
  const std::string list = "the list of fetched files " + Printable(path_);
  const int code = database_ == nullptr ? SQLITE_NOMEM : sqlite3_errcode(database_) & 0xff;
  if (code == SQLITE_BUSY || code == SQLITE_LOCKED) {
    throw Failure(ExitCode::kBusy, "Cannot " + doing + " " + list +
                                       ": another program has locked it; try again when that program has finished.");
  }
  const int error = SystemErrorOf(code, database_, path_);
  if (error != 0) throw SystemFailure(doing + " " + list, error);
  const std::string why = database_ == nullptr ? "no memory" : sqlite3_errmsg(database_);
  if (code == SQLITE_CORRUPT || code == SQLITE_NOTADB) throw Damaged(path_, why);
  throw Failure(ExitCode::kFailed, "Cannot " + doing + " " + list + ": " + why +
                                       "; if it is damaged, move it away, and files that are here are recognised by "
                                       "their content.");
}

std::optional<ManifestRow> Manifest::Find(const ManifestKey& key) {
  if (database_ == nullptr) return std::nullopt;
  const std::scoped_lock lock(mutex_);
  const Use query(Prepared(find_,
                           "SELECT path, sha1, size, verified, deleted FROM files "
                           "WHERE serial=?1 AND picture=?2 AND type=?3 AND fingerprint=?4"));
  if (!query->Bind(key).Step("read")) return std::nullopt;
  return ManifestRow{key,
                     query->Text(0),
                     query->Text(1),
                     static_cast<unsigned long long>(query->Number(2)),
                     query->Number(3) != 0,
                     query->Number(4) != 0};
}

std::vector<ManifestRow> Manifest::RowsOf(const std::string& serial, const std::string& picture) {
  std::vector<ManifestRow> rows;
  if (database_ == nullptr) return rows;
  const std::scoped_lock lock(mutex_);
  const Use query(Prepared(ofPicture_,
                           "SELECT type, fingerprint, path, sha1, size, verified, deleted FROM files "
                           "WHERE serial=?1 AND picture=?2"));
  query->Bind(serial).Bind(picture);
  while (query->Step("read")) {
    rows.push_back({{serial, picture, static_cast<int>(query->Number(0)), query->Text(1)},
                    query->Text(2),
                    query->Text(3),
                    static_cast<unsigned long long>(query->Number(4)),
                    query->Number(5) != 0,
                    query->Number(6) != 0});
  }
  return rows;
}

void Manifest::Insert(const ManifestRow& row) {
  const Use insert(Prepared(insert_,
                            "INSERT OR REPLACE INTO files(serial, picture, type, fingerprint, path, sha1, size, "
                            "verified, deleted) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)"));
  insert->Bind(row.key).Bind(row.path).Bind(row.sha1).Bind(static_cast<long long>(row.size));
  insert->Bind(row.verified ? 1LL : 0LL).Bind(row.deleted ? 1LL : 0LL).Step("write");
}

void Manifest::Record(const std::vector<ManifestRow>& rows) {
  if (rows.empty()) return;
  const std::scoped_lock lock(mutex_);
  Transact([&] {
    for (const ManifestRow& row : rows) {
      Insert(row);
      ForgetCut(row.key);
    }
  });
}

void Manifest::ForgetCut(const ManifestKey& key) {
  if (!hasCuts_) return;
  const Use forget(Prepared(forget_, "DELETE FROM cut WHERE serial=?1 AND picture=?2 AND type=?3 AND fingerprint=?4"));
  forget->Bind(key).Step("write");
}

void Manifest::RecordCut(const CutRow& row) {
  const std::scoped_lock lock(mutex_);
  Transact([&] {
    Execute(kCutSchema);
    Statement insert(*this,
                     "INSERT OR REPLACE INTO cut(serial, picture, type, fingerprint, size, path, compared, sha1) "
                     "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
    insert.Bind(row.key).Bind(static_cast<long long>(row.size)).Bind(row.path);
    insert.Bind(static_cast<long long>(row.compared)).Bind(row.sha1).Step("write");
  });
  hasCuts_ = true;
}

void Manifest::ForgetCuts(const std::vector<ManifestKey>& keys) {
  if (keys.empty() || !hasCuts_) return;
  const std::scoped_lock lock(mutex_);
  Transact([&] {
    for (const ManifestKey& key : keys) ForgetCut(key);
  });
}

std::vector<CutRow> Manifest::Cuts() {
  std::vector<CutRow> rows;
  const std::scoped_lock lock(mutex_);
  if (!hasCuts_) return rows;
  Statement query(*this, "SELECT serial, picture, type, fingerprint, size, path, compared, sha1 FROM cut");
  while (query.Step("read")) {
    rows.push_back({{query.Text(0), query.Text(1), static_cast<int>(query.Number(2)), query.Text(3)},
                    static_cast<unsigned long long>(query.Number(4)),
                    query.Text(5),
                    static_cast<unsigned long long>(query.Number(6)),
                    query.Text(7)});
  }
  return rows;
}

bool Manifest::HasCutTable() {
  Statement query(*this, "SELECT 1 FROM sqlite_schema WHERE type='table' AND name='cut'");
  return query.Step("read");
}

void Manifest::MarkDeleted(const std::vector<ManifestKey>& keys) {
  Update("UPDATE files SET deleted=1 WHERE serial=?1 AND picture=?2 AND type=?3 AND fingerprint=?4", keys);
}

void Manifest::LetGo(const std::vector<ManifestKey>& keys) {
  Update("UPDATE files SET path='', deleted=0 WHERE serial=?1 AND picture=?2 AND type=?3 AND fingerprint=?4", keys);
}

void Manifest::Update(const char* change, const std::vector<ManifestKey>& keys) {
  if (keys.empty()) return;
  const std::scoped_lock lock(mutex_);
  Transact([&] {
    Statement update(*this, change);
    for (const ManifestKey& key : keys) {
      update.Bind(key).Step("write");
      update.Reset();
    }
  });
}

}  // namespace apps
