#ifndef KELVA_CLI_CAMERA_SESSION_H_
#define KELVA_CLI_CAMERA_SESSION_H_

#include <boost/shared_ptr.hpp>
#include <optional>
#include <string>

#include "Camera.h"
#include "camera/Attached.h"
#include "frame/Context.h"

namespace kelva {

/// One open camera; closed when this goes.
class Session {
 public:
  /// Opens the camera that the command line means. Throws Failure: as Choose, or it cannot be opened.
  explicit Session(Context& context);
  /// Opens the camera with this serial number, or the only one.
  Session(Context& context, const std::optional<std::string>& serial);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Camera& operator*() const { return *chosen_.camera; }
  Camera* operator->() const { return chosen_.camera.get(); }
  const RegistryCamera& Facts() const { return chosen_.facts; }

 private:
  AttachedCamera chosen_;
};

/// The beginning of every result about one camera: its serial number.
Json CameraResult(const Session& session);

}  // namespace kelva

#endif  // KELVA_CLI_CAMERA_SESSION_H_
