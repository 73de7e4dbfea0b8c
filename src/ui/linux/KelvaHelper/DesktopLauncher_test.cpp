#include "src/ui/linux/KelvaHelper/DesktopLauncher.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "base/testing/ScratchFolder.h"

namespace helper {
namespace {

class DesktopLauncherTest : public testing::Test {
 protected:
  std::filesystem::path WriteProgram(const std::string& name, const std::string& text) {
    const std::filesystem::path path = folder_ / name;
    std::ofstream(path) << "#!/bin/sh\n" << text << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  const base::ScratchFolder scratch_;
  const std::filesystem::path folder_ = scratch_.Path();
};

TEST_F(DesktopLauncherTest, OpenerBesideTheAgentIsPreferred) {
  const std::filesystem::path opener = WriteProgram("kelva-open", "exit 0");
  EXPECT_EQ(OpenerBeside(folder_ / "kelva-helper"), opener);
}

TEST_F(DesktopLauncherTest, WithoutOneBesideTheInstalledPlaceIsTaken) {
  EXPECT_EQ(OpenerBeside(folder_ / "kelva-helper"), folder_.string() + "/" KELVA_OPENER_FROM_PROGRAM);
}

TEST_F(DesktopLauncherTest, AFileThatCannotBeRunIsNoOpener) {
  std::ofstream(folder_ / "kelva-open") << "text";
  EXPECT_EQ(OpenerBeside(folder_ / "kelva-helper"), folder_.string() + "/" KELVA_OPENER_FROM_PROGRAM);
}

TEST_F(DesktopLauncherTest, OwnProgramIsThisTest) {
  EXPECT_TRUE(std::filesystem::equivalent(OwnProgram(), "/proc/self/exe"));
}

TEST_F(DesktopLauncherTest, OpenerIsToldTheDesktopIdAndTheBus) {
  // Opening the named pipe for reading waits for the opener.
  const std::filesystem::path pipe = folder_ / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::filesystem::path opener = WriteProgram("opener", "echo \"$# $*\" > " + pipe.string());
  for (const auto& [bus, words] : {std::pair<std::string, std::string>{"", "1 " KELVA_DESKTOP_ID},
                                   {"/a bus", "3 " KELVA_DESKTOP_ID " --virtual /a bus"}}) {
    UseOpener(opener, bus);
    LaunchDesktopApplication();
    std::string line;
    std::getline(std::ifstream(pipe) >> std::ws, line);
    EXPECT_EQ(line, words);
    EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
  }
}

TEST_F(DesktopLauncherTest, MissingOpenerIsOneLineThatSaysWhatToDo) {
  UseOpener("/nonexistent/kelva-open", "");
  testing::internal::CaptureStderr();
  LaunchDesktopApplication();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kelva-helper: A camera was attached, but /nonexistent/kelva-open cannot be run (No such file or "
            "directory), so " KELVA_DESKTOP_ID " was not started; install this program again.\n");
}

}  // namespace
}  // namespace helper
