#ifndef KELVA_USB_OSX_LISTENER_H_
#define KELVA_USB_OSX_LISTENER_H_

#include <boost/shared_ptr.hpp>
#include <functional>
#include <memory>
#include <string>

#include "Camera.h"

namespace kelva {

/// Tells a program about cameras that come and go. Unlike Camera::ListenForCameraAttach it takes function objects, it
/// ends, and a process may have any number of listeners:
///
///     const kelva::Listener listener({
///         .attached = [&](boost::shared_ptr<Camera> camera, const std::string& serial) { cameras[serial] = camera; },
///         .lost = [&](boost::shared_ptr<Camera>, const std::string& serial) { cameras.erase(serial); },
///         .badCamera = {},
///     });
///     while (!done) kelva::RunEvents(std::chrono::seconds(1));
///
/// Threads: the functions are called inside the constructor, for the cameras that are there, and later on the thread
/// that made the listener, while that thread runs its events (EventLoop.h). The thread must live and run them as long
/// as it wants reports. Destroy the listener on the same thread; on another one only while that thread runs no events.
///
/// Order: a camera is reported as attached before it is reported as lost, and each is reported once. A camera that goes
/// before it could be watched is reported as attached and, right after, as lost.
///
/// Errors: an exception of a function does not keep other cameras and other listeners from being reported. Then the
/// first one reaches whoever runs the events. On macOS it has to cross the system's run loop, which promises nothing
/// about exceptions: catch them inside the function.
///
/// Nothing is shared with Camera's own listening functions: a program that uses both hears of each event from both.
class Listener {
 public:
  using CameraFunction = std::function<void(boost::shared_ptr<Camera> camera, const std::string& serial)>;

  /// What to call; an empty function is not called.
  struct Functions {
    /// A camera is there: a new object, not opened. The listener keeps no pointer to it, so a camera that the program
    /// does not keep is closed and destroyed. `serial` is the USB serial number; empty when the device has none.
    CameraFunction attached;
    /// A camera has gone. `camera` is the object that `attached` got; empty when nobody keeps it any more. Its
    /// WasDisconnected() stays false unless the program also calls its ListenForCameraLost().
    CameraFunction lost;
    /// The system attached a camera without the camera's driver: it cannot be used.
    std::function<void()> badCamera;
  };

  /// Reports what is there, and reports changes from then on. Throws the platform's CameraError when the system refuses,
  /// before anything was reported. An exception of a function goes on once everything that is there has been reported; the
  /// program then has no listener.
  explicit Listener(Functions functions);
  /// Ends the reports: no function is called from now on. A function of this or of another listener may do it. The
  /// function objects are destroyed now or, when one of them is running, as soon as it has returned. Cameras stay as
  /// they are.
  ~Listener();

  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

 private:
  class Registrations;
  const std::shared_ptr<Registrations> registrations_;
};

}  // namespace kelva

#endif  // KELVA_USB_OSX_LISTENER_H_
