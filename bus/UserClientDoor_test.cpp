#include "bus/UserClientDoor.h"

#include <IOKit/IOReturn.h>
#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"
#include "wire/UserClientRecords.h"

namespace bus {
namespace {

class FakeSession : public CommandSession {
 public:
  struct Log {
    int start = kIOReturnSuccess;
    int ends = 0;
    wire::Reply reply;
    wire::Command command;
    base::Bytes data;
    std::chrono::milliseconds timeout{0};
  };
  explicit FakeSession(Log& log) : log_(log) {}
  int Start() override { return log_.start; }
  void End() override { ++log_.ends; }
  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) override {
    log_.command = command;
    log_.data.assign(command.data.begin(), command.data.end());
    log_.timeout = timeout;
    return log_.reply;
  }

 private:
  Log& log_;
};

class UserClientDoorTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(client_->CallScalar(0), kIOReturnSuccess); }

  int Transfer(std::uint8_t direction, std::int32_t length, void* buffer) {
    wire::UserClientTransferRequest request{};
    request.direction = direction;
    request.cdbLength = 16;
    request.cdb[0] = 0xC6;
    request.cdb[15] = 0x77;
    request.length = length;
    request.timeout = 100;
    request.bufferAddress = reinterpret_cast<std::uintptr_t>(buffer);
    std::size_t size = sizeof result_;
    return client_->CallStruct(2, &request, sizeof request, &result_, &size);
  }

  FakeSession::Log log_;
  std::unique_ptr<darwin::UserClient> client_ = MakeUserClient(std::make_unique<FakeSession>(log_));
  wire::UserClientTransferResult result_{};
};

TEST_F(UserClientDoorTest, PassesTheCommandOn) {
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnSuccess);
  EXPECT_EQ(log_.command.cdb[0], 0xC6);
  EXPECT_EQ(log_.command.cdb[15], 0x77);
  EXPECT_EQ(log_.timeout, std::chrono::seconds(100));
}

TEST_F(UserClientDoorTest, SendsTheCallersBytes) {
  std::array<char, 4> buffer{'a', 'b', 'c', 'd'};
  log_.reply.moved = 3;
  EXPECT_EQ(Transfer(1, 3, buffer.data()), kIOReturnSuccess);
  EXPECT_EQ(log_.data, (base::Bytes{'a', 'b', 'c'}));
  EXPECT_EQ(result_.actualLength, 3);
  EXPECT_EQ(result_.status, 0U);
}

TEST_F(UserClientDoorTest, WritesNoMoreThanWasAskedFor) {
  std::array<char, 4> buffer{'-', '-', '-', '-'};
  log_.reply.data = {'a', 'b', 'c', 'd'};
  log_.reply.moved = 4;
  EXPECT_EQ(Transfer(2, 2, buffer.data()), kIOReturnSuccess);
  EXPECT_EQ(std::string(buffer.data(), 4), "ab--");
  EXPECT_EQ(result_.actualLength, 4) << "what the camera claims";
}

TEST_F(UserClientDoorTest, TouchesNoMemoryWithoutADataPhase) {
  log_.reply.data = {'a'};
  // An address that nobody may read or write.
  for (const std::uint8_t direction : base::Bytes{0, 3, 255}) {
    EXPECT_EQ(Transfer(direction, 100, reinterpret_cast<void*>(8)), kIOReturnSuccess);
    EXPECT_EQ(log_.command.direction, wire::Direction::kNone);
    EXPECT_TRUE(log_.data.empty());
  }
}

TEST_F(UserClientDoorTest, DoesNotReadWhatTheCameraRefusesAnyway) {
  EXPECT_EQ(Transfer(1, 0x7FFFFFFF, reinterpret_cast<void*>(8)), kIOReturnSuccess);
  EXPECT_EQ(log_.command.length, 0x7FFFFFFFU);
  EXPECT_TRUE(log_.data.empty());
}

TEST_F(UserClientDoorTest, RefusesRequestsThatMakeNoSense) {
  EXPECT_EQ(Transfer(2, -1, this), kIOReturnBadArgument);
  EXPECT_EQ(Transfer(2, 4, nullptr), kIOReturnBadArgument);
  wire::UserClientTransferRequest request{};
  std::size_t size = sizeof result_;
  EXPECT_EQ(client_->CallStruct(2, &request, sizeof request, &result_, &size), kIOReturnBadArgument);
  EXPECT_EQ(client_->CallStruct(2, &request, 33, &result_, &size), kIOReturnBadArgument);
  EXPECT_EQ(client_->CallStruct(3, &request, sizeof request, &result_, &size), kIOReturnBadArgument);
  size = 7;
  EXPECT_EQ(client_->CallStruct(2, &request, sizeof request, &result_, &size), kIOReturnBadArgument);
  EXPECT_EQ(client_->CallScalar(2), kIOReturnBadArgument);
}

TEST_F(UserClientDoorTest, SaysARefusalInTheResultStatus) {
  log_.reply.status = wire::kScsiCheckCondition;
  log_.reply.sense = vcam::sense::kNotFound;
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnSuccess);
  EXPECT_EQ(result_.status, 0x01140502U);
}

TEST_F(UserClientDoorTest, SaysHowTheTransferEnded) {
  log_.reply.transport = wire::Transport::kStall;
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnSuccess);
  EXPECT_EQ(result_.status, 0x000007FFU);
  log_.reply.transport = wire::Transport::kHang;
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnTimeout);
  log_.reply.transport = wire::Transport::kGone;
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnNoDevice);
}

TEST_F(UserClientDoorTest, NeedsASession) {
  EXPECT_EQ(client_->CallScalar(0), kIOReturnExclusiveAccess) << "it has one";
  EXPECT_EQ(client_->CallScalar(1), kIOReturnSuccess);
  EXPECT_EQ(client_->CallScalar(1), kIOReturnNotOpen);
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnNotOpen);
  log_.start = kIOReturnExclusiveAccess;
  EXPECT_EQ(client_->CallScalar(0), kIOReturnExclusiveAccess);
  EXPECT_EQ(Transfer(0, 0, nullptr), kIOReturnNotOpen);
}

TEST_F(UserClientDoorTest, EndsItsSessionWithItself) {
  client_.reset();
  EXPECT_EQ(log_.ends, 1);
}

}  // namespace
}  // namespace bus
