#ifndef KELVA_APPS_THUMBNAILS_THUMBNAILER_H_
#define KELVA_APPS_THUMBNAILS_THUMBNAILER_H_

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/commandline/Stop.h"
#include "apps/decoder/Answer.h"
#include "base/FileDescriptor.h"

namespace apps {

/// Questions for the times of pictures, in the form in which they are sent: one call for all of them.
class TimeQuestions {
 public:
  /// `start`: how a picture's JPEG file begins; its first 64 KiB hold the EXIF part.
  void Add(std::span<const char> start);
  std::size_t Count() const { return ends_.size(); }
  /// The questions from here on.
  std::span<const char> From(std::size_t index) const;
  /// Keeps the memory for the next ones.
  void Clear();

 private:
  std::vector<char> bytes_;
  std::vector<std::size_t> ends_;
};

/// Has pictures decoded by another process, kelva-thumbnail, which has no rights: whatever a picture does to its decoder,
/// it can do no more than to be drawn wrongly. The process is started for the first picture, draws many, and is replaced
/// when it ends. One thread.
class Thumbnailer {
 public:
  /// `program`: the path of kelva-thumbnail.
  explicit Thumbnailer(std::string program = ProgramBeside(OwnProgram())) : program_(std::move(program)) {}
  ~Thumbnailer() { Reap(); }
  Thumbnailer(const Thumbnailer&) = delete;
  Thumbnailer& operator=(const Thumbnailer&) = delete;

  /// What the process makes of a JPEG file; a process that ends or is silent for `patience` counts as a reason. Throws
  /// Stopped, and Failure when the program cannot be started or cannot be confined: then no picture can be drawn.
  DrawingOrReason Draw(std::span<const char> jpegFile, const Stop& stop,
                       std::chrono::milliseconds patience = std::chrono::seconds(60));

  /// As Draw, to be shown large (kLargeSide).
  DrawingOrReason DrawLarge(std::span<const char> jpegFile, const Stop& stop,
                            std::chrono::milliseconds patience = std::chrono::seconds(60));

  /// As Draw, for a JPEG file of which only the start is there: draws its EXIF thumbnail. A reason where it has none.
  DrawingOrReason DrawStart(std::span<const char> start, const Stop& stop,
                            std::chrono::milliseconds patience = std::chrono::seconds(60));

  /// When each picture was taken, "2026-03-14 15:09:26". One exchange for all of them, and no pixel is decoded. Nothing for
  /// a picture without a time, and for one that ends the process. Throws as Draw, and Failure when the process was silent
  /// three times.
  std::vector<std::optional<std::string>> Times(const TimeQuestions& questions, const Stop& stop,
                                                std::chrono::milliseconds patience = std::chrono::seconds(10));

  /// The process that draws; 0 when there is none. For tests.
  pid_t Process() const { return process_; }

  /// Where kelva-thumbnail is for a program at this path: in the same folder, where the build or the installation has it.
  static std::string ProgramBeside(const std::string& program);
  static std::string OwnProgram();

 private:
  class Exchange;
  DrawingOrReason Ask(std::uint64_t size, std::span<const char> bytes, const Stop& stop,
                      std::chrono::milliseconds patience);
  void Start(const Stop& stop, std::chrono::milliseconds patience);
  void Spawn();
  /// Ends a process that has not become ready; `silent` when it did not even end. Throws.
  [[noreturn]] void FailToStart(bool silent);
  /// Ends the process; its status as waitpid has it.
  int Reap();

  std::string program_;
  pid_t process_ = 0;
  int drawn_ = 0;
  int silences_ = 0;
  base::FileDescriptor socket_;
};

}  // namespace apps

#endif  // KELVA_APPS_THUMBNAILS_THUMBNAILER_H_
