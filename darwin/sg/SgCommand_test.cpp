#include "darwin/sg/SgCommand.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <csignal>
#include <cstring>

#include "darwin/sg/testing/ScriptedSystem.h"

namespace darwin::sg {
namespace {

constexpr std::array<std::uint8_t, 16> kCdb{0xC4, 0, 1, 0, 0, 1};

class SgCommandTest : public testing::Test {
 protected:
  SgOutcome Run(const SgRequest& request) { return RunCommand(system_, ScriptedSystem::kDescriptor, request); }

  SgRequest Read(std::uint32_t length) { return {kCdb, DataPhase::kFromDevice, buffer_.data(), length, 100000}; }

  ScriptedSystem system_;
  std::array<std::uint8_t, 64> buffer_{};
};

TEST_F(SgCommandTest, TheKernelIsAskedForOneCommandAsGiven) {
  sg_io_hdr_t seen{};
  std::array<std::uint8_t, 16> cdb{};
  system_.command = [&](sg_io_hdr_t& header) {
    seen = header;
    std::memcpy(cdb.data(), header.cmdp, cdb.size());
    return 0;
  };
  Run(Read(64));
  EXPECT_EQ(seen.interface_id, 'S');
  EXPECT_EQ(seen.dxfer_direction, SG_DXFER_FROM_DEV);
  EXPECT_EQ(seen.cmd_len, 16);
  EXPECT_EQ(seen.dxfer_len, 64U);
  EXPECT_EQ(seen.dxferp, buffer_.data());
  EXPECT_EQ(seen.timeout, 100000U);
  EXPECT_EQ(seen.flags, 0U);  // indirect: over the kernel's reserved buffer
  EXPECT_EQ(cdb, kCdb);
  EXPECT_EQ(system_.commands, 1);
}

TEST_F(SgCommandTest, ACommandOverTheMappedBufferCarriesTheFlagAndNoAddress) {
  system_.reserved = 65536;
  system_.Map(ScriptedSystem::kDescriptor, 65536);
  unsigned flags = 0;
  system_.command = [&](sg_io_hdr_t& header) {
    flags = header.flags;
    return 0;
  };
  SgRequest request{kCdb, DataPhase::kFromDevice, nullptr, 64, 100000};
  request.intoMapped = true;
  EXPECT_EQ(Run(request).error, 0);  // an address would make the kernel copy the data there as well
  EXPECT_EQ(flags, 4U);
}

TEST_F(SgCommandTest, EachDataPhaseHasItsDirection) {
  std::vector<int> directions;
  system_.command = [&](sg_io_hdr_t& header) {
    directions.push_back(header.dxfer_direction);
    return 0;
  };
  Run({kCdb, DataPhase::kNone, nullptr, 0, 1000});
  Run({kCdb, DataPhase::kToDevice, buffer_.data(), 4, 1000});
  Run({kCdb, DataPhase::kFromDevice, buffer_.data(), 4, 1000});
  EXPECT_EQ(directions, (std::vector<int>{SG_DXFER_NONE, SG_DXFER_TO_DEV, SG_DXFER_FROM_DEV}));
}

TEST_F(SgCommandTest, MovedIsAskedMinusResidual) {
  system_.command = [](sg_io_hdr_t& header) {
    header.resid = 24;
    return 0;
  };
  EXPECT_EQ(Run(Read(64)).moved, 40);
}

TEST_F(SgCommandTest, TheMarkThatThereIsSenseDataIsNoDriverError) {
  system_.command = [](sg_io_hdr_t& header) {
    header.driver_status = 8;
    return 0;
  };
  EXPECT_TRUE(Run(Read(64)).Succeeded(64));
}

TEST_F(SgCommandTest, ADriverErrorStaysOneBesideThatMark) {
  for (const std::uint16_t status : std::array<std::uint16_t, 2>{1, 9}) {
    system_.command = [status](sg_io_hdr_t& header) {
      header.driver_status = status;
      return 0;
    };
    EXPECT_EQ(Run(Read(64)).driverStatus, 1);
  }
}

TEST_F(SgCommandTest, OnlySenseBytesThatWereWrittenAreRead) {
  system_.command = [](sg_io_hdr_t& header) {
    const std::array<std::uint8_t, 14> sense{0x70, 0, 5, 0, 0, 0, 0, 6, 0, 0, 0, 0, 0x20, 0};
    std::memcpy(header.sbp, sense.data(), sense.size());
    header.sb_len_wr = 8;
    header.status = 2;
    return 0;
  };
  const SgOutcome outcome = Run(Read(64));
  EXPECT_EQ(outcome.sense.key, 5);
  EXPECT_EQ(outcome.sense.asc, 0);
}

TEST_F(SgCommandTest, AFailedCallSaysNothingButItsError) {
  system_.command = [](sg_io_hdr_t& header) {
    header.status = 2;
    return ScriptedSystem::Fail(ENODEV);
  };
  const SgOutcome outcome = Run(Read(64));
  EXPECT_EQ(outcome.error, ENODEV);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_FALSE(outcome.Succeeded(64));
}

TEST_F(SgCommandTest, EverySignalIsHeldBackDuringTheCommandAndNoLonger) {
  sigset_t during;
  system_.command = [&](sg_io_hdr_t&) { return pthread_sigmask(SIG_BLOCK, nullptr, &during); };
  Run(Read(64));
  for (int signal : {SIGALRM, SIGINT, SIGTERM, SIGCHLD, SIGPROF, SIGUSR1, SIGHUP}) {
    EXPECT_TRUE(sigismember(&during, signal)) << signal;
  }
  sigset_t after;
  pthread_sigmask(SIG_BLOCK, nullptr, &after);
  EXPECT_FALSE(sigismember(&after, SIGALRM));
}

TEST(SgOutcomeTest, AResidualBeyondTheLengthOrBelowNothingIsNoSuccess) {
  SgOutcome outcome;
  outcome.moved = -1;
  EXPECT_FALSE(outcome.Succeeded(64));
  outcome.moved = 65;
  EXPECT_FALSE(outcome.Succeeded(64));
  outcome.moved = 64;
  EXPECT_TRUE(outcome.Succeeded(64));
}

}  // namespace
}  // namespace darwin::sg
