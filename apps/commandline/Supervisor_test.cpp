#include "apps/commandline/Supervisor.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <semaphore>
#include <string>

#include "apps/commandline/Scratch.h"
#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

using namespace std::chrono_literals;
using testing::ExitedWithCode;

class SupervisorTest : public testing::Test {
 protected:
  SupervisorTest() { TakeOverSignals(); }

  std::string Said() const {
    std::array<char, 1024> buffer{};
    const ssize_t size = ::pread(page_.Get(), buffer.data(), buffer.size(), 0);
    return std::string(buffer.data(), static_cast<std::size_t>(size));
  }

  base::FileDescriptor page_{base::test::UnnamedFile()};
  Reporter reporter_{"kelva", page_.Get(), {}};
};

// Ends when it is asked to.
ExitCode Obedient(const Stop& stop) {
  std::counting_semaphore asked(0);
  const Stop::WakeUp wakeUp(stop, [&asked] { asked.release(); });
  while (!stop.Requested()) asked.acquire();
  stop.Check();
  return ExitCode::kDone;
}

// Sits in a transfer that nobody can end.
ExitCode Stuck(const Stop&) {
  while (true) ::pause();
}

TEST_F(SupervisorTest, TheResultOfTheWorkIsTheResult) {
  EXPECT_EQ(Supervise([](const Stop&) { return ExitCode::kPartial; }, {}, reporter_), ExitCode::kPartial);
  EXPECT_EQ(Said(), "");
}

TEST_F(SupervisorTest, WhatIsToBeSaidAtTheEndComesLast) {
  Supervision supervision{.timeout = 20ms};
  supervision.atEnd = [this](ExitCode code, const std::string& sentence) {
    EXPECT_EQ(code, ExitCode::kTimedOut);
    EXPECT_EQ(Said(), "kelva: " + sentence + "\n");
    reporter_.Note("end");
  };
  EXPECT_EQ(Supervise(Obedient, supervision, reporter_), ExitCode::kTimedOut);
  EXPECT_NE(Said().find("kelva: end\n"), std::string::npos);
}

TEST_F(SupervisorTest, TheDeadlineEndsTheWorkAndSaysSo) {
  EXPECT_EQ(Supervise(Obedient, {.timeout = 20ms}, reporter_), ExitCode::kTimedOut);
  EXPECT_EQ(Said(), "kelva: Timed out after 0.02 s; a longer --timeout gives the camera more time.\n");
}

TEST_F(SupervisorTest, TheMessageSaysWhatWasDoneSoFar) {
  Supervision supervision{.timeout = 20ms};
  supervision.soFar = [] { return "2 of 5 files stored; the same command goes on"; };
  Supervise(Obedient, supervision, reporter_);
  EXPECT_EQ(Said(), "kelva: Timed out after 0.02 s: 2 of 5 files stored; the same command goes on.\n");
}

TEST_F(SupervisorTest, ASignalEndsTheWorkAndSaysSo) {
  const auto work = [](const Stop& stop) {
    ::kill(::getpid(), SIGINT);
    return Obedient(stop);
  };
  EXPECT_EQ(Supervise(work, {}, reporter_), ExitCode::kInterrupted);
  EXPECT_EQ(Said(), "kelva: Stopped. Everything finished so far is kept.\n");
}

using SupervisorDeathTest = SupervisorTest;

TEST_F(SupervisorDeathTest, WorkThatCannotStopIsLeftAndItsFileRemoved) {
  const base::ScratchFolder scratch;
  const std::string folder = scratch.Path();
  std::ofstream(folder + "/part") << "half";
  EXPECT_EXIT(
      {
        TakeOverSignals();
        const base::FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY));
        const ScratchRecord record(dir.Get(), "part");
        Reporter reporter("kelva", STDERR_FILENO, {});
        Supervise(Stuck, {.timeout = 10ms, .grace = 10ms}, reporter);
      },
      ExitedWithCode(8), "Timed out after 0.01 s");
  EXPECT_FALSE(std::filesystem::exists(folder + "/part"));
}

}  // namespace
}  // namespace apps
