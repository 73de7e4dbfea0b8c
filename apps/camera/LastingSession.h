#ifndef KELVA_APPS_CAMERA_LASTING_SESSION_H_
#define KELVA_APPS_CAMERA_LASTING_SESSION_H_

#include <optional>
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// A session over restarts of its camera: after each one it is that camera again, by its serial number, and never
/// another one that was plugged in meanwhile.
class LastingSession {
 public:
  /// Opens the camera that the command line means. Throws as Session does.
  explicit LastingSession(Context& context);

  bool IsOpen() const { return session_.has_value(); }
  /// Only while it is open.
  Camera& Device() const { return **session_; }
  const Session& Current() const { return *session_; }
  /// The camera has gone, or is about to.
  void Drop() { session_.reset(); }

  /// Whether the camera is there and ready; opens it again if need be. A camera that does not answer is dropped.
  bool IsReady();
  /// Asks five times a second until it is. Throws Stopped.
  void WaitUntilReady();
  /// After the camera was told to restart: until it went away, was not ready, or counts its commands anew from below
  /// `commands`. Throws Failure when nothing of this happened for ten seconds, and Stopped.
  void WaitUntilGone(int commands);

 private:
  bool HasRestarted(int commands);

  Context& context_;
  std::optional<Session> session_;
  std::optional<std::string> serial_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_LASTING_SESSION_H_
