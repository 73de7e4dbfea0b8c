#include "vcam/usbip/ControlPipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::Return;
using ::testing::SizeIs;

class MockPipes : public ControlledPipes {
 public:
  MOCK_METHOD(void, ResetTransport, (), (override));
  MOCK_METHOD(void, ResetAll, (), (override));
  MOCK_METHOD(void, SetHalt, (std::uint8_t, bool), (override));
  MOCK_METHOD(bool, Halted, (std::uint8_t), (const, override));
};

class ControlPipeTest : public ::testing::Test {
 protected:
  std::optional<base::Bytes> Ask(const SetupPacket& setup) { return pipe_.Handle(setup, {}); }

  ::testing::StrictMock<MockPipes> pipes_;
  ControlPipe pipe_{{"Kelva", "Camera", "A7", Speed::kHigh}, pipes_};
};

TEST_F(ControlPipeTest, GivesNoMoreOfADescriptorThanWasAskedFor) {
  EXPECT_THAT(Ask({0x80, 6, 0, 1, 0, 0, 8, 0}), Optional(ElementsAre(18, 1, 0, 2, 0, 0, 0, 64)));
  EXPECT_THAT(Ask({0x80, 6, 0, 1, 0, 0, 64, 0}), Optional(SizeIs(18)));
}

TEST_F(ControlPipeTest, StallsADescriptorThatTheDeviceDoesNotHave) {
  EXPECT_EQ(Ask({0x80, 6, 0, 6, 0, 0, 10, 0}), std::nullopt);
}

TEST_F(ControlPipeTest, ChoosingAConfigurationResetsThePipes) {
  EXPECT_CALL(pipes_, ResetAll());
  EXPECT_THAT(Ask({0x00, 9, 1, 0, 0, 0, 0, 0}), Optional(IsEmpty()));
  EXPECT_TRUE(pipe_.Configured());
  EXPECT_THAT(Ask({0x80, 8, 0, 0, 0, 0, 1, 0}), Optional(ElementsAre(1)));
}

TEST_F(ControlPipeTest, StallsAConfigurationThatDoesNotExist) {
  EXPECT_EQ(Ask({0x00, 9, 2, 0, 0, 0, 0, 0}), std::nullopt);
  EXPECT_FALSE(pipe_.Configured());
}

TEST_F(ControlPipeTest, TellsThatThereIsOneLogicalUnit) {
  EXPECT_THAT(Ask({0xA1, 0xFE, 0, 0, 0, 0, 1, 0}), Optional(ElementsAre(0)));
}

TEST_F(ControlPipeTest, ResetsTheTransportOnRequest) {
  EXPECT_CALL(pipes_, ResetTransport());
  EXPECT_THAT(Ask({0x21, 0xFF, 0, 0, 0, 0, 0, 0}), Optional(IsEmpty()));
}

TEST_F(ControlPipeTest, StallsAResetForAnotherInterface) {
  EXPECT_EQ(Ask({0x21, 0xFF, 0, 0, 1, 0, 0, 0}), std::nullopt);
}

TEST_F(ControlPipeTest, ClearsAndReportsTheHaltOfAnEndpoint) {
  EXPECT_CALL(pipes_, SetHalt(0x81, false));
  EXPECT_THAT(Ask({0x02, 1, 0, 0, 0x81, 0, 0, 0}), Optional(IsEmpty()));
  EXPECT_CALL(pipes_, Halted(0x02)).WillOnce(Return(true));
  EXPECT_THAT(Ask({0x82, 0, 0, 0, 0x02, 0, 2, 0}), Optional(ElementsAre(1, 0)));
}

TEST_F(ControlPipeTest, StallsRequestsToAnEndpointThatDoesNotExist) {
  EXPECT_EQ(Ask({0x02, 1, 0, 0, 0x83, 0, 0, 0}), std::nullopt);
}

TEST_F(ControlPipeTest, TakesTheExitLatenciesOfSuperSpeed) {
  const base::Bytes latencies(6, 0);
  EXPECT_THAT(pipe_.Handle({0x00, 48, 0, 0, 0, 0, 6, 0}, latencies), Optional(IsEmpty()));
}

TEST_F(ControlPipeTest, StallsDataOfAnotherLengthThanAnnounced) {
  const base::Bytes latencies(5, 0);
  EXPECT_EQ(pipe_.Handle({0x00, 48, 0, 0, 0, 0, 6, 0}, latencies), std::nullopt);
}

TEST_F(ControlPipeTest, StallsAnOrderPutAsAQuestion) {
  EXPECT_EQ(Ask({0x80, 9, 1, 0, 0, 0, 0, 0}), std::nullopt);
}

TEST_F(ControlPipeTest, StallsVendorRequests) {
  EXPECT_EQ(Ask({0xC0, 6, 0, 1, 0, 0, 8, 0}), std::nullopt);
}

}  // namespace
}  // namespace vcam::usbip
