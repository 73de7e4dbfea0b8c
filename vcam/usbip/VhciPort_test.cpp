#include "vcam/usbip/VhciPort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vcam::usbip {
namespace {

using ::testing::HasSubstr;
using ::testing::Optional;

constexpr std::string_view kTable =
    "hub port sta spd dev      sockfd local_busid\n"
    "hs  0000 006 003 00010002 000007 1-1\n"
    "hs  0001 004 000 00000000 000000 0-0\n"
    "ss  0015 004 000 00000000 000000 0-0\n";

TEST(FreePort, IsTheFirstFreeOneOfItsSpeed) {
  EXPECT_THAT(FreePort(kTable, Speed::kHigh), Optional(1U));
  EXPECT_THAT(FreePort(kTable, Speed::kSuper), Optional(15U));
}

TEST(FreePort, IsNoneWhenAllAreTaken) {
  EXPECT_EQ(FreePort("hs  0000 006 003 00010002 000007 1-1\n", Speed::kHigh), std::nullopt);
}

TEST(FreePort, IsNoneInATableThatIsNone) {
  EXPECT_EQ(FreePort("", Speed::kHigh), std::nullopt);
  EXPECT_EQ(FreePort("hs 1x 004\nhs\n\n", Speed::kHigh), std::nullopt);
}

class PlugTest : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string FailureOf(const std::filesystem::path& controller) {
    try {
      PlugIntoController(controller, 1, Speed::kHigh);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }
  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("kelva-vhci-" + std::to_string(::getpid()));
};

TEST_F(PlugTest, OrdersPortSocketDeviceAndSpeed) {
  std::ofstream(folder_ / "status") << kTable;
  std::ofstream(folder_ / "attach") << "";
  const base::FileDescriptor end = PlugIntoController(folder_, 0x00010002, Speed::kSuper);
  std::ifstream order(folder_ / "attach");
  unsigned port = 0;
  unsigned socket = 0;
  unsigned device = 0;
  unsigned speed = 0;
  order >> port >> socket >> device >> speed;
  EXPECT_EQ(port, 15U);
  EXPECT_GT(socket, 2U);
  EXPECT_EQ(device, 65538U);
  EXPECT_EQ(speed, 5U);
  EXPECT_TRUE(static_cast<bool>(end));
}

TEST_F(PlugTest, SaysThatTheModuleIsMissing) {
  EXPECT_THAT(FailureOf(folder_ / "nowhere"), HasSubstr("modprobe vhci-hcd"));
}

TEST_F(PlugTest, SaysThatEveryPortIsTaken) {
  std::ofstream(folder_ / "status") << "hs  0000 006 003 00010002 000007 1-1\n";
  EXPECT_THAT(FailureOf(folder_), HasSubstr("All ports"));
}

}  // namespace
}  // namespace vcam::usbip
