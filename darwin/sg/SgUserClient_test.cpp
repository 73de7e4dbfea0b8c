#include "darwin/sg/SgUserClient.h"

#include <IOKit/IOReturn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "darwin/sg/testing/ScriptedSystem.h"

namespace darwin::sg {
namespace {

using testing::Each;
using testing::HasSubstr;

class SgUserClientTest : public testing::Test {
 protected:
  SgUserClientTest()
      : client_(system_, {"/dev/sg3", [this] { return present_; },
                          [this](const std::string& sentence) { reported_ = sentence; }}) {
    buffer_.fill(0xEE);
  }

  wire::UserClientTransferRequest Request(std::uint8_t direction, std::int32_t length) {
    wire::UserClientTransferRequest request{};
    request.direction = direction;
    request.cdbLength = 16;
    request.cdb[0] = 0xC4;
    request.length = length;
    request.timeout = 100;
    request.bufferAddress = reinterpret_cast<std::uintptr_t>(buffer_.data());
    return request;
  }

  int Call(const wire::UserClientTransferRequest& request) {
    std::size_t size = sizeof result_;
    return client_.CallStruct(2, &request, sizeof request, &result_, &size);
  }

  // Fills the data the kernel was given, and ends the command with this residual.
  void AnswerWith(std::uint8_t byte, int residual) {
    system_.command = [=](sg_io_hdr_t& header) {
      if (header.dxfer_direction == SG_DXFER_FROM_DEV) std::memset(header.dxferp, byte, header.dxfer_len);
      header.resid = residual;
      return 0;
    };
  }

  ScriptedSystem system_;
  bool present_ = true;
  std::string reported_;
  SgUserClient client_;
  std::array<std::uint8_t, 64> buffer_;
  wire::UserClientTransferResult result_{0xAAAAAAAA, -1};
};

TEST_F(SgUserClientTest, ASessionIsStartedAndEnded) {
  EXPECT_EQ(client_.CallScalar(0), kIOReturnSuccess);
  EXPECT_EQ(system_.closed, 0);
  EXPECT_EQ(client_.CallScalar(1), kIOReturnSuccess);
  EXPECT_EQ(system_.closed, 1);
}

TEST_F(SgUserClientTest, ASecondStartIsRefusedAndLeavesTheSession) {
  client_.CallScalar(0);
  EXPECT_EQ(client_.CallScalar(0), kIOReturnExclusiveAccess);
  EXPECT_EQ(system_.opened.size(), 1U);
}

TEST_F(SgUserClientTest, EndingWhatIsNotStartedIsRefused) {
  EXPECT_EQ(client_.CallScalar(1), kIOReturnNotOpen);
}

TEST_F(SgUserClientTest, AnUnknownSelectorIsABadArgument) {
  EXPECT_EQ(client_.CallScalar(2), kIOReturnBadArgument);
  std::size_t size = 8;
  EXPECT_EQ(client_.CallStruct(3, &result_, 8, &result_, &size), kIOReturnBadArgument);
}

TEST_F(SgUserClientTest, AHeldCameraIsExclusive) {
  system_.lockError = EWOULDBLOCK;
  EXPECT_EQ(client_.CallScalar(0), kIOReturnExclusiveAccess);
}

TEST_F(SgUserClientTest, ANodeThatHasBecomeAnotherDeviceIsNotUsed) {
  present_ = false;
  EXPECT_EQ(client_.CallScalar(0), kIOReturnNoDevice);
  EXPECT_EQ(system_.closed, 1);
  EXPECT_EQ(Call(Request(2, 64)), kIOReturnNotOpen);
}

TEST_F(SgUserClientTest, WithoutASessionNothingIsSent) {
  EXPECT_EQ(Call(Request(0, 0)), kIOReturnNotOpen);
  EXPECT_EQ(system_.commands, 0);
}

// What the caller gets is the same whether the node's buffer can be mapped or not, for an answer of any size.
struct Landing {
  const char* name;
  bool mapsReserved;
  std::int32_t length;
  int overMapped;
};

class SgUserClientLandingTest : public SgUserClientTest, public testing::WithParamInterface<Landing> {
 protected:
  SgUserClientLandingTest() : chunk_(static_cast<std::size_t>(GetParam().length), 0xEE) {
    system_.mapsReserved = GetParam().mapsReserved;
    system_.largestTransfer = 1 << 20;
    client_.CallScalar(0);
  }

  int Read() {
    wire::UserClientTransferRequest request = Request(2, GetParam().length);
    request.bufferAddress = reinterpret_cast<std::uintptr_t>(chunk_.data());
    return Call(request);
  }

  std::vector<std::uint8_t> chunk_;
};

TEST_P(SgUserClientLandingTest, DataFromTheCameraReachTheCaller) {
  AnswerWith(0x11, 0);
  EXPECT_EQ(Read(), kIOReturnSuccess);
  EXPECT_EQ(result_.status, 0U);
  EXPECT_EQ(result_.actualLength, GetParam().length);
  EXPECT_THAT(chunk_, Each(0x11));
  EXPECT_EQ(system_.mappedCommands, GetParam().overMapped);
}

TEST_P(SgUserClientLandingTest, BytesBeyondTheResidualAreTheCallersOwn) {
  AnswerWith(0x11, GetParam().length - 4);
  EXPECT_EQ(Read(), kIOReturnSuccess);
  EXPECT_EQ(result_.actualLength, 4);
  EXPECT_THAT(std::span(chunk_).first(4), Each(0x11));
  EXPECT_THAT(std::span(chunk_).subspan(4), Each(0xEE));
}

TEST_P(SgUserClientLandingTest, NoByteOfAFailedTransportReachesTheCaller) {
  system_.command = [](sg_io_hdr_t& header) {
    std::memset(header.dxferp, 0x11, header.dxfer_len);
    header.host_status = 7;
    return 0;
  };
  EXPECT_EQ(Read(), kIOReturnSuccess);
  EXPECT_EQ(result_.status, 0x000007FFU);
  EXPECT_EQ(result_.actualLength, 0);
  EXPECT_THAT(chunk_, Each(0xEE));
}

TEST_P(SgUserClientLandingTest, AResidualThatMakesNoSenseBringsNoByte) {
  for (const int residual : {-1, GetParam().length + 1, std::numeric_limits<int>::min()}) {
    AnswerWith(0x11, residual);
    Read();
    EXPECT_THAT(chunk_, Each(0xEE)) << residual;
  }
}

INSTANTIATE_TEST_SUITE_P(Nodes, SgUserClientLandingTest,
                         testing::Values(Landing{"SmallAndMapped", true, 64, 1}, Landing{"SmallAndOwn", false, 64, 0},
                                         Landing{"ChunkAndMapped", true, 65536, 1},
                                         Landing{"ChunkAndOwn", false, 65536, 0},
                                         Landing{"AboveTheMapped", true, 65537, 0}),
                         [](const auto& landing) { return landing.param.name; });

TEST_F(SgUserClientTest, AnUnplugInTheMiddleOfACommandIsNoDevice) {
  client_.CallScalar(0);
  system_.hangsUp = true;
  system_.command = [](sg_io_hdr_t& header) {
    header.host_status = 7;
    return 0;
  };
  EXPECT_EQ(Call(Request(2, 64)), kIOReturnNoDevice);
}

TEST_F(SgUserClientTest, ASuccessfulCommandIsNotFollowedByALookForTheDevice) {
  client_.CallScalar(0);
  Call(Request(0, 0));
  EXPECT_EQ(system_.hangUpWaits, 0);
}

TEST_F(SgUserClientTest, DataToTheCameraAreTheCallersBytes) {
  client_.CallScalar(0);
  std::vector<std::uint8_t> sent;
  system_.command = [&](sg_io_hdr_t& header) {
    const auto* data = static_cast<const std::uint8_t*>(header.dxferp);
    sent.assign(data, data + header.dxfer_len);
    return 0;
  };
  EXPECT_EQ(Call(Request(1, 5)), kIOReturnSuccess);
  EXPECT_EQ(sent, (std::vector<std::uint8_t>{0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
  EXPECT_EQ(result_.actualLength, 5);
}

TEST_F(SgUserClientTest, OneByteIsATransfer) {
  client_.CallScalar(0);
  AnswerWith(0x11, 0);
  EXPECT_EQ(Call(Request(2, 1)), kIOReturnSuccess);
  EXPECT_EQ(result_.actualLength, 1);
  EXPECT_THAT(std::span(buffer_).first(1), Each(0x11));
  EXPECT_THAT(std::span(buffer_).subspan(1), Each(0xEE));
}

TEST_F(SgUserClientTest, WithoutADirectionNothingIsMovedWhateverTheLength) {
  client_.CallScalar(0);
  for (std::uint8_t direction : std::array<std::uint8_t, 3>{0, 3, 255}) {
    AnswerWith(0x11, 0);
    EXPECT_EQ(Call(Request(direction, 64)), kIOReturnSuccess);
    EXPECT_EQ(result_.actualLength, 0);
    EXPECT_THAT(buffer_, Each(0xEE));
  }
}

TEST_F(SgUserClientTest, TheTimeoutIsInSeconds) {
  client_.CallScalar(0);
  unsigned timeout = 0;
  system_.command = [&](sg_io_hdr_t& header) {
    timeout = header.timeout;
    return 0;
  };
  Call(Request(0, 0));
  EXPECT_EQ(timeout, 100000U);
}

TEST_F(SgUserClientTest, AnEnormousTimeoutDoesNotWrapRound) {
  client_.CallScalar(0);
  unsigned timeout = 0;
  system_.command = [&](sg_io_hdr_t& header) {
    timeout = header.timeout;
    return 0;
  };
  auto request = Request(0, 0);
  request.timeout = 0xFFFFFFFF;
  Call(request);
  EXPECT_GT(timeout, 4294000000U);
  EXPECT_LT(timeout, 0xFFFFFFFFU);  // which would be for ever
}

TEST_F(SgUserClientTest, AChunkAboveTheLimitOfTheNodeIsRefusedWithAReason) {
  system_.largestTransfer = 32;
  client_.CallScalar(0);
  EXPECT_EQ(Call(Request(2, 33)), kIOReturnMessageTooLarge);
  EXPECT_EQ(system_.commands, 0);
  EXPECT_THAT(reported_, HasSubstr("asked for 33 bytes, but /dev/sg3 carries at most 32"));
}

TEST_F(SgUserClientTest, AChunkOfExactlyTheLimitIsCarried) {
  system_.largestTransfer = 32;
  client_.CallScalar(0);
  EXPECT_EQ(Call(Request(2, 32)), kIOReturnSuccess);
}

TEST_F(SgUserClientTest, ARequestThatMakesNoSenseIsABadArgument) {
  client_.CallScalar(0);
  EXPECT_EQ(Call(Request(2, -1)), kIOReturnBadArgument);
  auto request = Request(2, 8);
  request.bufferAddress = 0;
  EXPECT_EQ(Call(request), kIOReturnBadArgument);
  request = Request(0, 0);
  request.cdbLength = 17;
  EXPECT_EQ(Call(request), kIOReturnBadArgument);
  EXPECT_EQ(system_.commands, 0);
}

TEST_F(SgUserClientTest, RecordsOfAnotherSizeAreABadArgument) {
  client_.CallScalar(0);
  const auto request = Request(0, 0);
  std::size_t size = 8;
  EXPECT_EQ(client_.CallStruct(2, &request, 33, &result_, &size), kIOReturnBadArgument);
  size = 7;
  EXPECT_EQ(client_.CallStruct(2, &request, 34, &result_, &size), kIOReturnBadArgument);
}

TEST_F(SgUserClientTest, ALargerRoomIsFilledAsFarAsTheResultGoes) {
  client_.CallScalar(0);
  const auto request = Request(0, 0);
  std::array<std::uint8_t, 16> room{};
  std::size_t size = room.size();
  EXPECT_EQ(client_.CallStruct(2, &request, sizeof request, room.data(), &size), kIOReturnSuccess);
  EXPECT_EQ(size, 8U);
}

TEST_F(SgUserClientTest, AnErrorLeavesTheResultUntouched) {
  client_.CallScalar(0);
  system_.command = [](sg_io_hdr_t&) { return ScriptedSystem::Fail(ENODEV); };
  EXPECT_EQ(Call(Request(0, 0)), kIOReturnNoDevice);
  EXPECT_EQ(result_.status, 0xAAAAAAAAU);
}

}  // namespace
}  // namespace darwin::sg
