#ifndef KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_
#define KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_

#include "src/wifi/testing/PlainCamera.h"
#include "vcam/camera/VirtualCamera.h"

namespace tests::random {

/// The library's commands over a virtual camera, with a chunk size of the test's choice and nothing between. A transfer
/// that fails returns false, so that every command ends with its neutral value.
class DirectCamera : public wifi_testing::PlainCamera {
 public:
  DirectCamera(vcam::VirtualCamera& device, int chunkSize) : PlainCamera(chunkSize, 4 * chunkSize), device_(device) {}

  bool CompareSn(const char*) const override { return true; }
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;

 private:
  vcam::VirtualCamera& device_;
};

}  // namespace tests::random

#endif  // KELVA_TESTS_RANDOM_DIRECT_CAMERA_H_
