#include "embed/VirtualBus.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "Camera.h"
#include "bus/BusConnection.h"
#include "embed/CameraSource.h"
#include "vcam/server/testing/TestServer.h"

namespace kelva {
namespace {

TEST(UseVirtualBus, ReplacesTheMachinesCameras) {
  vcam::server::test::TestServer server;
  bus::BusConnection control(server.Path());
  control.Request(bus::Kind::kPlug,
                  bus::Encode(bus::PlugRequest{"KV-0001", server.Scratch().Path().string(), "", "", 3}));
  UseVirtualBus(server.Path());
  EXPECT_EQ(Camera::EnumerateCameras(false, "", false, 0).size(), 1U);
  EXPECT_EQ(LastSourceError(), "");
}

TEST(UseVirtualBus, SaysThatNobodyServesThePath) {
  try {
    UseVirtualBus("/nonexistent/bus");
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("/nonexistent/bus"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace kelva
