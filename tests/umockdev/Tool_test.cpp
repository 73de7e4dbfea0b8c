#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "base/testing/ScratchFolder.h"
#include "tests/umockdev/MockMachine.h"
#include "vcam/camera/testing/TestSupport.h"

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
  static Ended Run(const std::string& arguments, const std::string& before = "") {
    const std::string command =
        "LD_PRELOAD=" KELVA_UMOCKDEV_PRELOAD " " + before + KELVA_PROGRAM " " + arguments + " 2>/dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    Ended ended;
    std::array<char, 4096> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), pipe)) {
      ended.output.append(part.data(), size);
    }
    const int status = ::pclose(pipe);
    ended.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ended;
  }

  // Plugs a camera in that answers.
  std::shared_ptr<SgDoor> PlugCamera(const std::string& serial, int port) {
    machine_.Plug({.serial = serial, .port = port});
    auto door = std::make_shared<SgDoor>(std::make_shared<vcam::VirtualCamera>(storage_.CameraOptions(serial)));
    machine_.Attach(port, door);
    return door;
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

TEST_F(ToolTest, ABusyCameraNamesItsHolder) {
  PlugCamera("K1", 0);
  const int node = ::open(MockMachine::NodeOf(0).c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(node, 0);
  ASSERT_EQ(::flock(node, LOCK_EX), 0);
  const Ended ended = Run("battery --json --wait-busy 0");
  EXPECT_EQ(ended.code, 4);
  const std::string holder = " (process " + std::to_string(::getpid()) + ")";
  EXPECT_THAT(ended.output, AllOf(HasSubstr("Camera K1 is held by "), HasSubstr(holder)));
  ::close(node);
  EXPECT_EQ(Run("battery").code, 0);
}

TEST_F(ToolTest, ABusyCameraIsWaitedFor) {
  PlugCamera("K1", 0);
  const int node = ::open(MockMachine::NodeOf(0).c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(node, 0);
  ASSERT_EQ(::flock(node, LOCK_EX), 0);
  auto waiting = std::async(std::launch::async, [] { return Run("battery"); });
  const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  struct flock place {};
  do {
    place = {};
    place.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(node, F_OFD_GETLK, &place), 0);
  } while (place.l_type == F_UNLCK && std::chrono::steady_clock::now() < until);
  EXPECT_EQ(place.l_type, F_RDLCK) << "the tool stands in line at the node";
  ::close(node);
  EXPECT_EQ(waiting.get().code, 0);
}

TEST_F(ToolTest, ManyProgramsShareACameraBesideASync) {
  for (int i = 1; i <= 40; ++i) {
    storage_.Put("DCIM/100ABCDE/IMG_00" + std::to_string(10 + i) + ".JPG", std::string(20'000, static_cast<char>(i)));
  }
  PlugCamera("K1", 0);
  const base::ScratchFolder target;
  std::vector<std::future<Ended>> runs;
  for (int i = 0; i < 11; ++i) {
    const std::string words = i == 0 ? "sync --verify " + target.Path().string() : "info";
    runs.push_back(std::async(std::launch::async, [words] { return Run(words); }));
  }
  for (std::future<Ended>& run : runs) EXPECT_EQ(run.get().code, 0);
  const std::filesystem::directory_iterator stored(target.Path() / "100ABCDE");
  EXPECT_EQ(std::distance(begin(stored), end(stored)), 40);
}

TEST_F(ToolTest, TheDoctorFindsACameraWell) {
  PlugCamera("K1", 0);
  EXPECT_THAT(Run("doctor --json").output, AllOf(HasSubstr("\"well\""), HasSubstr("K1")));
}

// Each state that the doctor knows, with the words and the command that a person sees.

TEST_F(ToolTest, TheDoctorSaysThatThereIsNoDevice) {
  const Ended ended = Run("doctor");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("No camera is attached to this machine."));
}

TEST_F(ToolTest, TheDoctorNamesTheCommandThatLoadsTheStorageDriver) {
  machine_.Plug({.serial = "K1", .upTo = Stage::kUsb});
  const Ended ended = Run("doctor");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("To mend it:  sudo modprobe usb-storage"));
}

TEST_F(ToolTest, TheDoctorNamesTheCommandThatLoadsTheGenericDriver) {
  machine_.Plug({.serial = "K1", .upTo = Stage::kUnit});
  const Ended ended = Run("doctor");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("To mend it:  sudo modprobe sg"));
}

TEST_F(ToolTest, TheDoctorNamesTheCommandThatGivesThePermission) {
  PlugCamera("K1", 0);
  machine_.SetUsable(0, false);
  const Ended ended = Run("doctor", "setpriv --bounding-set=-dac_override,-dac_read_search ");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("This user may not read and write /dev/sg0 (Permission denied)."));
  EXPECT_THAT(ended.output, testing::ContainsRegex("To mend it:  sudo (setfacl|usermod|udevadm)"));
}

TEST_F(ToolTest, TheDoctorNamesWhoHoldsTheCamera) {
  PlugCamera("K1", 0);
  const int node = ::open("/dev/sg0", O_RDWR | O_CLOEXEC);
  ASSERT_GE(node, 0);
  ASSERT_EQ(::flock(node, LOCK_EX | LOCK_NB), 0);
  const Ended ended = Run("doctor");
  ::close(node);
  EXPECT_EQ(ended.code, 1);
  const std::string process = std::to_string(::getpid());
  EXPECT_THAT(ended.output, HasSubstr(" (process " + process + ")"));
  EXPECT_THAT(ended.output, HasSubstr("To mend it:  kill " + process));
}

TEST_F(ToolTest, TheDoctorNamesTheDiscThatABadCameraShows) {
  machine_.Plug({.serial = "K1", .revision = "Q42", .peripheralType = 5, .port = 2, .disc = true});
  const Ended ended = Run("doctor");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("To mend it:  sudo eject /dev/sr2"));
}

TEST_F(ToolTest, TheDoctorNamesTheCommandThatPlugsASilentCameraInAgain) {
  constexpr int kHostTimeOut = 3;
  PlugCamera("K1", 0)->hostStatus = kHostTimeOut;
  const Ended ended = Run("doctor");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, AllOf(HasSubstr("The camera does not answer."), HasSubstr("/authorized")));
}

TEST_F(ToolTest, TheDoctorOfAMachineWithoutACameraFindsNone) {
  const Ended ended = Run("doctor --json");
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.output, HasSubstr("\"no-device\""));
}

/// The process that watches for the window, until this goes.
class WatchForWindow {
 public:
  WatchForWindow() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);  // the reading end is inherited
    said_ = ends[1];
    ::fcntl(said_, F_SETFD, FD_CLOEXEC);
    const std::string command = "LD_PRELOAD=" KELVA_UMOCKDEV_PRELOAD
                                " setpriv --bounding-set=-dac_override,-dac_read_search " KELVA_DESKTOP_WORKER
                                " watch 2>/dev/null </dev/fd/" +
                                std::to_string(ends[0]);
    pipe_ = ::popen(command.c_str(), "r");
    ::close(ends[0]);
  }
  ~WatchForWindow() {
    ::close(said_);
    ::pclose(pipe_);
  }
  WatchForWindow(const WatchForWindow&) = delete;
  WatchForWindow& operator=(const WatchForWindow&) = delete;

  /// The next event of this name; empty when it ended before.
  std::string Await(const std::string& event) const {
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe_) != nullptr) {
      if (std::string(line.data()).find("\"event\":\"" + event + "\"") != std::string::npos) return line.data();
    }
    return {};
  }

 private:
  FILE* pipe_ = nullptr;
  int said_ = -1;
};

TEST_F(ToolTest, TheWindowIsToldOfAMissingPermissionUntilItIsThere) {
  PlugCamera("K1", 0);
  machine_.SetUsable(0, false);
  const WatchForWindow watch;
  EXPECT_THAT(watch.Await("trouble"), AllOf(HasSubstr(R"("condition":"no-permission","harmless":false,"serial":"K1")"),
                                            HasSubstr(R"("command":"sudo )")));
  machine_.SetUsable(0, true);
  machine_.Change(0);
  EXPECT_THAT(watch.Await("attached"), HasSubstr(R"("serial":"K1")"));
  EXPECT_THAT(watch.Await("trouble"), HasSubstr(R"("findings":[])"));
}

}  // namespace
}  // namespace mock
