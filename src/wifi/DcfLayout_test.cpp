#include "DcfLayout.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

// The header check and the decoding of one record, at every alignment.

namespace {

using namespace wifi_testing;

// A catalogue answer at an odd address, as it may lie inside a buffer.
class Unaligned {
 public:
  explicit Unaligned(const std::string& bytes) : storage_("#" + bytes) {}
  const _VscCdbDcfHeader* header() const { return reinterpret_cast<const _VscCdbDcfHeader*>(storage_.data() + 1); }
  const char* bytes() const { return storage_.data() + 1; }

 private:
  std::string storage_;
};

std::string Refusal(const std::string& header) {
  {
    const ExceptionsOff off;
    EXPECT_FALSE(Camera::ValidateDcfHeader(Unaligned(header).header()));
  }
  return Thrown([&] { Camera::ValidateDcfHeader(Unaligned(header).header()); });
}

bool Accepts(const std::string& header) {
  return Camera::ValidateDcfHeader(Unaligned(header).header());
}

TEST(ValidateDcfHeader, WantsVersionOne) {
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0})));
  EXPECT_EQ(Refusal(Bytes({0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0})), "CameraError: Camera error: DcfHeader version != 1");
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0})), "CameraError: Camera error: DcfHeader version != 1");
}

TEST(ValidateDcfHeader, WantsAStrideThatIsNotNegative) {
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})));
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0})),
            "CameraError: Camera error: Invalid DCF stride.");
}

TEST(ValidateDcfHeader, ChecksTheVersionBeforeTheStrideAndTheStrideBeforeTheFields) {
  EXPECT_EQ(Refusal(Bytes({2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0})),
            "CameraError: Camera error: DcfHeader version != 1");
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 0, 0, 0, 0x80, 1, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0})),
            "CameraError: Camera error: Invalid DCF stride.");
}

TEST(ValidateDcfHeader, WantsEveryFieldInsideTheStride) {
  const std::string tooBig = "CameraError: Camera error: DCF field too big.";
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0})), tooBig);
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 37, 0, 0, 0})), tooBig);
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 36, 0, 0, 0})));
}

TEST(ValidateDcfHeader, ChecksEveryFieldOfTheTable) {
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 40, 0, 0, 0})),
            "CameraError: Camera error: DCF field too big.");
}

TEST(ValidateDcfHeader, TakesATypeAboveNineAsSizeZero) {
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 12, 0, 0, 0, 40, 0, 0, 0})));
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 40, 0, 0, 0})));
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 10, 0, 0, 0, 41, 0, 0, 0})),
            "CameraError: Camera error: DCF field too big.");
}

TEST(ValidateDcfHeader, AddsSizeAndOffsetInThirtyTwoBits) {
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0xFC, 0xFF, 0xFF, 0xFF})));
  EXPECT_EQ(Refusal(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0xFB, 0xFF, 0xFF, 0xFF})),
            "CameraError: Camera error: DCF field too big.");
}

TEST(ValidateDcfHeader, LooksAtNoFieldOfANegativeCount) {
  EXPECT_TRUE(Accepts(Bytes({1, 0, 0, 0, 40, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF})));
}

TEST(ValidateDcfHeader, KnowsTheSizeOfEachType) {
  const int sizes[] = {24, 4, 4, 4, 4, 4, 4, 48, 28, 4};
  for (int type = 0; type < 10; ++type) {
    const auto header = [&](int stride) {
      return Bytes({1, 0, 0, 0, stride, 0, 0, 0, 1, 0, 0, 0, type, 0, 0, 0, 0, 0, 0, 0});
    };
    EXPECT_TRUE(Accepts(header(sizes[type]))) << type;
    EXPECT_EQ(Refusal(header(sizes[type] - 1)), "CameraError: Camera error: DCF field too big.") << type;
  }
}

std::string Unpack(const std::string& header, const std::string& record) {
  ScriptedCamera camera;
  const Unaligned table(header);
  const Unaligned bytes(record);
  const DcfObj picture = camera.UnpackDcf(table.header(), bytes.bytes());
  return {reinterpret_cast<const char*>(&picture), sizeof picture};
}

TEST(UnpackDcf, PutsEachTypeIntoItsField) {
  // Ten fields in reverse order of their types, without gaps: 4 + 28 + 48 + 6 x 4 + 24 = 128 bytes.
  const std::string header = Bytes({1, 0, 0, 0, 128, 0, 0, 0, 10, 0, 0, 0,  //
                                    9, 0, 0, 0, 0,   0, 0, 0,               //
                                    8, 0, 0, 0, 4,   0, 0, 0,               //
                                    7, 0, 0, 0, 32,  0, 0, 0,               //
                                    6, 0, 0, 0, 80,  0, 0, 0,               //
                                    5, 0, 0, 0, 84,  0, 0, 0,               //
                                    4, 0, 0, 0, 88,  0, 0, 0,               //
                                    3, 0, 0, 0, 92,  0, 0, 0,               //
                                    2, 0, 0, 0, 96,  0, 0, 0,               //
                                    1, 0, 0, 0, 100, 0, 0, 0,               //
                                    0, 0, 0, 0, 104, 0, 0, 0});
  const std::string identity = Field("suffix", 8) + Field("prefix", 8) + "ddddnnnn";
  const std::string record =
      "9999" + std::string(28, '8') + std::string(48, '7') + "666655554444333322221111" + identity;
  EXPECT_EQ(Unpack(header, record),
            identity + "111122223333444455556666" + std::string(48, '7') + std::string(28, '8') + "9999");
}

TEST(UnpackDcf, LeavesAFieldThatIsNotCarriedZero) {
  EXPECT_EQ(Unpack(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0}), "abcd"),
            std::string(124, '\0') + "abcd");
}

TEST(UnpackDcf, TakesTheLaterOfTwoFieldsOfOneType) {
  EXPECT_EQ(
      Unpack(Bytes({1, 0, 0, 0, 8, 0, 0, 0, 2, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 4, 0, 0, 0}), "abcdefgh"),
      std::string(124, '\0') + "efgh");
}

TEST(UnpackDcf, SkipsATypeAboveNine) {
  EXPECT_EQ(Unpack(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 10, 0, 0, 0, 0, 0, 0, 0}), "abcd"),
            std::string(128, '\0'));
}

// Holding a field against the stride is ValidateDcfHeader's part.
TEST(UnpackDcf, CopiesAFieldFromWhereTheHeaderSaysWhateverTheStride) {
  EXPECT_EQ(Unpack(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 1, 0, 0, 0}), "abcde"),
            std::string(124, '\0') + "bcde");
}

TEST(UnpackDcf, SkipsAFieldWhoseEndWraps) {
  for (const int lastByte : {0xFC, 0xFD, 0xFF}) {
    EXPECT_EQ(Unpack(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, lastByte, 0xFF, 0xFF, 0xFF}), "abcd"),
              std::string(128, '\0'))
        << lastByte;
  }
}

TEST(DcfLayout, TheLaterOfTwoFieldsWinsAlsoOutsideTheStride) {
  const Unaligned header(Bytes({1, 0, 0, 0, 4, 0, 0, 0, 2, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 4, 0, 0, 0}));
  EXPECT_EQ(kelva::DcfLayout(header.header()).Decode("abcdefgh").value9, 0x68676665u);
}

TEST(DcfLayout, ReadsNoFieldBehindTheCount) {
  const Unaligned header(Bytes({1, 0, 0, 0, 8, 0, 0, 0, 1, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 4, 0, 0, 0}));
  EXPECT_EQ(kelva::DcfLayout(header.header()).Decode("abcdefgh").value9, 0x64636261u);
}

TEST(DcfLayout, AFieldThatIsSkippedDoesNotTakeThePlaceOfAnEarlierOne) {
  const Unaligned header(
      Bytes({1, 0, 0, 0, 4, 0, 0, 0, 2, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(kelva::DcfLayout(header.header()).Decode("abcd").value9, 0x64636261u);
}

TEST(DcfHeaderSize, OfAHostileCountIsNegativeOrHugeButNeverWraps) {
  const auto size = [](int count) { return kelva::DcfHeaderSize(_VscCdbDcfHeader{1, 4, count}); };
  EXPECT_EQ(size(0), 12);
  EXPECT_EQ(size(-2), -4);
  EXPECT_EQ(size(0x7FFFFFFF), 17179869188);
  EXPECT_EQ(size(-0x7FFFFFFF - 1), -17179869172);
}

}  // namespace
