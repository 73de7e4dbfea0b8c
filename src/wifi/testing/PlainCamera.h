#ifndef KELVA_WIFI_TESTING_PLAIN_CAMERA_H_
#define KELVA_WIFI_TESTING_PLAIN_CAMERA_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"

namespace wifi_testing {

/// What every test camera shares: all that `Camera` leaves open but `Transfer`, and a record of the calls in order.
class PlainCamera : public Camera {
 public:
  explicit PlainCamera(int chunkSize = 65536, int progressInterval = 262144) : Camera(chunkSize, progressInterval) {}

  std::string Name() const override { return "Plain"; }
  std::string MountPath() const override { return ""; }
  bool Open() override { return open = true; }
  void Close() override { open = false; }
  void ListenForCameraLost(void (*)(void*), void*) override {}
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override {
    calls.emplace_back("Cancel");
    return false;
  }
  void ClearCancel(bool flag) override { calls.emplace_back(flag ? "ClearCancel true" : "ClearCancel false"); }
  bool IsOpen() override {
    calls.emplace_back("IsOpen");
    return open;
  }
  bool CompareSn(const char*) const override { return false; }

  using Camera::chunkSize_;
  using Camera::progressInterval_;

  bool open = true;
  /// "IsOpen", "ClearCancel true", "Transfer true", ... in the order of the calls.
  std::vector<std::string> calls;
};

using Calls = std::vector<std::string>;

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_PLAIN_CAMERA_H_
