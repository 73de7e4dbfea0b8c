// A program with libkelva that names no source of cameras.

#include <gtest/gtest.h>
#include <kelva/Camera.h>
#include <kelva/EventLoop.h>
#include <kelva/Listener.h>

#include "tests/umockdev/MockMachine.h"

namespace mock {
namespace {

TEST(DefaultSource, IsTheMachine) {
  MockMachine machine;
  machine.Plug({.serial = "K100"});
  std::vector<std::string> attached;
  const kelva::Listener listener(
      {.attached = [&](auto, const std::string& serial) { attached.push_back(serial); }, .lost = {}, .badCamera = {}});
  EXPECT_EQ(Camera::EnumerateCameras(false, "", false, 0).size(), 1U);
  EXPECT_TRUE(Camera::GetCamera("K100", "", false, false));
  machine.Plug({.serial = "K200", .port = 1});
  for (int i = 0; i < 100 && attached.size() < 2; ++i) kelva::RunEvents(std::chrono::milliseconds(100));
  EXPECT_EQ(attached, (std::vector<std::string>{"K100", "K200"}));
}

}  // namespace
}  // namespace mock
