#include "vcam/usbip/Handshake.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "vcam/usbip/Messages.h"

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Head = std::array<std::uint8_t, kRequestSize>;
using BusId = std::array<std::uint8_t, kBusIdSize>;

Offer Sample() {
  return {"1-1", 1, 2, Speed::kSuper, 0x1209, 0x0001, 0x0100};
}

TEST(DecodeRequest, TellsListFromImport) {
  EXPECT_EQ(DecodeRequest(Head{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0}), Request::kListDevices);
  EXPECT_EQ(DecodeRequest(Head{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0}), Request::kImportDevice);
}

TEST(DecodeRequest, RefusesAnotherVersion) {
  EXPECT_THROW(DecodeRequest(Head{0x01, 0x06, 0x80, 0x05, 0, 0, 0, 0}), ProtocolError);
}

TEST(DecodeRequest, RefusesAnUnknownQuestion) {
  EXPECT_THROW(DecodeRequest(Head{0x01, 0x11, 0x80, 0x04, 0, 0, 0, 0}), ProtocolError);
}

TEST(DecodeBusId, ReadsUpToTheNul) {
  EXPECT_EQ(DecodeBusId(BusId{'1', '-', '1', 0, 'x'}), "1-1");
}

TEST(DecodeBusId, RefusesAFieldWithoutNul) {
  BusId field;
  field.fill('1');
  EXPECT_THROW(DecodeBusId(field), ProtocolError);
}

TEST(DecodeBusId, RefusesBytesOfAPath) {
  EXPECT_THROW(DecodeBusId(BusId{'.', '.', '/', 0}), ProtocolError);
}

TEST(EncodeImport, DescribesTheDeviceIn320Bytes) {
  const base::Bytes answer = EncodeImport(Outcome::kOk, Sample());
  ASSERT_EQ(answer.size(), 320U);
  EXPECT_THAT(std::span(answer).first(8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 0));
  EXPECT_THAT(std::span(answer).subspan(8 + 256, 4), ElementsAre('1', '-', '1', 0));
  EXPECT_THAT(std::span(answer).last(24),
              ElementsAreArray({0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 5, 0x12, 0x09, 0, 1, 1, 0, 0, 0, 0, 1, 1, 1}));
}

TEST(EncodeImport, RefusesInEightBytes) {
  EXPECT_THAT(EncodeImport(Outcome::kBusy, Sample()), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 2));
  EXPECT_THAT(EncodeImport(Outcome::kNoDevice, Sample()), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 4));
}

TEST(EncodeDeviceList, ListsOneDeviceWithItsInterface) {
  const base::Bytes answer = EncodeDeviceList(Sample());
  ASSERT_EQ(answer.size(), 8U + 4U + 312U + 4U);
  EXPECT_THAT(std::span(answer).first(12), ElementsAre(0x01, 0x11, 0, 5, 0, 0, 0, 0, 0, 0, 0, 1));
  EXPECT_THAT(std::span(answer).last(4), ElementsAre(8, 6, 0x50, 0));
}

TEST(Offer, NumbersTheDeviceByBusAndPlace) {
  EXPECT_EQ(Sample().DeviceId(), 0x00010002U);
}

}  // namespace
}  // namespace vcam::usbip
