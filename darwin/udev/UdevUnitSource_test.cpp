#include "darwin/udev/UdevUnitSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>

// What this program's libudev and system answer; the linker puts these in the place of the real ones. Without a wish of
// the test the real one answers.
namespace {

struct Answers {
  std::optional<int> receiveFails;  // errno of a receive that brings nothing; 0 leaves errno as it was
  bool noContext = false;
  bool noMonitor = false;
  bool monitorCannotListen = false;
  bool udevRuns = true;
  bool addressFails = false;
  sa_family_t family = AF_NETLINK;
  std::uint32_t groups = 2;  // that of udev's messages
  int monitorsMade = 0;
};

Answers answers;

}  // namespace

extern "C" {
udev* __real_udev_new();
udev* __wrap_udev_new() {
  return answers.noContext ? nullptr : __real_udev_new();
}

udev_monitor* __real_udev_monitor_new_from_netlink(udev* context, const char* name);
udev_monitor* __wrap_udev_monitor_new_from_netlink(udev* context, const char* name) {
  ++answers.monitorsMade;
  return answers.noMonitor ? nullptr : __real_udev_monitor_new_from_netlink(context, name);
}

int __real_udev_monitor_enable_receiving(udev_monitor* monitor);
int __wrap_udev_monitor_enable_receiving(udev_monitor* monitor) {
  return answers.monitorCannotListen ? -EPERM : __real_udev_monitor_enable_receiving(monitor);
}

udev_device* __real_udev_monitor_receive_device(udev_monitor* monitor);
udev_device* __wrap_udev_monitor_receive_device(udev_monitor* monitor) {
  if (!answers.receiveFails) return __real_udev_monitor_receive_device(monitor);
  if (*answers.receiveFails != 0) errno = *answers.receiveFails;
  return nullptr;
}

int __wrap_getsockname(int, sockaddr* address, socklen_t* size) {
  if (answers.addressFails) return -1;
  sockaddr_nl found{};
  found.nl_family = answers.family;
  found.nl_groups = answers.groups;
  std::memcpy(address, &found, sizeof found);
  *size = sizeof found;
  return 0;
}

int __real_access(const char* path, int mode);
int __wrap_access(const char* path, int mode) {
  if (std::string(path) != "/run/udev/control") return __real_access(path, mode);
  return answers.udevRuns ? 0 : -1;
}
}

namespace darwin::udev {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class UdevUnitSourceTest : public testing::Test {
 protected:
  UdevUnitSourceTest() { answers = {}; }
};

TEST_F(UdevUnitSourceTest, AMonitorThatHasNothingHasNothing) {
  UdevUnitSource source;
  for (const int error : {EAGAIN, EINTR}) {
    answers.receiveFails = error;
    EXPECT_EQ(source.Receive().kind, Notice::Kind::kNothing) << error;
  }
  EXPECT_EQ(answers.monitorsMade, 1);
}

// Some versions of libudev give nothing for a message that is not for them and say nothing about it.
TEST_F(UdevUnitSourceTest, AnErrorOfAnEarlierCallIsNotTheMonitors) {
  UdevUnitSource source;
  answers.receiveFails = 0;
  errno = EIO;
  EXPECT_EQ(source.Receive().kind, Notice::Kind::kNothing);
  EXPECT_EQ(answers.monitorsMade, 1);
}

TEST_F(UdevUnitSourceTest, AFullQueueIsALossAndTheMonitorStays) {
  UdevUnitSource source;
  answers.receiveFails = ENOBUFS;
  EXPECT_EQ(source.Receive().kind, Notice::Kind::kLost);
  EXPECT_EQ(answers.monitorsMade, 1);
}

TEST_F(UdevUnitSourceTest, AMonitorThatFailsIsALossAndIsReplaced) {
  UdevUnitSource source;
  answers.receiveFails = EIO;
  EXPECT_EQ(source.Receive().kind, Notice::Kind::kLost);
  EXPECT_EQ(answers.monitorsMade, 2);
  EXPECT_GE(source.Descriptor(), 0);
}

TEST_F(UdevUnitSourceTest, WithoutAMonitorNothingIsReceivedAndTheReasonIsSaid) {
  for (bool Answers::*broken : {&Answers::noMonitor, &Answers::monitorCannotListen, &Answers::noContext}) {
    answers = {};
    answers.*broken = true;
    answers.receiveFails = EIO;
    UdevUnitSource source;
    EXPECT_EQ(source.Descriptor(), -1);
    EXPECT_EQ(source.Receive().kind, Notice::Kind::kNothing);
    EXPECT_THAT(source.WhyDeaf(), StartsWith("udev's monitor could not be started"));
  }
}

TEST_F(UdevUnitSourceTest, WithoutLibudevThereAreNoUnits) {
  answers.noContext = true;
  UdevUnitSource source;
  EXPECT_THAT(source.Enumerate(), IsEmpty());
  EXPECT_FALSE(source.Look("/devices"));
}

TEST_F(UdevUnitSourceTest, WhereUdevRunsCamerasAreNoticed) {
  EXPECT_EQ(UdevUnitSource().WhyDeaf(), "");
}

TEST_F(UdevUnitSourceTest, WhereUdevDoesNotRunTheReasonIsSaid) {
  answers.udevRuns = false;
  EXPECT_THAT(UdevUnitSource().WhyDeaf(), HasSubstr("No udev runs here"));
}

TEST_F(UdevUnitSourceTest, AMonitorThatWasMadeBeforeUdevRanHearsNothing) {
  answers.groups = 0;
  EXPECT_THAT(UdevUnitSource().WhyDeaf(), HasSubstr("No udev runs here"));
}

TEST_F(UdevUnitSourceTest, ASocketThatIsNotTheKernelsOrHasNoAddressSaysNothingAboutUdev) {
  answers.groups = 0;
  answers.family = AF_UNIX;
  EXPECT_EQ(UdevUnitSource().WhyDeaf(), "");
  answers.family = AF_NETLINK;
  answers.addressFails = true;
  EXPECT_EQ(UdevUnitSource().WhyDeaf(), "");
}

std::uint64_t KernelsSequence() {
  std::uint64_t sequence = 0;
  std::ifstream("/sys/kernel/uevent_seqnum") >> sequence;
  return sequence;
}

TEST_F(UdevUnitSourceTest, TheLatestSequenceIsTheKernels) {
  const std::uint64_t before = KernelsSequence();
  const std::uint64_t found = UdevUnitSource().LatestSequence();
  EXPECT_LE(before, found);
  EXPECT_LE(found, KernelsSequence());
}

}  // namespace
}  // namespace darwin::udev
