#ifndef KELVA_VCAM_CAMERA_TESTING_CAMERA_FIXTURE_H_
#define KELVA_VCAM_CAMERA_TESTING_CAMERA_FIXTURE_H_

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam::test {

/// A camera over a scratch storage folder, whose clock stands at 2026-03-14 15:09:26.535 UTC unless a test moves it.
class CameraFixture : public testing::Test {
 protected:
  CameraFixture() : options_(scratch_.CameraOptions()) {
    options_.now = [this] { return now_; };
    Restart();
  }
  /// The same camera after its power was cut: what it remembers, it remembers in its storage.
  void Restart() { camera_ = std::make_unique<VirtualCamera>(options_); }

  ScratchStorage scratch_;
  std::chrono::system_clock::time_point now_{std::chrono::milliseconds(1773500966535)};
  Options options_;
  std::unique_ptr<VirtualCamera> camera_;
};

}  // namespace vcam::test

#endif  // KELVA_VCAM_CAMERA_TESTING_CAMERA_FIXTURE_H_
