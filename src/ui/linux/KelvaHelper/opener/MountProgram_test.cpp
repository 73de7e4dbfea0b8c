#include "src/ui/linux/KelvaHelper/opener/MountProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "base/testing/ScratchFolder.h"

namespace opener {
namespace {

class MountProgramTest : public testing::Test {
 protected:
  /// A stand-in of the program, which is this shell script.
  MountProgram StandIn(const std::string& text) const {
    const std::filesystem::path path = scratch_.Path() / "kelva-mount";
    std::ofstream(path) << "#!/bin/sh\n" << text << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return MountProgram::Beside(scratch_.Path() / "kelva-open");
  }

  std::string MountAll(const MountProgram& program, const std::string& virtualBus = "") {
    testing::internal::CaptureStderr();
    std::string reason = program.MountAll(virtualBus, [this](const Mounted& camera) { mounted_.push_back(camera); });
    errors_ = testing::internal::GetCapturedStderr();
    return reason;
  }

  const base::ScratchFolder scratch_;
  std::vector<Mounted> mounted_;
  std::string errors_;
};

TEST_F(MountProgramTest, LiesBesideTheOpener) {
  EXPECT_FALSE(MountProgram::Beside(scratch_.Path() / "kelva-open").IsInstalled());
  EXPECT_TRUE(StandIn("exit 0").IsInstalled());
}

TEST_F(MountProgramTest, EachCameraIsReportedWhileItStillRuns) {
  // The script goes on only when the first camera was reported.
  const std::string gate = scratch_.Path() / "gate";
  const MountProgram program = StandIn(
      "echo '{\"event\":\"mounted\",\"path\":\"/a\",\"serial\":\"K1\",\"was_mounted\":true}'\n"
      "while [ ! -e " +
      gate +
      " ]; do sleep 0.01; done\n"
      "echo '{\"event\":\"mounted\",\"path\":\"/b\",\"serial\":\"K2\",\"was_mounted\":false}'");
  const std::string reason = program.MountAll("", [&](const Mounted& camera) {
    mounted_.push_back(camera);
    std::ofstream(gate) << "go";
  });
  EXPECT_EQ(reason, "");
  ASSERT_EQ(mounted_.size(), 2U);
  EXPECT_EQ(mounted_[0].path, "/a");
  EXPECT_TRUE(mounted_[0].before);
  EXPECT_EQ(mounted_[1].serial, "K2");
  EXPECT_FALSE(mounted_[1].before);
}

TEST_F(MountProgramTest, IsAskedForEveryCameraOfTheMachineOrOfTheBus) {
  const MountProgram program = StandIn("echo \"$*\" >&2");
  MountAll(program);
  EXPECT_EQ(errors_, "--all --json\n");
  MountAll(program, "/a bus");
  EXPECT_EQ(errors_, "--all --json --virtual /a bus\n");
}

TEST_F(MountProgramTest, LastErrorIsTheReason) {
  EXPECT_EQ(MountAll(StandIn("echo '{\"event\":\"error\",\"exit\":4,\"message\":\"No permission.\"}' >&2; exit 4")),
            "No permission.");
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(MountAll(StandIn("echo 'kelva-mount: No permission.' >&2; exit 4")), "kelva-mount: No permission.");
}

TEST_F(MountProgramTest, WhatIsNoEventGoesToStandardError) {
  EXPECT_EQ(MountAll(StandIn("echo 'a remark'")), "");
  EXPECT_EQ(errors_, "a remark\n");
}

TEST_F(MountProgramTest, EndWithoutAWordIsToldByItsNumber) {
  EXPECT_EQ(MountAll(StandIn("exit 3")), "kelva-mount ended with 3 and said nothing.");
  EXPECT_EQ(MountAll(StandIn("kill -9 $$")), "kelva-mount died of signal 9.");
}

TEST_F(MountProgramTest, ProgramThatHangsIsEndedAndSaid) {
  StandIn(R"(echo '{"event":"mounted","path":"/a","serial":"K1","was_mounted":false}'; exec sleep 60)");
  const MountProgram program(scratch_.Path() / "kelva-mount", std::chrono::seconds(1));
  EXPECT_EQ(MountAll(program),
            "kelva-mount said nothing for 1 seconds and was ended; unplug the camera and plug it in again.");
  EXPECT_EQ(mounted_.size(), 1U);
}

TEST_F(MountProgramTest, LastLineNeedsNoEnd) {
  EXPECT_EQ(MountAll(StandIn("printf 'a remark\\nand one more'")), "");
  EXPECT_EQ(errors_, "a remark\nand one more\n");
}

TEST_F(MountProgramTest, ProgramThatCannotBeRunIsTheReason) {
  EXPECT_NE(MountAll(MountProgram("/nonexistent/kelva-mount")).find("No such file"), std::string::npos);
}

}  // namespace
}  // namespace opener
