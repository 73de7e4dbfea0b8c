// Finds a picture in the list of fetched files, whichever of its files are still on the camera.
#include "apps/import/KnownPicture.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/camera/Picture.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::size_t kIdentityLength = 24;

std::string HexIdentity(const DcfObj& picture) {
  return base::Hex(std::string_view(reinterpret_cast<const char*>(&picture), kIdentityLength));
}

// Fingerprints under which the rows have the file that the key tells: at first the picture's own.
std::vector<std::string> FingerprintsOf(const std::vector<ManifestRow>& rows, const DcfObj& picture) {
  std::vector<std::string> prints{PictureFingerprint(picture)};
  const std::vector<int> types = FileTypes(picture);
  const std::optional<std::string> key = PictureKey(picture);
  if (types.empty() || !key) return prints;
  bool isListed = false;
  for (const ManifestRow& row : rows) {
    if (row.key.type != types.front()) continue;
    isListed = isListed || row.key.fingerprint == prints.front();
    if (row.sha1 == *key && row.key.fingerprint != prints.front()) prints.push_back(row.key.fingerprint);
  }
  if (!isListed && prints.size() > 1) std::swap(prints[0], prints[1]);
  return prints;
}

bool IsSameFile(const ManifestRow& a, const ManifestRow& b) {
  return a.key.type == b.key.type && a.path == b.path && a.sha1 == b.sha1;
}

}  // namespace

ManifestKey KeyOf(const DcfObj& picture, int type, const std::string& serial) {
  return {serial, HexIdentity(picture), type, PictureFingerprint(picture)};
}

bool KnownPicture::IsPlain(const DcfObj& picture) const {
  const std::string own = PictureFingerprint(picture);
  return fingerprint == own && std::all_of(rows.begin(), rows.end(), [&own](const auto& typeAndRow) {
           return typeAndRow.second.key.fingerprint == own;
         });
}

KnownPicture FindPicture(Manifest& manifest, const DcfObj& picture, const std::string& serial) {
  const std::vector<ManifestRow> rows = manifest.RowsOf(serial, HexIdentity(picture));
  const std::vector<std::string> prints = FingerprintsOf(rows, picture);
  KnownPicture known{prints.front(), {}};
  for (const std::string& print : prints) {
    for (const ManifestRow& row : rows) {
      if (row.key.fingerprint == print) known.rows.emplace(row.key.type, row);
    }
  }
  return known;
}

std::set<std::string> StoredTogether(Manifest& manifest, const DcfObj& picture, const std::string& serial,
                                     const std::string& path) {
  std::vector<ManifestRow> rest = manifest.RowsOf(serial, HexIdentity(picture));
  std::vector<ManifestRow> found;
  const auto belongs = [&](const ManifestRow& row) {
    return row.path == path || std::any_of(found.begin(), found.end(), [&row](const ManifestRow& other) {
             return row.key.fingerprint == other.key.fingerprint || IsSameFile(row, other);
           });
  };
  for (auto row = rest.begin(); row != rest.end();) {
    if (belongs(*row)) {
      found.push_back(std::move(*row));
      rest.erase(row);
      row = rest.begin();
    } else {
      ++row;
    }
  }
  std::set<std::string> paths;
  for (ManifestRow& row : found) paths.insert(std::move(row.path));
  return paths;
}

}  // namespace apps
