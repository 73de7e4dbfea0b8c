#ifndef KELVA_APPS_IMPORT_KNOWN_PICTURE_H_
#define KELVA_APPS_IMPORT_KNOWN_PICTURE_H_

#include <map>
#include <set>
#include <string>

#include "apps/import/Manifest.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Identifies a file of a picture in a manifest by what the catalogue says now; see FindPicture.
ManifestKey KeyOf(const DcfObj& picture, int type, const std::string& serial);

/// What a manifest has of a picture.
struct KnownPicture {
  std::string fingerprint;          ///< under which new files of it are recorded
  std::map<int, ManifestRow> rows;  ///< by type, also of files that the camera no longer has

  bool Has(int type) const { return rows.count(type) == 1; }
  /// Whether all of it is what the catalogue says now, so that KeyOf finds it.
  bool IsPlain(const DcfObj& picture) const;
};

/// Looks a picture up, whichever of its files are still on the camera. The catalogue's key is that of a picture's first
/// file, so it changes when that file goes or another comes before it. Rows in which the present first file has the SHA-1
/// that is the present key are of this picture, and so are those of the files that were fetched with it.
KnownPicture FindPicture(Manifest& manifest, const DcfObj& picture, const std::string& serial);

/// Where the files lie that were fetched as one picture with the file at `path`, itself included if the manifest has it.
/// The picture's files may have come and gone on the camera between several runs.
std::set<std::string> StoredTogether(Manifest& manifest, const DcfObj& picture, const std::string& serial,
                                     const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_KNOWN_PICTURE_H_
