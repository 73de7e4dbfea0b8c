// Opens files of a plan on their camera, and holds their sizes against what is known of them.
#include "apps/import/CameraFiles.h"

#include <optional>
#include <string>

#include "apps/camera/ReadLimit.h"
#include "src/wifi/CameraError.h"

namespace apps {

// Looks into the folder first, since a listing would end the selection.
kelva::FileReader CameraFiles::Open(const SyncItem& item) {
  if (!item.IsPicture()) return OpenOther(item.Other());
  const std::optional<unsigned long long> listed = listed_.SizeOf(item.CameraPath());
  kelva::FileReader reader(camera_, item.Picture(), item.Type());
  if (listed != reader.Size()) {
    CheckSize(item, reader.Size());
    reader.Select();
  }
  return reader;
}

// Its size is a part of what it is known by.
kelva::FileReader CameraFiles::OpenOther(const OtherFile& file) const {
  kelva::FileReader reader(camera_, file.path);
  if (reader.Size() == file.size) return reader;
  throw WronglyAnnounced(file.size, reader.Size());
}

// A SHA-1 says more than a size.
void CameraFiles::CheckSize(const SyncItem& item, unsigned long long announced) {
  constexpr unsigned long long kMostBeyond = 262'144;
  const bool hasKey = announced != 0 && !item.ExpectedSha1().empty();
  const std::optional<bool> agrees = listed_.Agrees(item.CameraPath(), announced);
  if (!agrees && announced == 0) throw CameraError("the catalogue names it, but it is not in its folder");
  if (!agrees && announced > kMostUnlisted) throw WronglyAnnounced(std::nullopt, announced);
  if (agrees.value_or(true) || (hasKey && announced <= listed_.Listed() + kMostBeyond)) return;
  throw WronglyAnnounced(listed_.Listed(), announced);
}

void CameraFiles::CheckUnlikeKey(const SyncItem& item, unsigned long long size) {
  if (listed_.Agrees(item.CameraPath(), size).value_or(true)) return;
  throw CameraError("its key in the catalogue is not its SHA-1, and its folder gives it another size");
}

}  // namespace apps
