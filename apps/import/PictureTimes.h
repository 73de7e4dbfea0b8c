#ifndef KELVA_APPS_IMPORT_PICTURE_TIMES_H_
#define KELVA_APPS_IMPORT_PICTURE_TIMES_H_

#include <cstddef>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "apps/commandline/Stop.h"
#include "apps/import/TakenTime.h"
#include "apps/thumbnails/Thumbnailer.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// When pictures were taken: the EXIF time of their JPEG file, which another process reads (Thumbnailer), else the time of
/// the catalogue. Any thread. A picture is known by its place in memory, so the catalogue stays where it is.
class PictureTimes {
 public:
  /// `program`: the path of kelva-thumbnail, which starts with the first question.
  explicit PictureTimes(std::string program = Thumbnailer::ProgramBeside(Thumbnailer::OwnProgram()))
      : thumbnailer_(std::move(program)) {}

  /// Has the time read in the start (PictureStart) of a picture's JPEG file, many pictures at once; the rest of `jpegFile` is not
  /// looked at. Does nothing for a picture that was asked about before. Returns before the answer, but for every
  /// thirty-second unanswered question.
  void Ask(const DcfObj& picture, std::span<const char> jpegFile);
  bool WasAsked(const DcfObj& picture) const;

  /// Waits for the answer where the picture was asked about. Nothing when neither EXIF nor the catalogue has a time.
  std::optional<TakenTime> Of(const DcfObj& picture);

  /// Why no picture can be asked about any more: a sentence, empty as long as they can. The catalogue then decides.
  std::string Trouble() const;

 private:
  bool Waits(const DcfObj& picture) const;
  void AnswerAll();

  mutable std::mutex mutex_;          // questions, times, trouble
  std::vector<const DcfObj*> asked_;  // whose questions wait
  TimeQuestions questions_;
  std::unordered_map<const DcfObj*, std::optional<TakenTime>> times_;  // of all that were asked about
  std::string trouble_;

  std::mutex answering_;  // the process; taken before the other
  Thumbnailer thumbnailer_;
  TimeQuestions onTheirWay_;
  const Stop never_;  // the process ends with its patience, and a file that is being stored is to be finished
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_PICTURE_TIMES_H_
