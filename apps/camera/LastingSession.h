#ifndef KELVA_APPS_CAMERA_LASTING_SESSION_H_
#define KELVA_APPS_CAMERA_LASTING_SESSION_H_

#include <chrono>
#include <optional>
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// A session that survives restarts of its camera. After a restart it finds the same camera again by its serial number,
/// never another camera that was plugged in meanwhile.
class LastingSession {
 public:
  /// Opens the camera that the command line means. Throws as Session does.
  explicit LastingSession(Context& context);

  bool IsOpen() const { return session_.has_value(); }
  /// Call only while the session is open.
  Camera& Device() const { return **session_; }
  const Session& Current() const { return *session_; }
  /// Drops the session: the camera has gone, or is about to go.
  void Drop() { session_.reset(); }

  /// Whether the camera is attached and ready; opens the session when it is not open. Drops a camera that does not
  /// answer.
  bool IsReady();
  /// Asks IsReady five times a second until it is true. Throws Stopped.
  void WaitUntilReady();
  /// Waits, after the camera was told to restart, until it has gone, is not ready, or its count of commands is below
  /// `commands`. Throws Failure when none of this happens within ten seconds. Throws Stopped.
  void WaitUntilGone(int commands);

 private:
  void Open(std::chrono::milliseconds patience);
  bool HasRestarted(int commands);

  Context& context_;
  std::optional<Session> session_;
  std::optional<std::string> serial_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_LASTING_SESSION_H_
