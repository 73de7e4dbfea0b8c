#ifndef KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_
#define KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_

#include "src/wifi/Camera.h"
#include "vcam/camera/VirtualCamera.h"

namespace tests::random {

/// The library's commands over a virtual camera, with a chunk size of the test's choice and nothing between. A transfer
/// that fails returns false, so that every command ends with its neutral value.
class DirectCamera : public Camera {
 public:
  DirectCamera(vcam::VirtualCamera& device, int chunkSize) : Camera(chunkSize, 4 * chunkSize), device_(device) {}

  std::string Name() const override { return "Camera"; }
  std::string MountPath() const override { return ""; }
  bool Open() override { return true; }
  void Close() override {}
  void ListenForCameraLost(void (*)(void*), void*) override {}
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override { return false; }
  void ClearCancel(bool) override {}
  bool IsOpen() override { return true; }
  bool CompareSn(const char*) const override { return true; }
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;

 private:
  vcam::VirtualCamera& device_;
};

}  // namespace tests::random

#endif  // KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_
