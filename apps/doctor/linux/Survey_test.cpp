#include "apps/doctor/linux/Survey.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "apps/doctor/linux/Diagnosis.h"
#include "tests/umockdev/MockMachine.h"

namespace apps::doctor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SurveyTest : public testing::Test {
 protected:
  SurveyTest() { mock::GiveUpFileOverride(); }

  MachineFacts Survey(Answer answer = Answer::kAnswers) {
    asked_.clear();
    return SurveyMachine([this, answer](const std::string& node) {
      asked_.push_back(node);
      return answer;
    });
  }
  Condition Judge(Answer answer = Answer::kAnswers) { return Diagnose(Survey(answer)).at(0).condition; }

  mock::MockMachine machine_;
  std::vector<std::string> asked_;
};

TEST_F(SurveyTest, AnEmptyMachineHasNoCameras) {
  EXPECT_THAT(Survey().cameras, IsEmpty());
  EXPECT_EQ(Judge(), Condition::kNoDevice);
}

TEST_F(SurveyTest, ACameraIsSeenFromTheCableToTheNode) {
  machine_.Plug({.serial = "SN7", .revision = "2.10", .hubs = 1, .port = 3});
  const auto cameras = Survey().cameras;
  ASSERT_THAT(cameras, SizeIs(1));
  EXPECT_EQ(cameras[0].serial, "SN7");
  EXPECT_EQ(cameras[0].revision, "2.10");
  EXPECT_EQ(cameras[0].peripheralType, 3);
  EXPECT_EQ(cameras[0].node, "/dev/sg3");
  EXPECT_EQ(cameras[0].major, 21);
  EXPECT_EQ(cameras[0].minor, 3);
  EXPECT_EQ(cameras[0].maxSectors, 240);
  EXPECT_THAT(asked_, ElementsAre("/dev/sg3"));
  EXPECT_EQ(Judge(), Condition::kWell);
}

TEST_F(SurveyTest, OtherDevicesAreNoCameras) {
  machine_.Plug({.vendor = "ATA"});
  EXPECT_THAT(Survey().cameras, IsEmpty());
}

TEST_F(SurveyTest, ADeviceWithoutAStorageDriverIsSeenOnTheBus) {
  machine_.Plug({.serial = "SN7", .upTo = mock::Stage::kUsb});
  EXPECT_EQ(Survey().cameras.at(0).serial, "SN7");
  EXPECT_EQ(Judge(), Condition::kDriverNotLoaded);
}

TEST_F(SurveyTest, ADeviceWithItsDriverAndWithoutAUnitIsBeingSetUp) {
  machine_.Plug({.upTo = mock::Stage::kDriver});
  EXPECT_EQ(Judge(), Condition::kNotSetUp);
}

TEST_F(SurveyTest, AUnitWithoutAGenericNodeNeedsItsDriver) {
  machine_.Plug({.upTo = mock::Stage::kUnit});
  EXPECT_EQ(Judge(), Condition::kNoGenericDriver);
}

TEST_F(SurveyTest, ANodeWithoutPermissionIsNotAsked) {
  machine_.Plug({});
  machine_.SetUsable(0, false);
  EXPECT_EQ(Survey().cameras.at(0).nodeError, EACCES);
  EXPECT_THAT(asked_, IsEmpty());
  EXPECT_EQ(Judge(), Condition::kNoPermission);
}

TEST_F(SurveyTest, AHeldNodeIsNotAskedAndItsHolderIsNamed) {
  machine_.Plug({});
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const bool opened = ::open("/dev/sg0", O_RDWR) >= 0 && ::write(ready[1], "r", 1) == 1;
    ::pause();
    ::_exit(opened ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  const auto holders = Survey().cameras.at(0).holders;
  ASSERT_THAT(holders, SizeIs(1));
  EXPECT_EQ(holders[0].pid, child);
  EXPECT_THAT(asked_, IsEmpty());
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(Judge(), Condition::kWell);
}

TEST_F(SurveyTest, ABadCameraIsOne) {
  machine_.Plug({.revision = "Q42", .peripheralType = 5, .disc = true});
  EXPECT_EQ(Survey().cameras.at(0).disc, "/dev/sr0");
  EXPECT_EQ(Judge(), Condition::kBadCamera);
}

TEST_F(SurveyTest, ASilentCameraIsNotAnswering) {
  machine_.Plug({});
  EXPECT_EQ(Judge(Answer::kSilent), Condition::kNotAnswering);
}

}  // namespace
}  // namespace apps::doctor
