// Finds out when pictures were taken: their JPEG files say it, else the catalogue, as in `kelva sync`.
#include <cerrno>
#include <exception>
#include <span>
#include <utility>

#include "apps/camera/PictureStart.h"
#include "apps/commandline/Failure.h"
#include "apps/import/TakenTime.h"
#include "apps/mount/Errors.h"
#include "apps/mount/FileSystem.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// No folder of pictures has more: their numbers have four digits. Bounds what a listing with attributes costs.
constexpr std::size_t kMostLookedInto = 9'999;
// The camera waits meanwhile.
constexpr std::chrono::milliseconds kPatience{500};

}  // namespace

// 0 when nobody knows; nothing while its JPEG file was not looked into. Under the lock.
std::optional<std::time_t> FileSystem::TimeOf(const std::string& path, const ShownFolder& folder,
                                              const ShownEntry& entry) const {
  const bool isOfPictures = looksIntoPictures_ && base::Lower(path).starts_with("i:\\dcim\\");
  if (!isOfPictures || folder.Jpegs() == 0 || folder.Jpegs() > kMostLookedInto) return entry.changed;
  const ShownEntry* jpeg = folder.JpegOf(entry);
  if (jpeg == nullptr || jpeg->size == 0) return entry.changed;
  const auto time = exifTimes_.Find(path + "\\" + jpeg->name, jpeg->size);
  if (!time) return std::nullopt;
  return *time != 0 ? *time : entry.changed;
}

void FileSystem::Found(Pending::Ticket ticket, std::uint64_t parent, const Folder& folder, const ShownEntry& entry) {
  const auto timeOf = [this, parent, folder, &entry] {
    const std::scoped_lock lock(mutex_);
    return TimeOf(nodes_.PathOf(parent), *folder, entry);
  };
  if (const auto time = timeOf()) return Told(ticket, parent, entry, *time);
  Put(ticket, 0, 0, [this, ticket, parent, folder, &entry, timeOf] {
    const std::uint64_t jpeg = LookInto(parent, *folder->JpegOf(entry));
    Told(ticket, parent, entry, timeOf().value_or(entry.changed));
    // Now, because the kernel may know it by now, and the bytes that were read serve its next reader.
    Forget(jpeg, 1);
  });
}

// Returns the file's number, which the caller forgets. A file that cannot be read stays unknown. The camera's thread.
std::uint64_t FileSystem::LookInto(std::uint64_t parent, const ShownEntry& jpeg) {
  std::uint64_t number = 0;
  std::string path;
  {
    const std::scoped_lock lock(mutex_);
    number = Tell(parent, jpeg, jpeg.changed);
    path = nodes_.PathOf(number);
    if (uploads_.count(number) != 0) return number;  // its old bytes are gone
  }
  try {
    const std::time_t time = ExifTimeIn(*PieceNow(number, 0));
    const std::scoped_lock lock(mutex_);
    if (looksIntoPictures_) exifTimes_.Keep(path, jpeg.size, time);
  } catch (const std::exception& error) {
    if (const int what = ErrnoOf(error); what == ENODEV || what == EBUSY) {
      Forget(number, 1);
      throw;
    }
  }
  return number;
}

std::time_t FileSystem::ExifTimeIn(const FileBytes& start) {
  static_assert(Pieces::kSize >= PictureStart::kMost, "the first piece has all that is looked into");
  TimeQuestions questions;
  questions.Add({start.Data(), start.Size()});
  try {
    if (!thumbnailer_) thumbnailer_.emplace();
    const auto answer = thumbnailer_->Times(questions, context_->stop, kPatience).front();
    const auto taken = answer ? ParseTaken(*answer) : std::nullopt;
    return taken ? MomentHere(*taken) : 0;
  } catch (const Failure& failure) {
    {
      const std::scoped_lock lock(mutex_);
      looksIntoPictures_ = false;
    }
    events_.noDates(failure.what());
    return 0;
  }
}

}  // namespace apps
