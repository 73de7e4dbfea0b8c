// The list of fetched files: an SQLite database in the target folder.
#include "apps/import/Manifest.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"

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

bool IsLink(const TargetFolder& folder, const std::string& name) {
  struct stat status {};
  return ::fstatat(folder.Fd(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
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

Manifest::Manifest(const TargetFolder& folder, bool make) : path_(folder.PathOf(std::string(kName))) {
  const std::string name(kName);
  if (IsLink(folder, name)) {
    throw Failure(ExitCode::kFailed, Printable(path_) + " is a symbolic link and is not followed; remove it.");
  }
  if (!make && !folder.Has(name)) return;
  // Opened through the folder's descriptor, so that nobody can put another folder in its place meanwhile.
  const std::string opened = "/proc/self/fd/" + std::to_string(folder.Fd()) + "/" + name;
  const int flags = make ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
  try {
    if (sqlite3_open_v2(opened.c_str(), &database_, flags, nullptr) != SQLITE_OK) Fail("open");
    sqlite3_busy_timeout(database_, 5000);
    // Each row is looked up once, so a large cache would only cost memory.
    Execute("PRAGMA cache_size=-256");
    Prepare();
  } catch (...) {
    sqlite3_close(database_);
    throw;
  }
}

Manifest::~Manifest() {
  find_.reset();
  insert_.reset();
  sqlite3_close(database_);
}

Manifest::Manifest(Manifest&& other) noexcept
    : path_(std::move(other.path_)), database_(std::exchange(other.database_, nullptr)) {}

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

void Manifest::Prepare() {
  const long long found = [this] {
    Statement version(*this, "PRAGMA user_version");
    version.Step("read");
    return version.Number(0);
  }();
  if (found > kVersion) {
    throw Failure(ExitCode::kFailed, "The list of fetched files " + Printable(path_) +
                                         " was made by a newer version of this tool; use that one.");
  }
  if (found == 0 && sqlite3_db_readonly(database_, "main") == 0) Execute(kSchema);
}

void Manifest::Execute(const char* sql) {
  if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail("write");
}

void Manifest::Fail(const std::string& doing) const {
  const std::string why = database_ == nullptr ? "no memory" : sqlite3_errmsg(database_);
  throw Failure(ExitCode::kFailed,
                "Cannot " + doing + " the list of fetched files " + Printable(path_) + ": " + why +
                    "; if it is damaged, move it away, and files that are here are recognised by "
                    "their content.",
                database_ == nullptr ? 0 : sqlite3_system_errno(database_));
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
  Execute("BEGIN IMMEDIATE");
  try {
    for (const ManifestRow& row : rows) Insert(row);
    Execute("COMMIT");
  } catch (...) {
    sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void Manifest::MarkDeleted(const ManifestKey& key) {
  const std::scoped_lock lock(mutex_);
  Statement update(*this, "UPDATE files SET deleted=1 WHERE serial=?1 AND picture=?2 AND type=?3 AND fingerprint=?4");
  update.Bind(key).Step("write");
}

}  // namespace apps
