#include <gtest/gtest.h>

#include <string>

#include "tests/hotplug/Cameras.h"

// Cameras that come and go, a tenth of them in the middle of a transfer. That nothing is left is what the fixture claims.

namespace {

using PlugCycles = hotplug::Cameras;
using hotplug::Listener;

void CountLoss(void* context) {
  ++*static_cast<int*>(context);
}

TEST_F(PlugCycles, TenThousandLeaveNothing) {
  constexpr int kCycles = 10000;
  constexpr int kInMidTransferEvery = 10;
  Put("A.BIN", std::string(100000, 'a'));
  int attached = 0;
  int lost = 0;
  int cut = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    const auto device = Plug("one");
    attached += static_cast<int>(Listener::Shared().attached.size());
    const boost::shared_ptr<Camera> camera = Listener::Shared().attached.at(0);
    Listener::Shared().attached.clear();
    camera->ListenForCameraLost(CountLoss, &lost);
    ASSERT_TRUE(camera->Open());
    if (cycle % kInMidTransferEvery == 0) {
      device->Arm({vcam::FaultKind::kUnplugAtByte, 70000});
      try {
        camera->ReadFile("I:\\A.BIN", nullptr, nullptr, true);
      } catch (const CameraTransferError&) {
        ++cut;
      }
    }
    Unplug("one");
    EXPECT_TRUE(camera->WasDisconnected());
  }
  EXPECT_EQ(attached, kCycles);
  EXPECT_EQ(lost, kCycles);
  EXPECT_EQ(cut, kCycles / kInMidTransferEvery);
}

}  // namespace
