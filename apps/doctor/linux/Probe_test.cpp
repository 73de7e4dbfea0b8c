#include "apps/doctor/linux/Probe.h"

#include <gtest/gtest.h>
#include <scsi/sg.h>

#include <cerrno>
#include <cstring>
#include <functional>

namespace apps::doctor {
namespace {

/// A kernel with one node whose camera answers as the test says.
class OneNode : public darwin::sg::SgSystem {
 public:
  std::function<int(sg_io_hdr_t&)> command = [](sg_io_hdr_t&) { return 0; };
  bool locked = false;

  int Open(const char*) override { return 7; }
  void Close(int) override {}
  int Lock(int) override { return locked ? Fail(EWOULDBLOCK) : 0; }
  int Ioctl(int, unsigned long request, void* argument) override {
    return request == SG_IO ? command(*static_cast<sg_io_hdr_t*>(argument)) : Fail(ENOTTY);
  }
  void* Map(int, std::size_t) override { return nullptr; }
  void Unmap(void*, std::size_t) override {}
  bool WaitForHangUp(int, int) override { return false; }

 private:
  static int Fail(int error) {
    errno = error;
    return -1;
  }
};

TEST(ProbeTest, ItAsksForTheReadyStateAndWaitsFiveSeconds) {
  OneNode node;
  std::array<std::uint8_t, 16> cdb{};
  node.command = [&](sg_io_hdr_t& header) {
    std::memcpy(cdb.data(), header.cmdp, cdb.size());
    EXPECT_EQ(header.timeout, 5000U);
    EXPECT_EQ(header.dxfer_len, 4U);
    return 0;
  };
  EXPECT_EQ(AskCamera("/dev/sg3", node), Answer::kAnswers);
  EXPECT_EQ(cdb, (std::array<std::uint8_t, 16>{0xC6, 0, 0x04}));
}

TEST(ProbeTest, ATimeOutIsSilence) {
  OneNode node;
  node.command = [](sg_io_hdr_t& header) {
    header.host_status = 3;
    return 0;
  };
  EXPECT_EQ(AskCamera("/dev/sg3", node), Answer::kSilent);
}

TEST(ProbeTest, ARefusalIsAFailure) {
  OneNode node;
  node.command = [](sg_io_hdr_t& header) {
    header.status = 2;
    return 0;
  };
  EXPECT_EQ(AskCamera("/dev/sg3", node), Answer::kFails);
}

TEST(ProbeTest, ALockedNodeIsNotAsked) {
  OneNode node;
  node.locked = true;
  EXPECT_EQ(AskCamera("/dev/sg3", node), Answer::kNotAsked);
}

}  // namespace
}  // namespace apps::doctor
