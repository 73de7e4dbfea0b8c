#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

#include "MockMachine.h"
#include "vcam/device/TestSupport.h"

namespace mock {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

struct Ended {
  int code = 0;
  std::string output;
};

/// The tool as an unmodified process on a mock machine.
class ToolTest : public testing::Test {
 protected:
  static Ended Run(const std::string& arguments) {
    const std::string command = "LD_PRELOAD=" KELVA_UMOCKDEV_PRELOAD " " KELVA_PROGRAM " " + arguments + " 2>/dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    Ended ended;
    std::array<char, 4096> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), pipe))
      ended.output.append(part.data(), size);
    const int status = ::pclose(pipe);
    ended.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ended;
  }

  // Plugs a camera in that answers.
  void PlugCamera(const std::string& serial, int port) {
    machine_.Plug({.serial = serial, .port = port});
    machine_.Attach(port,
                    std::make_shared<SgDoor>(std::make_shared<vcam::VirtualCamera>(storage_.CameraOptions(serial))));
  }

  vcam::test::ScratchStorage storage_;
  MockMachine machine_;
};

TEST_F(ToolTest, AMachineWithoutACameraHasNone) {
  const Ended ended = Run("list");
  EXPECT_EQ(ended.code, 0);
  EXPECT_THAT(ended.output, IsEmpty());
}

TEST_F(ToolTest, EveryCameraOfTheMachineIsListed) {
  PlugCamera("K1", 0);
  PlugCamera("K2", 1);
  EXPECT_THAT(Run("list").output, AllOf(HasSubstr("K1"), HasSubstr("K2"), HasSubstr("Kelva Camera")));
}

TEST_F(ToolTest, ACommandReachesTheCameraThroughItsNode) {
  PlugCamera("K1", 0);
  const Ended ended = Run("--serial K1 battery");
  EXPECT_EQ(ended.code, 0);
  EXPECT_THAT(ended.output, HasSubstr("100"));
}

TEST_F(ToolTest, AFileArrivesByteForByte) {
  std::string content(200000, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 31 + i / 257);
  storage_.Put("F.BIN", content);
  PlugCamera("K1", 0);
  EXPECT_EQ(Run("get 'I:\\F.BIN' -o -").output, content);
}

TEST_F(ToolTest, ACameraThatIsNotThereHasItsOwnExitCode) {
  PlugCamera("K1", 0);
  EXPECT_EQ(Run("--serial K9 battery").code, 3);
}

TEST_F(ToolTest, TheDoctorFindsACameraWell) {
  PlugCamera("K1", 0);
  EXPECT_THAT(Run("doctor --json").output, AllOf(HasSubstr("\"well\""), HasSubstr("K1")));
}

TEST_F(ToolTest, TheDoctorNamesTheCommandThatLoadsAMissingDriver) {
  machine_.Plug({.serial = "K1", .upTo = Stage::kUnit});
  EXPECT_THAT(Run("doctor").output, HasSubstr("sudo modprobe sg"));
}

}  // namespace
}  // namespace mock
