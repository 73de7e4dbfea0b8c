#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

constexpr char kTruncated[] = "CameraError: Camera error: DcfHeader truncated.";

// Version 1, stride 40, the identity at offset 0 and "has JPG" at offset 24.
const std::string kHeader = Bytes({1, 0, 0, 0, 40, 0, 0, 0, 2, 0, 0, 0,  //
                                   0, 0, 0, 0, 0,  0, 0, 0,              //
                                   1, 0, 0, 0, 24, 0, 0, 0});

std::string Record(int fileNumber, int hasJpg) {
  return Field("ABCDE", 8) + Field("IMG_", 8) + Bytes({100, 0, 0, 0, fileNumber, 0, 0, 0, hasJpg, 0, 0, 0}) +
         std::string(12, '\x7F');
}

std::vector<DcfObj> Catalogue(const std::string& answer) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x02});
  camera.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(answer);
  return camera.GetDcf();
}

std::string ErrorOf(const std::string& answer) {
  return Thrown([&] { Catalogue(answer); });
}

TEST(GetDcf, DecodesEveryRecordInTheCamerasOrder) {
  const std::vector<DcfObj> pictures = Catalogue(kHeader + Record(7, 1) + Record(3, 0));
  ASSERT_EQ(pictures.size(), 2u);
  EXPECT_STREQ(pictures[0].directorySuffix, "ABCDE");
  EXPECT_STREQ(pictures[0].filePrefix, "IMG_");
  EXPECT_EQ(pictures[0].directoryNumber, 100);
  EXPECT_EQ(pictures[0].fileNumber, 7);
  EXPECT_EQ(pictures[0].hasJpg, 1u);
  EXPECT_EQ(pictures[1].fileNumber, 3);
  EXPECT_EQ(pictures[1].hasJpg, 0u);
  const char* const rest = reinterpret_cast<const char*>(&pictures[0]) + 28;
  EXPECT_EQ(std::string(rest, 100), std::string(100, '\0'));
}

TEST(GetDcf, IgnoresBytesThatMakeNoWholeRecord) {
  EXPECT_EQ(Catalogue(kHeader + Record(7, 1) + Record(3, 0) + std::string(20, 'x')).size(), 2u);
  EXPECT_EQ(Catalogue(kHeader + Record(7, 1) + std::string(39, 'x')).size(), 1u);
}

TEST(GetDcf, OfAHeaderAloneIsEmptyWithoutError) {
  EXPECT_TRUE(Catalogue(kHeader).empty());
}

TEST(GetDcf, SendsItsCommandsInOrder) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x02});
  camera.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers(kHeader);
  camera.GetDcf();
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true"}));
}

TEST(GetDcf, ReadsTheAnswerInChunks) {
  const std::string answer = kHeader + Record(7, 1);
  ScriptedCamera camera(34, 0x40000);
  camera.Expect({0xC2, 0x00, 0x02});
  camera.Expect({0xC4, 0x00, 0x01, 0}).Asks(34).Answers(answer.substr(0, 34));
  camera.Expect({0xC4, 0x00, 0x01, 34}).Asks(34).Answers(answer.substr(34, 34));
  camera.Expect({0xC4, 0x00, 0x01, 68}).Asks(34).Answers("");
  const std::vector<DcfObj> pictures = camera.GetDcf();
  ASSERT_EQ(pictures.size(), 1u);
  EXPECT_EQ(pictures[0].fileNumber, 7);
}

TEST(GetDcf, TouchesNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  EXPECT_TRUE(camera.GetDcf().empty());
  EXPECT_EQ(camera.calls, Calls{"IsOpen"});
}

TEST(GetDcf, IsEmptyWhenACommandFails) {
  ScriptedCamera camera(4);
  camera.Expect({0xC2, 0x00, 0x02}).Fails();
  EXPECT_TRUE(camera.GetDcf().empty());
  camera.Expect({0xC2, 0x00, 0x02});
  camera.Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers({1, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x01, 4}).Asks(4).Fails();
  EXPECT_TRUE(camera.GetDcf().empty());
}

TEST(GetDcf, PassesATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x02}).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.GetDcf(); }), "CameraTransferError: Camera error: gone");
}

TEST(GetDcf, OfFewerThanTwelveBytesIsTruncated) {
  for (const std::size_t length : {std::size_t{0}, std::size_t{4}, std::size_t{11}}) {
    EXPECT_EQ(ErrorOf(kHeader.substr(0, length)), kTruncated) << length;
    const ExceptionsOff off;
    EXPECT_TRUE(Catalogue(kHeader.substr(0, length)).empty());
  }
}

TEST(GetDcf, OfFewerBytesThanItsHeaderIsTruncated) {
  EXPECT_EQ(ErrorOf(kHeader.substr(0, 27)), kTruncated);
  const ExceptionsOff off;
  EXPECT_TRUE(Catalogue(kHeader.substr(0, 27)).empty());
}

TEST(GetDcf, FindsTheTruncationBeforeTheVersion) {
  EXPECT_EQ(ErrorOf(Bytes({2, 0, 0, 0, 40, 0, 0, 0, 9, 0, 0, 0})), kTruncated);
}

std::string HeaderWithCount(std::initializer_list<int> count) {
  return Bytes({1, 0, 0, 0, 4, 0, 0, 0}) + Bytes(count);
}

TEST(GetDcf, AFieldCountWhoseHeaderSizeIsNegativeIsTruncated) {
  EXPECT_EQ(ErrorOf(HeaderWithCount({0xFE, 0xFF, 0xFF, 0xFF}) + std::string(64, '\0')), kTruncated);
  EXPECT_EQ(ErrorOf(HeaderWithCount({0x00, 0x00, 0x00, 0x80}) + std::string(64, '\0')), kTruncated);
}

// Both counts give a small header size in 32-bit arithmetic.
TEST(GetDcf, AFieldCountWhoseHeaderSizeWouldWrapIsTruncated) {
  EXPECT_EQ(ErrorOf(HeaderWithCount({0x00, 0x00, 0x00, 0x20}) + std::string(64, '\0')), kTruncated);
  EXPECT_EQ(ErrorOf(HeaderWithCount({0xFF, 0xFF, 0xFF, 0x7F}) + std::string(64, '\0')), kTruncated);
}

TEST(GetDcf, AFieldCountOfMinusOneLeavesAHeaderOfFourBytes) {
  EXPECT_EQ(Catalogue(HeaderWithCount({0xFF, 0xFF, 0xFF, 0xFF})).size(), 2u);
}

TEST(GetDcf, AFieldCountOfZeroGivesAllZeroPictures) {
  const std::vector<DcfObj> pictures = Catalogue(HeaderWithCount({0, 0, 0, 0}) + "12345678");
  ASSERT_EQ(pictures.size(), 2u);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&pictures[1]), 128), std::string(128, '\0'));
}

TEST(GetDcf, OfStrideZeroIsEmpty) {
  EXPECT_TRUE(Catalogue(Bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) + "12345678").empty());
}

TEST(GetDcf, RefusesWhatTheHeaderCheckRefuses) {
  std::string wrongVersion = kHeader;
  wrongVersion[0] = 2;
  EXPECT_EQ(ErrorOf(wrongVersion + Record(7, 1)), "CameraError: Camera error: DcfHeader version != 1");
  std::string fieldTooBig = kHeader;
  fieldTooBig[24] = 37;
  EXPECT_EQ(ErrorOf(fieldTooBig + Record(7, 1)), "CameraError: Camera error: DCF field too big.");
  const ExceptionsOff off;
  EXPECT_TRUE(Catalogue(wrongVersion + Record(7, 1)).empty());
  EXPECT_TRUE(Catalogue(fieldTooBig + Record(7, 1)).empty());
}

// The 32-bit sum of size and offset wraps, so the header passes; the field lies outside of every record.
TEST(GetDcf, SkipsAFieldWhoseEndWrapped) {
  const std::string header = Bytes({1, 0, 0, 0, 8, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF});
  const std::vector<DcfObj> pictures = Catalogue(header + "\1\1\1\1\1\1\1\1");
  ASSERT_EQ(pictures.size(), 1u);
  EXPECT_EQ(pictures[0].hasJpg, 0u);
}

TEST(GetDcf, MakesNoProgressCallsAndAsksNoSize) {
  ScriptedCamera camera(28, 28);
  camera.Expect({0xC2, 0x00, 0x02});
  camera.Expect({0xC4, 0x00, 0x01}).Asks(28).Answers(kHeader);
  camera.Expect({0xC4, 0x00, 0x01, 28}).Asks(28).Answers("");
  EXPECT_TRUE(camera.GetDcf().empty());
}

}  // namespace
