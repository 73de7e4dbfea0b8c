#include "apps/camera/Information.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace apps {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

_VscCdbCameraInformation Record(const std::string& bytes) {
  _VscCdbCameraInformation record{};
  std::memcpy(record.information, bytes.data(), bytes.size());
  return record;
}

TEST(InformationTest, TextsFollowOneAnotherAndMayBeEmpty) {
  const auto record =
      Record(std::string("K1\0Kelva\0\0"
                         "1.00\0fw7\0CARD\0",
                         25));
  EXPECT_THAT(InformationTexts(record), ElementsAre("K1", "Kelva", "", "1.00", "fw7", "CARD"));
  EXPECT_EQ(FirmwareIn(record), "fw7");
}

TEST(InformationTest, ARecordWithoutAnEndStopsAtItsEnd) {
  const auto texts = InformationTexts(Record(std::string(640, 'x')));
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0].size(), 640U);
}

TEST(InformationTest, NothingIsNothing) {
  EXPECT_THAT(InformationTexts(Record("")), IsEmpty());
  EXPECT_EQ(FirmwareIn(Record("")), "");
}

TEST(InformationTest, NamesEndWithTheLastKnownText) {
  EXPECT_EQ(InformationName(0), "serial");
  EXPECT_EQ(InformationName(5), "volume");
  EXPECT_EQ(InformationName(6), "");
}

}  // namespace
}  // namespace apps
