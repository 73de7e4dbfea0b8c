// Reads the starts of pictures for the times in them.
#include "apps/import/AskTimes.h"

#include <cstddef>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureStart.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Progress.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// Nothing for a file that cannot be read.
std::vector<char> StartOf(Context& context, const boost::shared_ptr<Camera>& camera, const DcfObj& picture) {
  context.Doing("read " + ShownPath(PicturePath(picture, kFirstFileType)));
  try {
    return ReadStart(camera, picture).bytes;
  } catch (const CameraError& error) {
    if (EndsAll(Explain(error, context).code)) throw;
    return {};  // whoever fetches the file reports it
  }
}

}  // namespace

std::size_t AskTime(Context& context, const boost::shared_ptr<Camera>& camera, const DcfObj& picture,
                    PictureTimes& times) {
  if (picture.hasJpg == 0 || times.WasAsked(picture)) return 0;
  const std::vector<char> start = StartOf(context, camera, picture);
  times.Ask(picture, start);
  return start.size();
}

void AskTimes(Context& context, const boost::shared_ptr<Camera>& camera, const std::vector<const DcfObj*>& pictures,
              PictureTimes& times) {
  Progress progress(context.reporter, context.stop, "", 0);
  progress.Phase("dates");
  unsigned long long done = 0;
  unsigned long long bytes = 0;
  for (const DcfObj* picture : pictures) {
    context.stop.Check();
    LetOthers(context);
    progress.Name(PictureStem(*picture));
    progress.Files(done, pictures.size());
    progress.At(bytes);
    bytes += AskTime(context, camera, *picture, times);
    ++done;
  }
  progress.Clear();
  if (done == 0) return;
  context.reporter.Note(
      "Read up to 64 KiB of " +
      (done == 1 ? "one picture for its date." : "each of " + std::to_string(done) + " pictures for their dates."));
}

void LearnTime(PictureTimes* times, const SyncItem& item, std::span<const char> start) {
  if (times != nullptr && item.Type() == kFirstFileType) times->Ask(item.Picture(), start);
}

void LearnTimeOfPart(PictureTimes* times, const SyncItem& item, kelva::FileReader& reader) {
  if (times == nullptr || item.Type() != kFirstFileType) return;
  std::vector<char> start(65'536);
  try {
    LearnTime(times, item, std::span(start).first(reader.Read(0, start)));
  } catch (const CameraError&) {
    // The file is whole, and keeps the time of its fetching.
  }
}

PlanTimes TimesForNames(Context& context, const boost::shared_ptr<Camera>& camera, PictureTimes& times) {
  return {[&](const std::vector<const DcfObj*>& pictures) { AskTimes(context, camera, pictures, times); },
          [&](const DcfObj& picture) { return times.Of(picture); }};
}

void NoteTrouble(Context& context, const PictureTimes& times) {
  const std::string trouble = times.Trouble();
  if (trouble.empty()) return;
  context.reporter.Note(trouble + " Dates are those of the catalogue, where it has them.");
}

}  // namespace apps
