#ifndef KELVA_APPS_FILES_STORE_FILE_H_
#define KELVA_APPS_FILES_STORE_FILE_H_

#include <memory>
#include <span>
#include <string>

#include "apps/files/NewFile.h"
#include "apps/files/TargetFolder.h"

namespace apps {

/// `name` with a number before its extension: "IMG_0001.JPG", 2 is "IMG_0001-2.JPG"; 1 is the name itself.
std::string Numbered(const std::string& name, int number);

/// Flushes a file that was written whole, and gives it a name that must be free. Throws Failure when it is not.
void NameNew(const TargetFolder& folder, NewFile& file, const std::string& name);
/// As NameNew, but replaces what has the name.
void NameReplacing(const TargetFolder& folder, NewFile& file, const std::string& name);

/// Stores whole, flushed bytes under a name that must be free. Throws Failure when it is not.
void StoreNew(const TargetFolder& folder, const std::string& name, std::span<const char> bytes,
              Readers readers = Readers::kUsual);

/// Where bytes ended up.
struct Stored {
  std::string name;
  bool wasThere = false;  ///< the same bytes were there under this name already, and nothing was written
};
/// Stores bytes under a name, or where that is taken by something else, under the next free numbered one. In three
/// steps, so that the disk can work on several files at once, and need not write their folder again for each.
class BesideFile {
 public:
  /// Writes the bytes under a temporary name, unless they are there already under the number `first`, one of the `before`
  /// numbers before it, or behind it without a gap. `first` is the number to begin with, `most` how many more are tried, `sha1` the SHA-1 of the bytes; the
  /// folder outlives this object. Throws Failure.
  BesideFile(const TargetFolder& folder, const std::string& name, std::span<const char> bytes, const std::string& sha1,
             int first = 1, int before = kMostBefore, int most = 10'000);
  /// The same with a file that was written already, of `size` bytes; it is removed if they are there already.
  BesideFile(const TargetFolder& folder, const std::string& name, std::unique_ptr<NewFile> written,
             unsigned long long size, const std::string& sha1, int first = 1, int before = kMostBefore,
             int most = 10'000);
  /// A thousand files of one name must not compare each with each.
  static constexpr int kMostBefore = 100;
  /// As NewFile::SetTime; a file that was there keeps its time.
  void SetTime(std::time_t changed);
  /// Waits until the file is on disk. Throws Failure.
  void Flush();
  /// Gives the file its name. The caller flushes the folder. Throws Failure.
  Stored TakeName();

 private:
  BesideFile(const TargetFolder& folder, const std::string& name, int first, int most);
  bool IsThere(int first, int before, unsigned long long size, const std::string& sha1);

  const TargetFolder& folder_;
  std::string name_;
  int number_;
  int last_;
  bool isThere_ = false;
  std::unique_ptr<NewFile> file_;
};

/// All steps at once.
Stored StoreBeside(const TargetFolder& folder, const std::string& name, std::span<const char> bytes,
                   const std::string& sha1);

}  // namespace apps

#endif  // KELVA_APPS_FILES_STORE_FILE_H_
