#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::Send;
using test::SendText;
using test::Tell;

class SelectTest : public test::CameraFixture {};

constexpr const char* kAbcKey = "a9993e364706816aba3e25717850c26c9cd0d89d";

base::Bytes ReadBundle(VirtualCamera& camera) {
  return Ask(camera, {0xC4, 0, 0x00}, 65536).data;
}
base::Bytes ReadPlain(VirtualCamera& camera) {
  return Ask(camera, {0xC4, 0, 0x01}, 65536).data;
}

TEST_F(SelectTest, OpensNoFileThatIsNotThere) {
  scratch_.Put("DCIM/a", "abc");
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\DCIM\b)").sense, sense::kNotFound);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\DCIM)").sense, sense::kNotFound);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01}, R"(A:\DCIM\a)").sense, sense::kBadParameter);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01, 2}, R"(I:\DCIM\a)").sense, sense::kBadCommandField);
  EXPECT_EQ(Send(*camera_, {0xC2, 0, 0x01}, {'I', ':'}).sense, sense::kWrongDataLength) << "no NUL";
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\missing\a)").sense, sense::kNotFound);
}

TEST_F(SelectTest, TakesTheWholePathThatIsSent) {
  scratch_.Put("a", "abc");
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\a)").moved, 5U);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\a)").moved, 5U);
  EXPECT_EQ(Tell(*camera_, {0xC2, 0, 0x02}).moved, 0U);
}

TEST_F(SelectTest, ForgetsTheLastSelectionWhenOneIsRefused) {
  scratch_.Put("a", "abc");
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good());
  ASSERT_FALSE(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\b)").Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x00}, 4).sense, sense::kWrongSequence);
}

TEST_F(SelectTest, AnswersTheCatalogue) {
  scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  const base::Bytes catalogue = ReadPlain(*camera_);
  ASSERT_EQ(catalogue.size(), 12U + 80U + 128U);
  EXPECT_EQ(base::Bytes(catalogue.begin(), catalogue.begin() + 12),
            (base::Bytes{1, 0, 0, 0, 128, 0, 0, 0, 10, 0, 0, 0}));
  EXPECT_EQ(AsText(base::Bytes(catalogue.begin() + 92 + 48, catalogue.begin() + 92 + 88)), kAbcKey);
}

TEST_F(SelectTest, AnswersADirectoryListing) {
  scratch_.Put("DCIM/a", "abc");
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x03}, R"(I:\)").Good());
  EXPECT_EQ(ReadPlain(*camera_)[4], 4) << "., .., the label and DCIM";
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x03}, R"(I:\DCIM)").Good());
  EXPECT_EQ(ReadPlain(*camera_)[4], 3);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x03}, R"(I:\DCIM\a)").sense, sense::kNotFound);
}

TEST_F(SelectTest, AnswersABatchByKeyAndQualifier) {
  scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  scratch_.Put("DCIM/100ABCDE/IMG_0001.RAW", "raw bytes");
  const std::string key = kAbcKey;
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x05}, key + key + ".RAW" + std::string(40, '0') + key + ".128").Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0}, 4).data, (base::Bytes{28, 0, 0, 0}));
  EXPECT_EQ(AsText(ReadBundle(*camera_)), std::string("\3\0\0\0\x09\0\0\0\0\0\0\0\0\0\0\0", 16) + "abc" + "raw bytes");
}

TEST_F(SelectTest, AnswersAnEmptyBatchWithNothing) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x05}, "").Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0}, 4).data, base::Bytes(4));
  EXPECT_TRUE(ReadBundle(*camera_).empty());
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x05}, "k1ak2b").sense, sense::kBadParameter);
}

TEST_F(SelectTest, AnswersCompressedRawByTheKeyOfAnyFileOfThePicture) {
  scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  scratch_.Put("DCIM/100ABCDE/IMG_0001.RAW", "12345");
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x07}, kAbcKey).Good());
  EXPECT_EQ(AsText(ReadBundle(*camera_)), std::string("\3\0\0\0\2\0\0\0", 8) + "12345");
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x07}, std::string(40, '0')).sense, sense::kNotFound);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x07}, "key").sense, sense::kBadParameter);
}

TEST_F(SelectTest, ACameraWithoutKeysFindsNothingByKey) {
  scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  scratch_.Put("DCIM/100ABCDE/IMG_0001.RAW", "12345");
  options_.hasKeys = false;
  Restart();
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  const base::Bytes catalogue = ReadPlain(*camera_);
  ASSERT_EQ(catalogue.size(), 12U + 80U + 128U);
  EXPECT_EQ(base::Bytes(catalogue.begin() + 92 + 48, catalogue.begin() + 92 + 96), base::Bytes(48));
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x07}, kAbcKey).sense, sense::kNotFound);
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x05}, kAbcKey).Good());
  EXPECT_EQ(AsText(ReadBundle(*camera_)), std::string(4, '\0'));
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x06}, kAbcKey).Good()) << "deletes nothing";
  EXPECT_EQ(scratch_.Get("DCIM/100ABCDE/IMG_0001.JPG"), "abc");
}

TEST_F(SelectTest, AnswersCrashLogsWithPathsThatCanBeDeleted) {
  scratch_.Put("CRASH/A.LOG", "oops!");
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x08}).Good());
  const base::Bytes bundle = ReadBundle(*camera_);
  EXPECT_EQ(AsText(base::Bytes(bundle.begin() + 8, bundle.begin() + 22)), R"(I:\CRASH\A.LOG)");
  EXPECT_EQ(AsText(base::Bytes(bundle.begin() + 36, bundle.end())), "oops!");
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\CRASH\A.LOG)").Good());
}

TEST_F(SelectTest, AnswersCalibration) {
  scratch_.Put("CALIB/gain", "abc");
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x06}).Good());
  const base::Bytes bundle = ReadBundle(*camera_);
  ASSERT_EQ(bundle.size(), 1119U);
  EXPECT_EQ(AsText(base::Bytes(bundle.begin(), bundle.begin() + 9)), std::string("\3\0\0\0gain\0", 9));
}

TEST_F(SelectTest, ReadsBundlesAndPlainSetsByTheirOwnSubCode) {
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x06}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x01}, 10).sense, sense::kWrongSequence);
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x00}, 10).sense, sense::kWrongSequence);
}

TEST_F(SelectTest, RefusesDataWhereNoneBelongs) {
  for (const std::uint8_t selection : base::Bytes{0x00, 0x02, 0x06, 0x08}) {
    EXPECT_EQ(SendText(*camera_, {0xC2, 0, selection}, "x").sense, sense::kWrongDataLength) << int{selection};
  }
  EXPECT_EQ(Tell(*camera_, {0xC2, 0, 0x04}).sense, sense::kBadCommandField);
}

TEST_F(SelectTest, RefusesAFileThatItsInterfaceCannotSay) {
  std::ofstream(scratch_.Path() / "big");
  std::filesystem::resize_file(scratch_.Path() / "big", 5ULL << 30);
  EXPECT_EQ(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\big)").sense, sense::kOutOfRange);
}

}  // namespace
}  // namespace vcam
