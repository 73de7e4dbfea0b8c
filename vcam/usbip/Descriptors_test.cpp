#include "vcam/usbip/Descriptors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

using ::testing::ElementsAreArray;

UsbIdentity Camera(Speed speed) {
  return {"Kelva", "Camera", "A7", speed};
}

base::Bytes Of(Speed speed, std::uint8_t type, std::uint8_t index = 0) {
  return Describe(Camera(speed), type, index).value_or(base::Bytes{});
}

TEST(Describe, HighSpeedDevice) {
  EXPECT_THAT(Of(Speed::kHigh, 1),
              ElementsAreArray({18, 1, 0x00, 0x02, 0, 0, 0, 64, 0x09, 0x12, 0x01, 0x00, 0x00, 0x01, 1, 2, 3, 1}));
}

TEST(Describe, SuperSpeedDevice) {
  EXPECT_THAT(Of(Speed::kSuper, 1),
              ElementsAreArray({18, 1, 0x20, 0x03, 0, 0, 0, 9, 0x09, 0x12, 0x01, 0x00, 0x00, 0x01, 1, 2, 3, 1}));
}

TEST(Describe, HighSpeedConfigurationIsOneBulkOnlyInterface) {
  EXPECT_THAT(Of(Speed::kHigh, 2), ElementsAreArray({9, 2, 32,   0, 1,    1,    0,    0xC0, 1,  //
                                                     9, 4, 0,    0, 2,    0x08, 0x06, 0x50, 0,  //
                                                     7, 5, 0x81, 2, 0x00, 0x02, 0,              //
                                                     7, 5, 0x02, 2, 0x00, 0x02, 0}));
}

TEST(Describe, SuperSpeedConfigurationHasEndpointCompanions) {
  EXPECT_THAT(Of(Speed::kSuper, 2), ElementsAreArray({9, 2,  44,   0, 1,    1,    0,    0xC0, 1,  //
                                                      9, 4,  0,    0, 2,    0x08, 0x06, 0x50, 0,  //
                                                      7, 5,  0x81, 2, 0x00, 0x04, 0,              //
                                                      6, 48, 15,   0, 0,    0,                    //
                                                      7, 5,  0x02, 2, 0x00, 0x04, 0,              //
                                                      6, 48, 15,   0, 0,    0}));
}

TEST(Describe, SerialNumberIsTheThirdString) {
  EXPECT_EQ(Of(Speed::kHigh, 3, 3), (base::Bytes{6, 3, 'A', 0, '7', 0}));
  EXPECT_THAT(Of(Speed::kHigh, 3, 0), ElementsAreArray({4, 3, 0x09, 0x04}));
}

TEST(Describe, ObjectStoreBelongsToSuperSpeed) {
  const base::Bytes expected{5, 15, 22, 0, 2, 7, 16, 2, 0, 0, 0, 0, 10, 16, 3, 0, 0x0C, 0, 2, 0, 0, 0};
  EXPECT_EQ(Of(Speed::kSuper, 15), expected);
  EXPECT_FALSE(Describe(Camera(Speed::kHigh), 15, 0).has_value());
}

TEST(Describe, LongSerialIsCutToWhatADescriptorHolds) {
  const base::Bytes bytes = Describe({"", "", std::string(300, 'x'), Speed::kHigh}, 3, 3).value_or(base::Bytes{});
  EXPECT_EQ(bytes.size(), 254U);
  EXPECT_EQ(bytes[0], 254);
}

TEST(Describe, HasNothingElse) {
  EXPECT_FALSE(Describe(Camera(Speed::kHigh), 6, 0).has_value());
  EXPECT_FALSE(Describe(Camera(Speed::kHigh), 2, 1).has_value());
  EXPECT_FALSE(Describe(Camera(Speed::kHigh), 3, 4).has_value());
}

}  // namespace
}  // namespace vcam::usbip
