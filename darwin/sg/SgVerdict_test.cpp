#include "darwin/sg/SgVerdict.h"

#include <IOKit/IOReturn.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace darwin::sg {
namespace {

SgOutcome WithHost(std::uint16_t hostStatus) {
  SgOutcome outcome;
  outcome.hostStatus = hostStatus;
  outcome.moved = 512;  // what the kernel claims when the device went in the middle of the command
  return outcome;
}

void Expect(const Verdict& verdict, int returnCode, std::uint32_t status, std::uint32_t moved) {
  EXPECT_EQ(verdict.returnCode, returnCode);
  EXPECT_EQ(verdict.status, status);
  EXPECT_EQ(verdict.moved, moved);
}

TEST(SgVerdictTest, AGoodCommandGivesItsLength) {
  SgOutcome outcome;
  outcome.moved = 500;
  Expect(Judge(outcome, 512, false), kIOReturnSuccess, 0, 500);
}

TEST(SgVerdictTest, AFailedTransportHidesAGoodStatusAndAFullResidual) {
  Expect(Judge(WithHost(7), 512, false), kIOReturnSuccess, 0x000007FF, 0);
}

TEST(SgVerdictTest, AFailedTransportOfADeviceThatHasGoneIsNoDevice) {
  Expect(Judge(WithHost(7), 512, true), kIOReturnNoDevice, 0, 0);
}

TEST(SgVerdictTest, NoConnectionIsNoDevice) {
  Expect(Judge(WithHost(1), 512, false), kIOReturnNoDevice, 0, 0);
}

TEST(SgVerdictTest, ABusyBusIsBusy) {
  Expect(Judge(WithHost(2), 512, false), kIOReturnBusy, 0, 0);
}

TEST(SgVerdictTest, ATimeOutIsATimeOut) {
  Expect(Judge(WithHost(3), 512, false), kIOReturnTimeout, 0, 0);
}

TEST(SgVerdictTest, ADriverErrorIsATransportFailure) {
  SgOutcome outcome;
  outcome.driverStatus = 6;
  Expect(Judge(outcome, 512, false), kIOReturnSuccess, 0x000600FF, 0);
}

TEST(SgVerdictTest, ACheckConditionCarriesItsSense) {
  SgOutcome outcome;
  outcome.status = 2;
  outcome.sense = {5, 0x20, 0x01};
  Expect(Judge(outcome, 512, false), kIOReturnSuccess, 0x01200502, 0);
}

TEST(SgVerdictTest, ABusyDeviceHasItsOwnStatus) {
  SgOutcome outcome;
  outcome.status = 8;
  Expect(Judge(outcome, 512, false), kIOReturnSuccess, 0x00000008, 0);
}

TEST(SgVerdictTest, AResidualOutOfRangeIsATransportFailure) {
  SgOutcome outcome;
  outcome.moved = 513;
  Expect(Judge(outcome, 512, false), kIOReturnSuccess, 0x000000FF, 0);
}

TEST(SgVerdictTest, EachWayToBeGoneIsNoDevice) {
  for (int error : {ENODEV, ENXIO, ENOENT}) {
    SgOutcome outcome;
    outcome.error = error;
    Expect(Judge(outcome, 512, false), kIOReturnNoDevice, 0, 0);
  }
}

TEST(SgVerdictTest, SystemErrorsKeepTheirMeaning) {
  EXPECT_EQ(ReturnCodeOf(EACCES), kIOReturnNotPermitted);
  EXPECT_EQ(ReturnCodeOf(EPERM), kIOReturnNotPermitted);
  EXPECT_EQ(ReturnCodeOf(EWOULDBLOCK), kIOReturnExclusiveAccess);
  EXPECT_EQ(ReturnCodeOf(EBUSY), kIOReturnExclusiveAccess);
  EXPECT_EQ(ReturnCodeOf(ENOMEM), kIOReturnNoMemory);
  EXPECT_EQ(ReturnCodeOf(EINVAL), kIOReturnBadArgument);
  EXPECT_EQ(ReturnCodeOf(EIO), kIOReturnIOError);
}

TEST(SgVerdictTest, OnlyAnEndedCommandWithAnUnclearTransportNeedsALookForTheDevice) {
  EXPECT_TRUE(MayBeGone(WithHost(7)));
  EXPECT_TRUE(MayBeGone(WithHost(8)));
  EXPECT_FALSE(MayBeGone(WithHost(3)));
  EXPECT_FALSE(MayBeGone(SgOutcome{}));
}

}  // namespace
}  // namespace darwin::sg
