#ifndef KELVA_APPS_KELVA_SHEET_BESIDE_H_
#define KELVA_APPS_KELVA_SHEET_BESIDE_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"
#include "apps/import/Plan.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// The fetched files that are in a sheet's folder or below it. Looks at the place that the list of `kelva sync` names,
/// then at the place that `kelva sync` uses without a pattern, then in the folder itself, where `kelva get` leaves
/// files.
class Beside {
 public:
  /// The folder and its manifest outlive this object.
  Beside(const TargetFolder& folder, Manifest& manifest, std::string serial, const std::vector<DcfObj>& catalogue);

  /// Where a file of a picture is, from the folder; empty when it is not here. A file that only has the right name
  /// counts when it also has the size that the camera lists.
  std::string Find(const DcfObj& picture, int type, std::optional<unsigned long long> size);

  /// The content of a file as `kelva sync` fetched it, when it is here and its SHA-1 is still the same: then nothing
  /// has to be read from the camera.
  std::optional<std::vector<char>> Read(const DcfObj& picture, int type);

 private:
  std::optional<ManifestRow> Known(const DcfObj& picture, int type);
  bool IsHere(const std::string& path, unsigned long long size) const;

  const TargetFolder& folder_;
  Manifest& manifest_;
  std::string serial_;
  Pattern pattern_{Pattern::kDefault};
  std::map<std::string, int> stems_;  // how many pictures have the name, over all folders
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_BESIDE_H_
