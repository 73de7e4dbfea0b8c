#ifndef KELVA_APPS_CAMERA_SESSION_H_
#define KELVA_APPS_CAMERA_SESSION_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "apps/camera/Attached.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Context.h"
#include "apps/trace/Trace.h"
#include "src/wifi/Camera.h"

namespace apps {

/// One open camera. The destructor closes it. Long work gives it up for others meanwhile (apps/camera/Turns.h).
class Session {
 public:
  /// Opens the camera that the command line means, for what is then tried (see Context::Doing), and waits for it as
  /// --wait-busy says. Throws Failure as Choose and Turns do.
  Session(Context& context, std::string doing);
  /// Opens this camera.
  Session(Context& context, AttachedCamera chosen);
  Session(Context& context, AttachedCamera chosen, std::chrono::milliseconds patience);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Camera& operator*() const { return *chosen_.camera; }
  Camera* operator->() const { return chosen_.camera.get(); }
  const boost::shared_ptr<Camera>& Pointer() const { return chosen_.camera; }
  const RegistryCamera& Facts() const { return chosen_.facts; }
  /// With the camera as it is used here, around the attached one when it is traced.
  const AttachedCamera& Attached() const { return chosen_; }

 private:
  std::unique_ptr<Turns> turns_;
  AttachedCamera chosen_;
};

/// What a trace calls a camera.
Trace::Device DeviceOf(const RegistryCamera& facts);

/// Starts a result about one camera with its serial number.
Json CameraResult(const Session& session);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_SESSION_H_
