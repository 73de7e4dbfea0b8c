#ifndef KELVA_APPS_IMPORT_MANIFEST_H_
#define KELVA_APPS_IMPORT_MANIFEST_H_

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/files/TargetFolder.h"

struct sqlite3;

namespace apps {

/// Identifies one file of one camera, in this run and in later ones.
struct ManifestKey {
  std::string serial;
  std::string picture;      ///< the picture's identity, 24 bytes in hexadecimal
  int type = 0;             ///< 1 to 4
  std::string fingerprint;  ///< tells it from an earlier picture of the same name

  bool operator==(const ManifestKey&) const = default;
};

/// One file that was fetched.
struct ManifestRow {
  ManifestKey key;
  std::string path;  ///< below the target folder, as it was stored; empty of a file that was let go
  std::string sha1;
  unsigned long long size = 0;
  bool verified = false;  ///< read from the camera twice, equal
  bool deleted = false;   ///< on the camera, after it was verified

  /// It was fetched, and its user threw it away.
  bool IsLetGo() const { return path.empty(); }
  /// It may be deleted on the camera though it is not here: once. A file that came back to the camera since then is the only one.
  bool MayGo() const { return IsLetGo() && !deleted; }
};

/// A file whose transfer was cut. A part of it is here, under a temporary name.
struct CutRow {
  ManifestKey key;
  unsigned long long size = 0;      ///< of the whole file
  std::string path;                 ///< of the part, below the target folder
  unsigned long long compared = 0;  ///< of a part that is whole: how much came a second time, and equal
  std::string sha1 = "";            ///< of a part that is whole
};

/// The list of what was fetched into a folder, in the folder itself (.kelva-manifest.sqlite). It decides what is new,
/// so a file that was renamed or moved here is not fetched again. Any thread.
class Manifest {
 public:
  static constexpr std::string_view kName = ".kelva-manifest.sqlite";

  /// The empty manifest of a folder that does not exist yet.
  Manifest();
  /// Opens the folder's manifest. A missing one, or one that a killed run left without its table, is made if `make`
  /// is set and otherwise counts as empty. Waits up to `patience` while another program has locked it. Throws Failure
  /// when it cannot be read, is damaged in any of its pages, or was made by a newer version or another program. What another program left in it besides
  /// its tables (triggers, views) has no effect. Without `make` nothing is written, except that what a killed run wrote
  /// half is taken back.
  Manifest(const TargetFolder& folder, bool make, std::chrono::milliseconds patience = std::chrono::seconds(5));
  ~Manifest();
  Manifest(const Manifest&) = delete;
  Manifest& operator=(const Manifest&) = delete;

  std::optional<ManifestRow> Find(const ManifestKey& key);
  /// All rows of pictures with this identity: of one picture, and of others that had its name before.
  std::vector<ManifestRow> RowsOf(const std::string& serial, const std::string& picture);
  /// Adds rows, or replaces those of the same keys, all or none. They are on disk when this returns.
  void Record(const std::vector<ManifestRow>& rows);
  /// As Record; a file that is recorded is no longer cut.
  void RecordCut(const CutRow& row);
  void ForgetCuts(const std::vector<ManifestKey>& keys);
  std::vector<CutRow> Cuts();
  /// As Record.
  void MarkDeleted(const std::vector<ManifestKey>& keys);
  /// As Record: forgets where files lie, and that they were deleted on the camera.
  void LetGo(const std::vector<ManifestKey>& keys);

  /// While it lives, Find and RowsOf look at one state of the list, which is faster for many. Nothing is recorded meanwhile.
  class Reading {
   public:
    explicit Reading(Manifest& manifest);
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

   private:
    Manifest& manifest_;
  };

 private:
  class Statement;
  void Open(const std::string& path, int flags, std::chrono::milliseconds patience);
  void RequireListOf(const TargetFolder& folder) const;
  void Execute(const char* sql, const std::string& doing = "write");
  void Transact(const std::function<void()>& change);
  void CheckVersion(bool make);
  void RequireSound(const TargetFolder& folder);
  std::string WhatIsDamaged(const TargetFolder& folder);
  bool HasCutTable();
  void Insert(const ManifestRow& row);
  void ForgetCut(const ManifestKey& key);
  void Update(const char* change, const std::vector<ManifestKey>& keys);
  [[noreturn]] void Fail(const std::string& doing) const;

  /// The statement, prepared at its first use.
  Statement& Prepared(std::unique_ptr<Statement>& statement, const char* sql);

  std::string path_;
  sqlite3* database_ = nullptr;
  std::unique_ptr<Statement> find_;
  std::unique_ptr<Statement> ofPicture_;
  std::unique_ptr<Statement> insert_;
  std::unique_ptr<Statement> forget_;
  std::mutex mutex_;
  std::atomic<bool> hasCuts_ = false;  // the table of cut files is there
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_MANIFEST_H_
