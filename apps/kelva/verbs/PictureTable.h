#ifndef KELVA_APPS_KELVA_VERBS_PICTURE_TABLE_H_
#define KELVA_APPS_KELVA_VERBS_PICTURE_TABLE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Stop.h"

namespace apps {

/// What `kelva pictures` shows of the catalogue: pictures with the sizes of their files, and totals. Keeps a few bytes for
/// each file beside the catalogue's records.
class PictureTable {
 public:
  /// Asks the camera for the listing of each folder. Throws as Stop::Check does.
  PictureTable(std::vector<DcfObj> pictures, Camera& camera, const Stop& stop);

  /// As an array; refers to this.
  Json List() const;
  /// The members that stand beside the array: files, bytes, unlisted.
  Json Totals() const;
  /// As lines, with a heading and a last line of totals. Throws Failure as Output does.
  void Print(Output& out) const;

 private:
  template <typename Take>
  void ForEach(const Take& take) const;
  std::string TotalsInWords() const;

  const std::vector<DcfObj> pictures_;
  std::vector<std::uint64_t> sizes_;  // of the files of all pictures, in order
  std::uint64_t bytes_ = 0;
  std::uint64_t unlisted_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_PICTURE_TABLE_H_
