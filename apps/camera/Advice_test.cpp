#include "apps/camera/Advice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <IOKit/IOKitLib.h>

namespace apps {
namespace {

using testing::HasSubstr;

Verdict Of(std::uint32_t returned, std::uint32_t status) {
  return AdviceFor(kelva::TransferReport{{{0xC0, 0x00, 0x01}}, static_cast<kern_return_t>(returned), status});
}

TEST(AdviceTest, EveryWayToBeGoneIsGone) {
  for (const std::uint32_t code : {0xE00002C0U, 0xE00002D9U, 0x10000003U}) {
    EXPECT_EQ(Of(code, 0).code, ExitCode::kGone);
  }
}

TEST(AdviceTest, TheStatusOfAFailedCallIsNotLookedAt) {
  EXPECT_EQ(Of(0xE00002C0, 0x00052002).code, ExitCode::kGone);
}

TEST(AdviceTest, HeldBusyAndSilentCamerasAreToldApart) {
  EXPECT_EQ(Of(0xE00002C5, 0).code, ExitCode::kBusy);
  EXPECT_EQ(Of(0xE00002D5, 0).code, ExitCode::kBusy);
  EXPECT_EQ(Of(0, 0x08).code, ExitCode::kBusy);
  EXPECT_EQ(Of(0xE00002D6, 0).code, ExitCode::kTimedOut);
}

TEST(AdviceTest, ATransferThatTheNodeCannotCarryPointsAtTheLimit) {
  const Verdict verdict = Of(0xE00002E1, 0);
  EXPECT_EQ(verdict.code, ExitCode::kFailed);
  EXPECT_EQ(verdict.clause,
            "the system's driver does not take a transfer of this size; `kelva doctor` shows the limit.");
}

TEST(AdviceTest, EveryCodeOfTheLinuxDriverHasWordsOfItsOwn) {
  // kIOReturnNoMemory, IOError, NotOpen, Busy, Timeout, MessageTooLarge, NotPermitted, ExclusiveAccess, NoDevice,
  // BadArgument: what darwin/sg answers.
  for (const std::uint32_t code : {0xE00002BDU, 0xE00002CAU, 0xE00002CDU, 0xE00002D5U, 0xE00002D6U, 0xE00002E1U,
                                   0xE00002E2U, 0xE00002C5U, 0xE00002C0U, 0xE00002C2U}) {
    EXPECT_THAT(Of(code, 0).clause, testing::Not(HasSubstr("driver failed"))) << std::hex << code;
  }
}

TEST(AdviceTest, ARefusalSaysWhyAndKeepsCommandSenseKeyAndCodeForEngineers) {
  const Verdict verdict = Of(0, 0x03240502);
  EXPECT_EQ(verdict.code, ExitCode::kRefused);
  EXPECT_EQ(verdict.clause,
            "the camera refused (illegal request); it does not know the command, or not with these values.");
  EXPECT_EQ(verdict.codes, "command c0 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00, sense key 5, code 24/03");
}

TEST(AdviceTest, AnUnknownOperationIsAMissingFunction) {
  EXPECT_THAT(Of(0, 0x00200502).clause, HasSubstr("this camera does not have this function"));
}

TEST(AdviceTest, ARefusalOfWhatWasAskedIsToldFromAMissingFunction) {
  const auto message = [](const std::string& codes) {
    return "Transfer error\nCDB=[c2 00 06 00 00 00 00 00 00 00 00 00 00 00 00 00]\n" + codes;
  };
  EXPECT_TRUE(RefusesWhatWasAsked(message("ret=0x00000000 result.status=0x01140502")));
  EXPECT_FALSE(RefusesWhatWasAsked(message("ret=0x00000000 result.status=0x00200502"))) << "no such operation";
  EXPECT_FALSE(RefusesWhatWasAsked(message("ret=0x00000000 result.status=0x01140402"))) << "hardware error";
  EXPECT_FALSE(RefusesWhatWasAsked(message("ret=0xe00002c0 result.status=0x00000000"))) << "gone";
  EXPECT_FALSE(RefusesWhatWasAsked("Camera error: short")) << "a wrong answer";
}

TEST(AdviceTest, ARefusalWithoutSenseSaysSo) {
  const Verdict verdict = Of(0, 0x02);
  EXPECT_EQ(verdict.code, ExitCode::kRefused);
  EXPECT_THAT(verdict.clause, HasSubstr("refused and gave no reason"));
  EXPECT_THAT(verdict.codes, HasSubstr("status 0x02"));
}

TEST(AdviceTest, ABrokenTransferNamesBothStatuses) {
  const Verdict verdict = Of(0, 0x000807FF);
  EXPECT_EQ(verdict.code, ExitCode::kFailed);
  EXPECT_THAT(verdict.clause, HasSubstr("the transfer broke off"));
  EXPECT_EQ(verdict.codes, "host status 0x07, driver status 0x08");
}

TEST(AdviceTest, AnUnknownCodeIsShown) {
  const Verdict verdict = Of(0xE00002EE, 0);
  EXPECT_EQ(verdict.code, ExitCode::kFailed);
  EXPECT_THAT(verdict.codes, HasSubstr("code 0xe00002ee"));
}

TEST(AdviceTest, IsGivenOnTheLibrarysMessageToo) {
  const Verdict verdict = AdviceFor(
      "Camera error: Transfer error\nCDB=[c6 00 04 00 00 00 00 00 00 00 00 00 00 00 00 00]\n"
      "ret=0xe00002c0 result.status=0x00000002");
  EXPECT_EQ(verdict.code, ExitCode::kGone);
}

TEST(AdviceTest, AWrongAnswerGivesTheLibrarysWordsWithoutPrefixAndCallStack) {
  EXPECT_THAT(AdviceFor("Camera error: ReadFile() truncated.").clause, HasSubstr("(ReadFile() truncated)"));
  EXPECT_THAT(AdviceFor("OsxCameraError: IONotificationPortCreate() failed.\nframe 1\nframe 2").clause,
              HasSubstr("(IONotificationPortCreate() failed)"));
  EXPECT_EQ(AdviceFor("Camera error.").code, ExitCode::kFailed);
}

}  // namespace
}  // namespace apps
