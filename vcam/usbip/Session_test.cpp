#include "vcam/usbip/Session.h"
#include "base/SendAll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <thread>

namespace vcam::usbip {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

constexpr std::uint32_t kDevice = 0x00010002;

// The host's messages, as a kernel writes them.
base::Bytes Message(std::uint8_t command, std::uint8_t sequence, bool in, std::uint8_t endpoint, std::uint8_t length) {
  base::Bytes bytes(48, 0);
  bytes[3] = command;
  bytes[7] = sequence;
  bytes[9] = 1;
  bytes[11] = 2;
  bytes[15] = in ? 1 : 0;
  bytes[19] = endpoint;
  bytes[27] = length;
  return bytes;
}

base::Bytes AskFour() {
  return {'U', 'S', 'B', 'C', 1, 0, 0, 0, 4, 0, 0, 0, 0x80, 0, 16, 0xC6, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}

base::Bytes Range(const base::Bytes& bytes, std::size_t begin, std::size_t size) {
  if (bytes.size() < begin + size) return {};
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  return {first, first + static_cast<std::ptrdiff_t>(size)};
}

class SessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    host_ = base::FileDescriptor(ends[0]);
    session_ = std::make_unique<Session>(base::FileDescriptor(ends[1]), kDevice, camera_);
  }
  void TearDown() override {
    host_.Reset();
    if (server_.joinable()) server_.join();
  }
  void Serve() {
    server_ = std::thread([this] {
      try {
        session_->Run();
      } catch (const ProtocolError&) {
        refused_ = true;
      }
      session_->Pull();
    });
  }
  void Send(const base::Bytes& message, const base::Bytes& body = {}) {
    ASSERT_TRUE(base::SendAll(host_.Get(), message, body));
  }
  base::Bytes Receive(std::size_t size) {
    base::Bytes bytes(size);
    return base::ReceiveAll(host_.Get(), bytes) ? bytes : base::Bytes{};
  }
  bool HasEnded() { return Receive(1).empty(); }
  void Configure() {
    base::Bytes configure = Message(1, 1, false, 0, 0);
    configure[41] = 9;
    configure[42] = 1;
    Send(configure);
    ASSERT_EQ(Receive(48).size(), 48U);
  }

  wire::Reply reply_{wire::Transport::kOk, wire::kScsiGood, {}, {1, 2, 3, 4}, 4, {}};
  UsbCamera camera_{{{"Kelva", "Camera", "A7", Speed::kHigh}, {}, [this](const wire::Command&) { return reply_; }, {}}};
  base::FileDescriptor host_;
  std::unique_ptr<Session> session_;
  std::thread server_;
  bool refused_ = false;
};

TEST_F(SessionTest, CarriesACommandFromWrapperToStatus) {
  Serve();
  Configure();
  Send(Message(1, 2, false, 2, 31), AskFour());
  EXPECT_THAT(Range(Receive(48), 0, 8), ElementsAre(0, 0, 0, 3, 0, 0, 0, 2));
  Send(Message(1, 3, true, 1, 4));
  const base::Bytes data = Receive(52);
  ASSERT_EQ(data.size(), 52U);
  EXPECT_THAT(std::span(data).last(4), ElementsAre(1, 2, 3, 4));
  Send(Message(1, 4, true, 1, 13));
  EXPECT_EQ(Receive(61).size(), 61U);
}

TEST_F(SessionTest, GivesTransfersBackThatTheHostNoLongerWants) {
  Serve();
  Configure();
  Send(Message(1, 2, true, 1, 13));
  base::Bytes unlink = Message(2, 3, false, 0, 0);
  unlink[23] = 2;
  Send(unlink);
  EXPECT_THAT(Range(Receive(48), 0, 24),
              ElementsAre(0, 0, 0, 4, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0x98));
  unlink[7] = 4;
  Send(unlink);
  EXPECT_THAT(Range(Receive(48), 20, 4), ElementsAre(0, 0, 0, 0));
}

TEST_F(SessionTest, AnswersASlowCommandInItsOwnTime) {
  reply_.delay = 10ms;
  Serve();
  Configure();
  Send(Message(1, 2, false, 2, 31), AskFour());
  Receive(48);
  Send(Message(1, 3, true, 1, 4));
  EXPECT_EQ(Receive(52).size(), 52U);
}

TEST_F(SessionTest, PullsTheCableInTheMiddleOfATransfer) {
  reply_.transport = wire::Transport::kGone;
  Serve();
  Configure();
  Send(Message(1, 2, false, 2, 31), AskFour());
  Receive(48);
  Send(Message(1, 3, true, 1, 64));
  const base::Bytes part = Receive(52);
  ASSERT_EQ(part.size(), 52U);
  EXPECT_EQ(part[27], 64);
  EXPECT_TRUE(HasEnded());
}

TEST_F(SessionTest, EndsWithAHostThatSpeaksAnotherLanguage) {
  Serve();
  Send(Message(9, 1, false, 0, 0));
  EXPECT_TRUE(HasEnded());
  server_.join();
  EXPECT_TRUE(refused_);
}

TEST_F(SessionTest, CanBePulledFromAnotherThread) {
  Serve();
  Configure();
  session_->Pull();
  EXPECT_TRUE(HasEnded());
  server_.join();
  EXPECT_FALSE(refused_);
}

}  // namespace
}  // namespace vcam::usbip
