#include "apps/camera/Explain.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "apps/commandline/Failure.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/FileReader.h"

namespace apps {
namespace {

TEST(ExplainTest, AFailureOfTheToolSaysItAllItself) {
  const Outcome outcome = Explain(Failure(ExitCode::kUsage, "No."), "read X");
  EXPECT_EQ(outcome.code, ExitCode::kUsage);
  EXPECT_EQ(outcome.sentence, "No.");
}

TEST(ExplainTest, AFailureOfTheCameraSaysWhatWasTriedAndWhatToDo) {
  const CameraTransferError error(
      "Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 result.status=0x00000000");
  const Outcome outcome = Explain(error, "read X");
  EXPECT_EQ(outcome.code, ExitCode::kGone);
  EXPECT_EQ(outcome.sentence,
            "Cannot read X: the camera is no longer there; plug it in again, switch it on and try again.");
}

TEST(ExplainTest, AWrongAnswerIsAFailure) {
  const Outcome outcome = Explain(CameraError("ReadFile() truncated."), "read X");
  EXPECT_EQ(outcome.code, ExitCode::kFailed);
  EXPECT_TRUE(outcome.sentence.starts_with("Cannot read X: the camera sent a wrong answer (")) << outcome.sentence;
}

TEST(ExplainTest, AFileThatCannotBeReadSaysWhy) {
  using Reason = kelva::FileReadError::Reason;
  const Outcome wrong = Explain(kelva::FileReadError(Reason::kTruncated, "FileReader: the file ended."), "read X");
  EXPECT_EQ(wrong.code, ExitCode::kFailed);
  EXPECT_TRUE(wrong.sentence.starts_with("Cannot read X: the camera sent a wrong answer (the file ended); "))
      << wrong.sentence;
  const Outcome gone = Explain(kelva::FileReadError(Reason::kCameraLost, "FileReader: gone."), "read X");
  EXPECT_EQ(gone.code, ExitCode::kGone);
  EXPECT_EQ(gone.sentence,
            "Cannot read X: the camera is no longer there; plug it in again, switch it on and try again.");
}

TEST(ExplainTest, LackOfMemoryIsNamed) {
  EXPECT_TRUE(Explain(std::bad_alloc(), "").sentence.starts_with("Cannot do that: there is not enough memory"));
}

TEST(ExplainTest, OnlyACameraThatHasGoneOrIsSilentEndsWorkOnSeveralFiles) {
  EXPECT_TRUE(EndsAll(ExitCode::kGone));
  EXPECT_TRUE(EndsAll(ExitCode::kTimedOut));
  EXPECT_FALSE(EndsAll(ExitCode::kFailed));
  EXPECT_FALSE(EndsAll(ExitCode::kRefused));
}

TEST(ExplainTest, AnythingElseIsShownPrintable) {
  EXPECT_EQ(Explain(std::runtime_error("odd\x1b"), "read X").sentence, "Cannot read X: odd\\x1b.");
}

}  // namespace
}  // namespace apps
