#include "src/ui/linux/KelvaHelper/opener/CameraFolders.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <filesystem>
#include <fstream>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"
#include "src/ui/linux/KelvaHelper/opener/testing/ScratchDesktop.h"
#include "src/ui/linux/KelvaHelper/opener/testing/ScratchNotifications.h"

namespace opener {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kTest[] = "x-content/kelva-test";
constexpr char kRefused[] = "x-content/kelva-refused";
constexpr char kNothing[] = "x-content/kelva-nothing";
constexpr char kNewFolder[] = R"(echo '{"event":"mounted","path":"/a","serial":"K1","was_mounted":false}')";
constexpr char kOldFolder[] = R"(echo '{"event":"mounted","path":"/b","serial":"K2","was_mounted":true}')";

class CameraFoldersTest : public testing::Test {
 protected:
  CameraFoldersTest() { ::setenv("XDG_RUNTIME_DIR", "/nonexistent", 1); }

  /// Shows what a stand-in of kelva-mount, this shell script, says that it mounted.
  int Show(const std::string& script, std::vector<const char*> contentTypes) {
    const std::filesystem::path path = scratch_.Path() / "kelva-mount";
    std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int code =
        CameraFolders(MountProgram(path), messages_.Connection(), std::move(contentTypes), std::chrono::seconds(1))
            .Show("");
    output_ = testing::internal::GetCapturedStdout();
    errors_ = testing::internal::GetCapturedStderr();
    return code;
  }

  const ScratchDesktop& desktop_ = ScratchDesktop::Get();
  const base::ScratchFolder scratch_;
  const ScratchNotifications messages_;
  std::string output_;
  std::string errors_;
};

TEST_F(CameraFoldersTest, FolderThatIsNewIsOpened) {
  EXPECT_EQ(Show(kNewFolder, {kTest}), 0);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a");
  EXPECT_EQ(output_, "kelva-open: Mounted camera K1 on /a and started Stand-in there.\n");
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(messages_.Message(), "");
}

TEST_F(CameraFoldersTest, FolderThatWasThereBeforeIsNot) {
  EXPECT_EQ(Show(kOldFolder, {kTest}), 0);
  EXPECT_THAT(output_, HasSubstr("nothing was opened"));
}

TEST_F(CameraFoldersTest, ProgramForTheNextTypeIsTakenWhenTheFirstHasNoneOrFails) {
  EXPECT_EQ(Show(kNewFolder, {kNothing, kTest}), 0);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a");
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(Show(kNewFolder, {kRefused, kTest}), 0);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a");
  EXPECT_THAT(errors_, StartsWith("kelva-open: Stand-in could not be started on /a: "));
}

TEST_F(CameraFoldersTest, WithoutAnyProgramAMessageSaysWhatToInstall) {
  EXPECT_EQ(Show(kNewFolder, {kNothing}), 3);
  EXPECT_THAT(errors_,
              StartsWith("kelva-open: Camera K1 is the folder /a, and no installed program opens it. Install "));
  EXPECT_EQ(std::count(errors_.begin(), errors_.end(), '\n'), 1);
  EXPECT_THAT(messages_.Message(), HasSubstr("Camera K1 is the folder /a"));
}

TEST_F(CameraFoldersTest, CameraThatCannotBeMountedIsOneLineAndAMessage) {
  EXPECT_EQ(Show(R"(echo '{"event":"error","message":"No permission."}' >&2; exit 4)", {kTest}), 1);
  EXPECT_EQ(errors_, "kelva-open: A camera was attached, and could not be mounted: No permission.\n");
  EXPECT_THAT(messages_.Message(), HasSubstr("could not be mounted: No permission."));
}

TEST_F(CameraFoldersTest, AnotherCameraThatCannotBeMountedBothersNobodyButTheJournal) {
  EXPECT_EQ(Show(std::string(kNewFolder) + "; exit 4", {kTest}), 1);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a");
  EXPECT_EQ(
      errors_,
      "kelva-open: A camera was attached, and could not be mounted: kelva-mount ended with 4 and said nothing.\n");
  EXPECT_EQ(messages_.Message(), "");
}

TEST_F(CameraFoldersTest, AnotherOpenerIsNotWaitedForWithoutEnd) {
  ::setenv("XDG_RUNTIME_DIR", scratch_.Path().c_str(), 1);
  const base::FileDescriptor other(::open((scratch_.Path() / "kelva-open.lock").c_str(), O_RDWR | O_CREAT, 0600));
  ASSERT_EQ(::flock(other.Get(), LOCK_EX), 0);
  EXPECT_EQ(Show(kNewFolder, {kTest}), 0);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "/a");
  EXPECT_THAT(errors_, StartsWith("kelva-open: Another kelva-open has been mounting cameras for 1 seconds"));
}

}  // namespace
}  // namespace opener
