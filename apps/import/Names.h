#ifndef KELVA_APPS_IMPORT_NAMES_H_
#define KELVA_APPS_IMPORT_NAMES_H_

#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "apps/files/TargetFolder.h"
#include "apps/import/Pattern.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Chooses the number in the names of a picture's files: one for all of them. Programs pair files by their names, so a
/// RAW must never come to lie beside another picture's JPG. Looks at names, and for pictures with a key at one file; what
/// else content tells is NumbersHere's. The time for one picture does not grow with their number,
/// however many share a name.
class Names {
 public:
  /// `folder`: null while the target does not exist. `timeOf` says when a picture was taken; a pattern without a time
  /// does not ask. Both outlive this.
  Names(const TargetFolder* folder, const Pattern& pattern, std::string serial, TimeOf timeOf = CatalogueTaken)
      : folder_(folder), pattern_(pattern), serial_(std::move(serial)), timeOf_(std::move(timeOf)) {}

  /// Where files of a picture were stored, by type.
  using Stored = std::map<int, std::string>;

  /// Numbers for a picture; 1 is the name without a number.
  struct Numbers {
    /// All four names are free, or bear the picture's own files, and no other picture of this run has it.
    int free = 1;
    int maybe = 0;         ///< bears a file of the picture, and other files: only their content tells; 0 for none
    bool isByKey = false;  ///< that file is as the key says
    int before = 0;  ///< so many numbers from 1 on were taken: the picture's files may be there, and the list was lost

    /// What is expected.
    int Likely() const { return isByKey ? maybe : free; }
  };
  /// The free number is that of the first of the picture's `stored` files if it can be, else the smallest.
  Numbers NumbersFor(const DcfObj& picture, const Stored& stored = {});

 private:
  /// Pictures that share a name.
  struct Group {
    int next = 1;                               ///< every smaller number is taken, here or by a picture
    int before = 0;                             ///< as in Numbers
    std::unordered_map<std::string, int> here;  ///< numbers of files that are here, by SHA-1
  };

  Group& GroupOf(const DcfObj& picture);
  bool Claim(const DcfObj& picture, int number);
  bool IsFree(const DcfObj& picture, int number, const Stored& own = {}) const;
  std::string Sha1Of(const DcfObj& picture, int number) const;
  bool IsThere(const std::string& path) const;
  std::string Path(const DcfObj& picture, int type, int number) const;

  const TargetFolder* folder_;
  const Pattern& pattern_;
  std::string serial_;
  TimeOf timeOf_;
  // By hashes of names, to save memory: a collision only costs an unneeded number.
  std::unordered_map<std::size_t, Group> groups_;
  std::unordered_set<std::size_t> taken_;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_NAMES_H_
