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
  const RegistryCamera facts{"K1", "Kelva", "", "", ""};
  EXPECT_TRUE(AreKnownTexts(InformationTexts(record), facts));
  EXPECT_EQ(FirmwareIn(record, facts), "fw7");
}

TEST(InformationTest, ARecordWithoutAnEndStopsAtItsEnd) {
  const auto texts = InformationTexts(Record(std::string(640, 'x')));
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0].size(), 640U);
}

TEST(InformationTest, NothingIsNothing) {
  EXPECT_THAT(InformationTexts(Record("")), IsEmpty());
  EXPECT_EQ(FirmwareIn(Record(""), {}), "");
}

TEST(InformationTest, TextsHaveAMeaningOnlyWhenTheSystemKnowsSerialNumberAndVendorToo) {
  const std::string bytes(
      "K1\0Kelva\0C\0"
      "1.00\0fw7\0",
      20);
  for (const RegistryCamera& facts :
       {RegistryCamera{"K2", "Kelva", "", "", ""}, RegistryCamera{"K1", "Other", "", "", ""},
        RegistryCamera{"", "Kelva", "", "", ""}}) {
    EXPECT_FALSE(AreKnownTexts(InformationTexts(Record(bytes)), facts));
    EXPECT_EQ(FirmwareIn(Record(bytes), facts), "");
  }
  EXPECT_FALSE(AreKnownTexts({"K1", "Kelva", "C", "1.00"}, {"K1", "Kelva", "", "", ""})) << "too few";
}

TEST(InformationTest, BytesThatAreNoTextsAreNotReadAsTexts) {
  EXPECT_THAT(InformationTexts(Record("K1\xFF")), IsEmpty());
  EXPECT_THAT(InformationTexts(Record("K1\x1B[2J")), IsEmpty());
  EXPECT_THAT(InformationTexts(Record("\xC3\xA9t\xC3\xA9")), ElementsAre("\xC3\xA9t\xC3\xA9"));
}

TEST(InformationTest, AnyRecordCanBeShownInHexadecimal) {
  const std::string dump = InformationDump(Record("0123456789abcdefg"));
  EXPECT_TRUE(dump.starts_with("000  30313233343536373839616263646566\n010  67000000")) << dump;
  EXPECT_EQ(dump.size(), 40U * (5 + 32 + 1));
}

TEST(InformationTest, NamesEndWithTheLastKnownText) {
  EXPECT_EQ(InformationName(0), "serial");
  EXPECT_EQ(InformationName(5), "volume");
  EXPECT_EQ(InformationName(6), "");
}

}  // namespace
}  // namespace apps
