#ifndef KELVA_USB_OSX_LOSS_IN_PROGRESS_H_
#define KELVA_USB_OSX_LOSS_IN_PROGRESS_H_

namespace kelva {

/// Knows, while a camera-lost callback runs on this thread, whether the callback destroyed its camera: most callbacks
/// drop their last pointer to the camera. Other threads may not destroy the camera meanwhile (see OsxCamera.h).
class LossInProgress {
 public:
  explicit LossInProgress(const void* camera) : camera_(camera), outer_(innermost_) { innermost_ = this; }
  ~LossInProgress() { innermost_ = outer_; }
  LossInProgress(const LossInProgress&) = delete;
  LossInProgress& operator=(const LossInProgress&) = delete;

  bool CameraIsAlive() const { return camera_ != nullptr; }

  /// Called by every camera that is destroyed.
  static void CameraDestroyed(const void* camera) {
    for (LossInProgress* loss = innermost_; loss != nullptr; loss = loss->outer_) {
      if (loss->camera_ == camera) loss->camera_ = nullptr;
    }
  }

 private:
  inline static thread_local LossInProgress* innermost_ = nullptr;

  const void* camera_;
  LossInProgress* outer_;
};

}  // namespace kelva

#endif  // KELVA_USB_OSX_LOSS_IN_PROGRESS_H_
