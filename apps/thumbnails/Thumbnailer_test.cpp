#include "apps/thumbnails/Thumbnailer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "apps/commandline/Failure.h"
#include "apps/decoder/testing/TinyJpeg.h"
#include "base/testing/ScratchFolder.h"
#include "platform/Processors.h"

namespace apps {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class ThumbnailerTest : public ::testing::Test {
 protected:
  /// A program that stands in for kelva-thumbnail.
  std::string Script(const std::string& line) const {
    const fs::path path = scratch_.Path() / "script";
    std::ofstream(path) << "#!/bin/sh\n" << line << "\n";
    ::chmod(path.c_str(), 0755);
    return path.string();
  }
  std::string ReasonOf(Thumbnailer& thumbnailer, std::chrono::milliseconds patience = std::chrono::seconds(60)) const {
    const DrawingOrReason answer = thumbnailer.Draw(picture_, stop_, patience);
    const auto* reason = std::get_if<std::string>(&answer);
    return reason == nullptr ? "drawn" : *reason;
  }
  std::string FailureOf(Thumbnailer& thumbnailer, std::chrono::milliseconds patience = std::chrono::seconds(60)) const {
    try {
      return "no failure: " + ReasonOf(thumbnailer, patience);
    } catch (const Failure& failure) {
      return failure.what();
    }
  }

  /// The processors that a process may use; empty where the system does not tell.
  static std::string Allowed(const std::string& path) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("Cpus_allowed_list:")) return line;
    }
    return "";
  }

  const base::ScratchFolder scratch_{};
  const std::string picture_ = TinyJpeg::File(1, {90});
  Stop stop_;
};

TEST_F(ThumbnailerTest, OneProcessDrawsManyPictures) {
  Thumbnailer thumbnailer;
  EXPECT_EQ(ReasonOf(thumbnailer), "drawn");
  const pid_t process = thumbnailer.Process();
  EXPECT_NE(process, 0);
  EXPECT_NE(std::get<std::string>(thumbnailer.Draw(std::string("no picture"), stop_)), "");
  EXPECT_EQ(ReasonOf(thumbnailer), "drawn");
  EXPECT_EQ(thumbnailer.Process(), process);
}

TEST_F(ThumbnailerTest, AKilledProcessCostsOnePictureAndIsReplaced) {
  Thumbnailer thumbnailer;
  EXPECT_EQ(ReasonOf(thumbnailer), "drawn");
  ::kill(thumbnailer.Process(), SIGKILL);
  EXPECT_EQ(ReasonOf(thumbnailer), "the process that draws it was killed by signal 9");
  EXPECT_EQ(thumbnailer.Process(), 0);
  EXPECT_EQ(ReasonOf(thumbnailer), "drawn");
}

TEST_F(ThumbnailerTest, AProcessThatAnswersNonsenseIsNotBelieved) {
  Thumbnailer thumbnailer(Script("printf KTHR0123456789abcdef >&0; sleep 60"));
  EXPECT_EQ(ReasonOf(thumbnailer), "the process that draws it answers in another language");
  EXPECT_EQ(thumbnailer.Process(), 0);
}

TEST_F(ThumbnailerTest, AProcessThatIsSilentIsEnded) {
  Thumbnailer thumbnailer(Script("printf KTHR >&0; exec sleep 60"));
  EXPECT_EQ(ReasonOf(thumbnailer, std::chrono::milliseconds(150)), "the process that draws it does not come to an end");
  EXPECT_EQ(thumbnailer.Process(), 0);
}

/// The start of a JPEG file.
std::vector<char> Start(const std::string& time) {
  const std::string bytes = "\xFF\xD8" + TinyJpeg::ExifPart(1, time);
  return {bytes.begin(), bytes.end()};
}

TEST_F(ThumbnailerTest, TheTimesOfManyPicturesComeInOneExchange) {
  Thumbnailer thumbnailer;
  TimeQuestions questions;
  for (int i = 10; i < 60; ++i) {
    std::vector<char> start = Start("2026:03:14 15:09:" + std::to_string(i));
    start.resize(65'536);
    questions.Add(i == 17 ? std::vector<char>(10, 'x') : start);
  }
  const auto times = thumbnailer.Times(questions, stop_);
  ASSERT_EQ(times.size(), 50U);
  for (std::size_t i = 0; i < times.size(); ++i) {
    EXPECT_EQ(times[i].value_or("none"), i == 7 ? "none" : "2026-03-14 15:09:" + std::to_string(10 + i));
  }
  EXPECT_EQ(ReasonOf(thumbnailer), "drawn") << "the same process goes on with pictures";
}

TEST_F(ThumbnailerTest, APictureThatEndsTheProcessCostsItsOwnTimeAlone) {
  // Answers one request, takes another and ends. Each request has 8 bytes and a start of 92.
  Thumbnailer thumbnailer(
      Script("printf KTHR >&0; dd bs=100 count=1 iflag=fullblock of=/dev/null 2>/dev/null; "
             "printf '2026-03-14 15:09:26' >&0; dd bs=100 count=1 iflag=fullblock of=/dev/null 2>/dev/null"));
  TimeQuestions questions;
  for (int i = 0; i < 4; ++i) questions.Add(std::vector<char>(92));
  const auto times = thumbnailer.Times(questions, stop_);
  ASSERT_EQ(times.size(), 4U);
  for (std::size_t i = 0; i < times.size(); ++i) EXPECT_EQ(times[i].has_value(), i % 2 == 0) << i;
}

TEST_F(ThumbnailerTest, AProcessThatIsSilentThreeTimesIsAFailureOfTheTimes) {
  Thumbnailer thumbnailer(Script("printf KTHR >&0; exec sleep 60"));
  TimeQuestions questions;
  for (int i = 0; i < 4; ++i) questions.Add(std::vector<char>(9));
  EXPECT_THROW(thumbnailer.Times(questions, stop_, std::chrono::milliseconds(150)), Failure);
  EXPECT_EQ(thumbnailer.Process(), 0);
}

TEST_F(ThumbnailerTest, ARequestToStopEndsTheWait) {
  Thumbnailer thumbnailer(Script("exec sleep 60"));
  stop_.Request();
  EXPECT_THROW(ReasonOf(thumbnailer), Stopped);
}

// The thread that reads a camera may have a processor of its own; what it starts would stay there.
TEST_F(ThumbnailerTest, TheProcessMayUseAllProcessors) {
  const auto count = platform::Processors().size();
  const platform::OwnProcessor own(count + 1);
  const std::string here = (scratch_.Path() / "allowed").string();
  Thumbnailer thumbnailer(Script("grep Cpus_allowed_list: /proc/self/status > '" + here + "'; exit 3"));
  EXPECT_THAT(FailureOf(thumbnailer), HasSubstr("give up its rights"));
  const platform::NoOwnProcessor none;
  EXPECT_EQ(Allowed(here), Allowed("/proc/thread-self/status"));
}

TEST_F(ThumbnailerTest, AProgramThatIsMissingIsAFailure) {
  Thumbnailer thumbnailer("/nonexistent/kelva-thumbnail");
  EXPECT_THAT(FailureOf(thumbnailer), HasSubstr("Cannot run /nonexistent/kelva-thumbnail"));
}

TEST_F(ThumbnailerTest, AProgramThatCannotConfineItselfIsAFailureAndNoDamagedPicture) {
  Thumbnailer thumbnailer(Script("exit 3"));
  EXPECT_THAT(FailureOf(thumbnailer), HasSubstr("give up its rights, so no picture was decoded; run kelva where"));
  EXPECT_EQ(thumbnailer.Process(), 0);
}

TEST_F(ThumbnailerTest, AProgramThatEndsBeforeItsFirstPictureIsAFailure) {
  Thumbnailer thumbnailer(Script("exit 127"));
  EXPECT_THAT(FailureOf(thumbnailer), HasSubstr("it ended with status 127; install kelva again"));
}

TEST_F(ThumbnailerTest, AProgramThatNeverBecomesReadyIsAFailure) {
  Thumbnailer thumbnailer(Script("exec sleep 60"));
  EXPECT_THAT(FailureOf(thumbnailer, std::chrono::milliseconds(150)), HasSubstr("it is silent; install kelva again"));
  EXPECT_EQ(thumbnailer.Process(), 0);
}

TEST_F(ThumbnailerTest, AProgramOfAnotherVersionIsAFailure) {
  Thumbnailer thumbnailer(Script("printf HTTP/1.1 >&0; exec sleep 60"));
  EXPECT_THAT(FailureOf(thumbnailer), HasSubstr("install both from one version"));
  EXPECT_EQ(thumbnailer.Process(), 0);
}

TEST_F(ThumbnailerTest, TheProgramLiesBesideTheToolOrWhereItIsInstalled) {
  const fs::path bin = scratch_.Path() / "bin";
  fs::create_directory(bin);
  EXPECT_TRUE(Thumbnailer::ProgramBeside((bin / "kelva").string()).ends_with("libexec/kelva/kelva-thumbnail"));
  const std::string beside = (bin / "kelva-thumbnail").string();
  std::ofstream(beside) << "";
  ::chmod(beside.c_str(), 0755);
  EXPECT_EQ(Thumbnailer::ProgramBeside((bin / "kelva").string()), beside);
}

}  // namespace
}  // namespace apps
