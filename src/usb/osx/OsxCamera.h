#ifndef KELVA_USB_OSX_OSX_CAMERA_H_
#define KELVA_USB_OSX_OSX_CAMERA_H_

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "Camera.h"

namespace kelva {

/// The registry entry of the camera's driver service, borrowed: valid while the camera lives. 0 for a camera of another
/// transport.
io_service_t ServiceOf(const Camera& camera);

}  // namespace kelva

/// A camera attached by USB: one service of the camera's kernel driver in the I/O registry, and the session with it.
/// Each command travels as one SCSI command through the driver's user client. Programs use it through Camera:
///
///     void OnAttach(boost::shared_ptr<Camera> camera, void* context) {
///       if (camera->Open()) static_cast<App*>(context)->Add(camera);
///     }
///     Camera::ListenForCameraAttach(OnAttach, &app, false);
///     CFRunLoopRun();
///
/// Ownership: a camera owns one reference to its service, its connection and its interest notification; the destructor
/// gives all three back. The registered callbacks and the notification port live until the process ends.
///
/// Threads: notifications arrive on the thread whose run loop first listened, while it runs in the default mode.
/// Nothing is locked. Destroy a camera that ListenForCameraLost watches on that thread, inside its callback or outside;
/// on another thread only while that run loop is not running. The notification holds a plain pointer to the camera.
class OsxCamera : public Camera {
 public:
  /// Takes over one reference to `service`. Opens nothing.
  explicit OsxCamera(unsigned int service);
  ~OsxCamera() override;

  OsxCamera(const OsxCamera&) = delete;
  OsxCamera& operator=(const OsxCamera&) = delete;

  /// "Camera".
  std::string Name() const override;
  /// Empty: this transport mounts nothing.
  std::string MountPath() const override;
  bool Open() override;
  void Close() override;
  /// Makes the notification port unless listening for attaches has made it. Throws OsxCameraError
  /// "IOServiceAddInterestNotifaction() failed."; the camera is then not watched, and a later call tries again.
  void ListenForCameraLost(void (*callback)(void*), void* context) override;
  bool WasDisconnected() override;
  /// True for the first driver name only. Enumeration also accepts the "_ms" driver, whose cameras fail this check.
  bool IsScsiInquiryCorrect() const override;
  /// Always false: this transport does not support cancelling.
  bool Cancel(bool, bool) override;
  /// Does nothing.
  void ClearCancel(bool flag) override;
  bool IsOpen() override;
  /// True or CameraTransferError, never false; `size` is unchanged after a failure. The flag is ignored.
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;
  bool CompareSn(const char* serial) const override;

  /// The cameras attached now, by driver name and then in the registry's order; of this maker only unless anyVendor. A
  /// search that the system refuses ends the list and prints the code to standard output.
  static std::vector<boost::shared_ptr<Camera>> EnumerateOsxCameras(bool anyVendor);
  /// Reports each camera present now (before this returns) and each one attached later. Null registers nothing. When
  /// the callback throws, the other cameras of the same notification are reported first; then the exception goes on to
  /// the caller, which for a later attach is the run loop.
  static void ListenForOsxCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context);
  /// As above, for each camera that the system attached through its compact-disc services.
  static void ListenForOsxBadCameraAttach(void (*callback)(void*), void* context);
  /// Makes the process's notification port, once, on the calling thread's run loop.
  static void SetupNotifyPort();

  /// The matching-notification handlers (IOServiceMatchingCallback): drain the iterator and report.
  static void AddDeviceBounce(void* context, unsigned int iterator);
  static void BadCameraBounce(void* context, unsigned int iterator);
  /// The interest-notification handler (IOServiceInterestCallback); `camera` is the OsxCamera that registered.
  static void CameraMessage(void* camera, unsigned int service, unsigned int messageType, void* messageArgument);

  friend io_service_t kelva::ServiceOf(const Camera& camera);

 private:
  io_object_t notification_;  // 0 = not watched
  io_service_t service_;
  io_connect_t connect_;  // 0 = not open
  void (*lostCb_)(void* context);
  void* lostContext_;
  bool disconnected_;

  static const char* const kDriverNames[];
  static IONotificationPortRef notifyPort;
  static void (*cameraCb)(boost::shared_ptr<Camera> camera, void* context);
  static void (*badCameraCb)(void* context);
};

#endif  // KELVA_USB_OSX_OSX_CAMERA_H_
