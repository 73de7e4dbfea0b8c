#include "vcam/usbip/CableFaults.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>

namespace vcam::usbip {
namespace {

using ::testing::HasSubstr;

TEST(CableFault, EveryFaultIsFoundByItsName) {
  for (const CableFault fault : AllCableFaults()) {
    EXPECT_EQ(CableFaultByName(NameOf(fault)), fault) << NameOf(fault);
  }
  EXPECT_EQ(AllCableFaults().size(), 10U);
}

TEST(CableFault, NoOtherNameIsTaken) {
  EXPECT_EQ(CableFaultByName("none"), std::nullopt);
  EXPECT_EQ(CableFaultByName(""), std::nullopt);
}

TEST(CableFaults, SpoilsTheChosenCommandOnly) {
  CableFaults faults;
  EXPECT_EQ(faults.Next(), CableFault::kNone);
  faults.Arm(CableFault::kWrongTag, 2);
  EXPECT_EQ(faults.Next(), CableFault::kNone);
  EXPECT_EQ(faults.Next(), CableFault::kWrongTag);
  EXPECT_EQ(faults.Next(), CableFault::kNone);
  EXPECT_EQ(faults.Commands(), 4U);
}

TEST(CableFaults, SpoilsEachCommandThatWasChosen) {
  CableFaults faults;
  faults.Arm(CableFault::kBabble, 3);
  faults.Arm(CableFault::kWrongTag, 1);
  EXPECT_EQ(faults.Next(), CableFault::kWrongTag);
  EXPECT_EQ(faults.Next(), CableFault::kNone);
  EXPECT_EQ(faults.Next(), CableFault::kBabble);
  EXPECT_EQ(faults.Next(), CableFault::kNone);
}

TEST(CableFaults, GivesTheFirstOfTwoForOneCommand) {
  CableFaults faults;
  faults.Arm(CableFault::kBabble);
  faults.Arm(CableFault::kWrongTag);
  EXPECT_EQ(faults.Next(), CableFault::kBabble);
}

TEST(CableFaults, CanBeTakenBack) {
  CableFaults faults;
  faults.Arm(CableFault::kBabble);
  faults.Arm(CableFault::kWrongTag, 2);
  faults.Disarm();
  EXPECT_EQ(faults.Next(), CableFault::kNone);
  EXPECT_EQ(faults.Next(), CableFault::kNone);
}

Options Anything() {
  Options options;
  options.serial = "A7";
  options.storage = std::filesystem::temp_directory_path();
  return options;
}

class CableFaultsByText : public ::testing::Test {
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
  CableFaults cable_;
};

TEST_F(CableFaultsByText, ArmsTheCable) {
  ArmByText("wrong-tag@2", camera_, cable_);
  EXPECT_EQ(cable_.Next(), CableFault::kNone);
  EXPECT_EQ(cable_.Next(), CableFault::kWrongTag);
}

TEST_F(CableFaultsByText, ArmsTheCamera) {
  ArmByText("stall", camera_, cable_);
  EXPECT_EQ(AskReady().transport, wire::Transport::kStall);
}

TEST_F(CableFaultsByText, RefusesAnUnknownNameWithTheListOfKnownOnes) {
  EXPECT_THAT(Refusal("nonsense"), HasSubstr("short"));
  EXPECT_THAT(Refusal(""), HasSubstr("wrong-tag"));
}

TEST_F(CableFaultsByText, RefusesAPositionThatIsNone) {
  for (const auto* text : {"short@", "short@0", "short@-1", "short@1x"}) {
    EXPECT_THAT(Refusal(text), HasSubstr("positive"));
  }
}

}  // namespace
}  // namespace vcam::usbip
