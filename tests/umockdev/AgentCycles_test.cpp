#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "tests/umockdev/AgentUnderTest.h"

namespace mock {
namespace {

constexpr int kUsualCycles = 2000;
constexpr int kWarmUp = 500;  // until then memory that is kept for good is still being taken
constexpr int kPorts = 2;     // together fewer events than a socket of the testbed takes unread
constexpr int kPatienceMs = 10000;
constexpr int kQuietMs = 300;
constexpr long kGrowthKib = 64;

int WantedCycles() {
  const char* wanted = std::getenv("KELVA_PLUG_CYCLES");
  return wanted ? std::atoi(wanted) : kUsualCycles;
}

class AgentCyclesTest : public testing::Test {
 protected:
  // Plugs a camera into each port, waits for that many launches, and unplugs them all. Returns the launches missed.
  int Round() {
    for (int port = 0; port < kPorts; ++port) machine_.Plug({.serial = "C" + std::to_string(++cameras_), .port = port});
    int missed = 0;
    for (int port = 0; port < kPorts; ++port) missed += agent_.AwaitLaunch(kPatienceMs) ? 0 : 1;
    for (int port = 0; port < kPorts; ++port) machine_.Unplug(port);
    return missed;
  }

  MockMachine machine_;
  AgentUnderTest agent_;
  int cameras_ = 0;
};

TEST_F(AgentCyclesTest, EveryPlugLaunchesOnceAndNothingIsLeft) {
  ASSERT_TRUE(agent_.AwaitListening(machine_));
  while (cameras_ < kWarmUp) {
    ASSERT_EQ(Round(), 0);
  }
  const auto descriptors = agent_.OpenDescriptors();
  const long before = agent_.MemoryKib("Rss");
  const int end = cameras_ + WantedCycles();
  int missed = 0;
  while (cameras_ < end) missed += Round();
  int surplus = 0;
  while (agent_.AwaitLaunch(kQuietMs)) ++surplus;
  const long growth = agent_.MemoryKib("Rss") - before;
  std::cout << WantedCycles() << " cycles: " << missed << " missed, " << surplus << " launched twice, "
            << agent_.OpenDescriptors() << " descriptors (" << descriptors << " before), RSS " << before << " KiB and "
            << growth << " KiB more\n";
  EXPECT_EQ(missed, 0);
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(agent_.OpenDescriptors(), descriptors);
  EXPECT_LT(growth, kGrowthKib);
  EXPECT_EQ(agent_.Threads(), 1U);
  EXPECT_TRUE(agent_.End());
}

TEST_F(AgentCyclesTest, CamerasPresentAtStartLaunchNothing) {
  ASSERT_TRUE(agent_.AwaitListening(machine_));
  machine_.Plug({.serial = "A", .port = 1});
  ASSERT_TRUE(agent_.AwaitLaunch(kPatienceMs));
  AgentUnderTest second;
  ASSERT_TRUE(second.AwaitListening(machine_));
  EXPECT_FALSE(second.AwaitLaunch(kQuietMs));
}

TEST_F(AgentCyclesTest, ABurstOfCamerasLaunchesOncePerCamera) {
  ASSERT_TRUE(agent_.AwaitListening(machine_));
  ASSERT_TRUE(agent_.AwaitLaunch(0) == std::nullopt);
  for (int port = 0; port < kPorts; ++port) machine_.Plug({.serial = "B" + std::to_string(port), .port = port});
  for (int port = 0; port < kPorts; ++port) {
    EXPECT_TRUE(agent_.AwaitLaunch(kPatienceMs)) << port;
  }
  EXPECT_FALSE(agent_.AwaitLaunch(kQuietMs));
}

TEST_F(AgentCyclesTest, OtherDevicesAndBadCamerasLaunchNothing) {
  ASSERT_TRUE(agent_.AwaitListening(machine_));
  machine_.Plug({.serial = "DISK", .vendor = "ATA", .port = 1});
  machine_.Plug({.serial = "BAD", .revision = "Q42", .peripheralType = 5, .port = 2});
  EXPECT_FALSE(agent_.AwaitLaunch(kQuietMs));
}

}  // namespace
}  // namespace mock
