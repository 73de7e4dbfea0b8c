#ifndef KELVA_APPS_CAMERA_TURNS_H_
#define KELVA_APPS_CAMERA_TURNS_H_

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "apps/camera/Attached.h"
#include "apps/camera/WaitingLine.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "src/wifi/FileReader.h"

namespace apps {

inline constexpr Option kWaitBusyOption = {
    "wait-busy", 0, "SECONDS",
    "Wait this long for a camera that another program holds; the default is 10, and 0 does not wait."};

/// How long a command waits for a camera that another program holds: --wait-busy.
std::chrono::milliseconds WaitBusy(const Context& context);

/// One program's turns with a camera that several share. A camera has one session at a time, so long work gives it up
/// between two sequences of commands and waits for its next turn. A Session has this; work reaches it with the
/// functions below. Belongs to one thread.
class Turns {
 public:
  using Clock = std::chrono::steady_clock;

  /// How long a turn lasts at least.
  struct Length {
    std::chrono::milliseconds awaited{250};  ///< when somebody is seen to wait
    std::chrono::milliseconds alone{1000};
  };

  /// Opens the camera, which is one that FindAttached gave, and waits `patience` for it when another program holds it. A camera that was plugged in again
  /// meanwhile is opened in place of the one that went. Throws Stopped; Failure when it has gone or stays held.
  Turns(Context& context, AttachedCamera chosen, std::chrono::milliseconds patience);
  Turns(Context& context, AttachedCamera chosen, std::chrono::milliseconds patience, Length length);
  /// Closes it.
  ~Turns();
  Turns(const Turns&) = delete;
  Turns& operator=(const Turns&) = delete;

  const AttachedCamera& Attached() const { return chosen_; }

  /// Gives the camera up and waits for the next turn, if this turn has lasted long enough. Otherwise costs one look at the clock. True when the camera was given up: a selection that was
  /// made before is over, and another program may have changed what is on the camera. Throws as the constructor does; the
  /// same attached camera must answer.
  bool LetOthers();
  /// The same in the middle of a file; takes it up again where it was. `last` are the bytes before the reader's
  /// position, as far as the caller has them: they are read again, and must not have changed. A file that the camera
  /// sends forward only is not interrupted; who waits is told so. Throws also what the reader throws, and CameraError for a
  /// file that changed.
  void LetOthers(kelva::FileReader& reader, std::span<const char> last);
  /// Gives the camera up while `wait` waits for something else, such as a person's answer, and takes it back afterwards
  /// as LetOthers does, or within `patience`. When `wait` throws, or the camera cannot be had, it stays given up.
  void Without(const std::function<void()>& wait, std::optional<std::chrono::milliseconds> patience = std::nullopt);
  /// Tells those who wait that this turn may last long, until the next LetOthers that gives the camera up.
  void HoldForLong();

 private:
  struct Wait;

  bool IsOver();
  void Open(std::chrono::milliseconds patience);
  void AwaitTurn(std::chrono::milliseconds patience);
  void LookAround(Wait& wait);
  void FindAgain();
  void Tell(Wait& wait);
  void MakeLine();
  Failure StaysHeld(const std::string& holders) const;
  std::string Name() const;

  Context& context_;
  const Length length_;
  Turns* const outer_;
  AttachedCamera chosen_;
  WaitingLine line_;
  bool hasLine_ = false;
  bool wasOpen_ = false;
  Clock::time_point since_;  // when this turn began
};

/// Long work calls these between two sequences of commands, and between two pieces of a file. They do nothing without an
/// open camera.
bool LetOthers(Context& context);
void LetOthers(Context& context, kelva::FileReader& reader, std::span<const char> last);
void WithoutCamera(Context& context, const std::function<void()>& wait,
                   std::optional<std::chrono::milliseconds> patience = std::nullopt);
void HoldForLong(Context& context);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_TURNS_H_
