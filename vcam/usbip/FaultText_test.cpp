#include "vcam/usbip/FaultText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

namespace vcam::usbip {
namespace {

using ::testing::HasSubstr;

Options Anything() {
  Options options;
  options.serial = "A7";
  options.storage = std::filesystem::temp_directory_path();
  return options;
}

class FaultTextTest : public ::testing::Test {
 protected:
  wire::Reply AskReady() {
    wire::Command ready;
    ready.cdb[0] = 0xC6;
    ready.cdb[2] = 0x04;
    ready.direction = wire::Direction::kFromCamera;
    ready.length = 4;
    return camera_.Execute(ready);
  }
  std::string Refusal(std::string_view text) {
    try {
      ArmByText(text, camera_, cable_);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  VirtualCamera camera_{Anything()};
  WireFaults cable_;
};

TEST_F(FaultTextTest, ArmsTheCable) {
  ArmByText("wrong-tag@2", camera_, cable_);
  EXPECT_EQ(cable_.Next(), WireFault::kNone);
  EXPECT_EQ(cable_.Next(), WireFault::kWrongTag);
}

TEST_F(FaultTextTest, ArmsTheCamera) {
  ArmByText("stall", camera_, cable_);
  EXPECT_EQ(AskReady().transport, wire::Transport::kStall);
}

TEST_F(FaultTextTest, RefusesAnUnknownNameWithTheListOfKnownOnes) {
  EXPECT_THAT(Refusal("nonsense"), HasSubstr("short"));
  EXPECT_THAT(Refusal(""), HasSubstr("wrong-tag"));
}

TEST_F(FaultTextTest, RefusesAPositionThatIsNone) {
  for (const auto* text : {"short@", "short@0", "short@-1", "short@1x"}) {
    EXPECT_THAT(Refusal(text), HasSubstr("positive"));
  }
}

}  // namespace
}  // namespace vcam::usbip
