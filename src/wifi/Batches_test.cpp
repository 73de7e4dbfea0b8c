#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;
using Strings = std::vector<std::string>;

constexpr char kTruncated[] = "CameraError: Camera error: ReadFile() truncated.";

// A batch of the keys "k0", "k1", ... without qualifiers, over a scripted answer.
class ReadBatch : public testing::Test {
 protected:
  void ExpectRequest(const std::string& text) { camera_.Expect({0xC2, 0x00, 0x05}).Sends(text + '\0'); }
  void ExpectBundle(std::uint32_t announced, const std::string& bundle) {
    camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(Le32(announced));
    camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(65536).Answers(bundle);
  }
  std::vector<_Sha1obj> Read(std::size_t keys) {
    const Strings names = {"k0", "k1", "k2"};
    return camera_.ReadFilesBySha1(Strings(names.begin(), names.begin() + static_cast<long>(keys)), Strings(keys),
                                   nullptr, nullptr, true);
  }
  ScriptedCamera camera_;
};

TEST_F(ReadBatch, JoinsEachKeyWithItsQualifier) {
  camera_.Expect({0xC2, 0x00, 0x05}).Sends(Bytes({'k', '1', 'a', 'k', '2', 'b', 0})).Fails();
  EXPECT_TRUE(camera_.ReadFilesBySha1({"k1", "k2"}, {"a", "b"}, nullptr, nullptr, true).empty());
  EXPECT_EQ(camera_.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true"}));
}

TEST_F(ReadBatch, IgnoresSurplusQualifiers) {
  camera_.Expect({0xC2, 0x00, 0x05}).Sends(Text("k1a")).Fails();
  EXPECT_TRUE(camera_.ReadFilesBySha1({"k1"}, {"a", "b"}, nullptr, nullptr, true).empty());
}

TEST_F(ReadBatch, ReturnsTheFilesInRequestOrderWithoutTheEmptyOnes) {
  const std::string bundle = Bytes({10, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0}) + "AAAAAAAAAA" + "CCCCC";
  ASSERT_EQ(bundle.size(), 27u);
  ExpectRequest("k0k1k2");
  ExpectBundle(27, bundle);
  const std::vector<_Sha1obj> files = Read(3);
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0].name, "k0");
  EXPECT_EQ(ToString(files[0].data), "AAAAAAAAAA");
  EXPECT_EQ(files[1].name, "k2");
  EXPECT_EQ(ToString(files[1].data), "CCCCC");
  for (const _Sha1obj& file : files) {
    EXPECT_TRUE(file.size == 0 || file.size == file.data.size());
  }
}

TEST_F(ReadBatch, NamesAFileByItsKeyWithoutTheQualifier) {
  camera_.Expect({0xC2, 0x00, 0x05}).Sends(Text("keyJPG"));
  ExpectBundle(5, Bytes({1, 0, 0, 0}) + "A");
  const std::vector<_Sha1obj> files = camera_.ReadFilesBySha1({"key"}, {"JPG"}, nullptr, nullptr, true);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].name, "key");
}

TEST_F(ReadBatch, TouchesNothingOnAClosedCamera) {
  camera_.open = false;
  EXPECT_TRUE(Read(1).empty());
  EXPECT_EQ(camera_.calls, Calls{"IsOpen"});
}

TEST_F(ReadBatch, PassesItsFlagToEveryCall) {
  camera_.Expect({0xC2, 0x00, 0x05}).Sends(Text("k")).Flag(false);
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({5, 0, 0, 0}).Flag(false);
  camera_.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(Bytes({1, 0, 0, 0}) + "A").Flag(false);
  EXPECT_EQ(camera_.ReadFilesBySha1({"k"}, {""}, nullptr, nullptr, false).size(), 1u);
  EXPECT_EQ(camera_.calls[1], "ClearCancel false");
}

TEST_F(ReadBatch, ReportsAsTheOtherBulkReadsDo) {
  ScriptedCamera camera(4, 1);
  Progress progress;
  camera.Expect({0xC2, 0x00, 0x05}).Sends(Text("k"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({10, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00, 0}).Asks(4).Answers({6, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00, 4}).Asks(4).Answers("abcd");
  camera.Expect({0xC4, 0x00, 0x00, 8}).Asks(4).Answers("ef");
  EXPECT_EQ(camera.ReadFilesBySha1({"k"}, {""}, Progress::Report, &progress, true).size(), 1u);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.4f, 0.8f}));
}

TEST_F(ReadBatch, IsEmptyWhenACommandFailsOrNothingIsAnnounced) {
  ExpectRequest("k0");
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({9, 0, 0, 0}).ReturnsFalse();
  EXPECT_TRUE(Read(1).empty());
  ExpectRequest("k0");
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0, 0, 0, 0});
  EXPECT_TRUE(Read(1).empty());
  ExpectRequest("k0");
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({5, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(Bytes({1, 0, 0, 0}) + "A").ReturnsFalse();
  EXPECT_TRUE(Read(1).empty());
}

TEST_F(ReadBatch, CutsOneSurplusByteOff) {
  ExpectRequest("k0");
  ExpectBundle(5, Bytes({1, 0, 0, 0}) + "AX");
  EXPECT_EQ(Read(1).size(), 1u);
}

TEST_F(ReadBatch, TwoSurplusBytesStopTheProcess) {
  const ExceptionsOff off;
  ExpectRequest("k0");
  ExpectBundle(5, Bytes({1, 0, 0, 0}) + "AXY");
  EXPECT_FATAL(Read(1), "data.size() - 1 == fileSize", "ReadFilesBySha1");
  camera_.ForgetTheRest();
}

TEST_F(ReadBatch, OfFewerBytesThanAnnouncedIsTruncated) {
  ExpectRequest("k0");
  ExpectBundle(6, Bytes({1, 0, 0, 0}) + "A");
  EXPECT_EQ(Thrown([&] { Read(1); }), kTruncated);
  const ExceptionsOff off;
  ExpectRequest("k0");
  ExpectBundle(6, Bytes({1, 0, 0, 0}) + "A");
  EXPECT_TRUE(Read(1).empty());
}

TEST_F(ReadBatch, OfWhichNothingComesIsTruncated) {
  ExpectRequest("k0");
  ExpectBundle(0xFFFFFFFF, "");
  EXPECT_EQ(Thrown([&] { Read(1); }), kTruncated);
}

TEST_F(ReadBatch, WhoseTableDisagreesWithItsLengthIsEmptyWithoutMessage) {
  ExpectRequest("k0");
  ExpectBundle(6, Bytes({1, 0, 0, 0}) + "AB");
  EXPECT_TRUE(Read(1).empty());
  ExpectRequest("k0k1");
  ExpectBundle(7, Bytes({1, 0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(Read(2).empty());
}

// The sum of the sizes is 32 bits wide, so this table agrees with its length; its bodies lie outside of the bundle.
TEST_F(ReadBatch, WhoseSizesWrapIsEmpty) {
  ExpectRequest("k0k1");
  ExpectBundle(12, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 5, 0, 0, 0}) + "AAAA");
  EXPECT_TRUE(Read(2).empty());
}

TEST_F(ReadBatch, WithoutKeysSendsASingleNulAndYieldsNothing) {
  ExpectRequest("");
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0, 0, 0, 0});
  EXPECT_TRUE(Read(0).empty());
  ExpectRequest("");
  ExpectBundle(4, "abcd");
  EXPECT_TRUE(Read(0).empty());
  ExpectRequest("");
  ExpectBundle(4, "ab");
  EXPECT_EQ(Thrown([&] { Read(0); }), kTruncated);
}

TEST_F(ReadBatch, PassesATransferErrorOn) {
  const ExceptionsOff off;
  camera_.Expect({0xC2, 0x00, 0x05}).Sends(Text("k0")).Throws("gone");
  EXPECT_EQ(Thrown([&] { Read(1); }), "CameraTransferError: Camera error: gone");
}

TEST(DeleteBatch, JoinsTheKeysWithoutSeparator) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC0, 0x00, 0x06}).Sends(Bytes({'a', 'b', 'c', 'd', 0})).Flag(false);
  EXPECT_TRUE(camera.DeleteBatch({"ab", "cd"}, false));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel false", "Transfer false"}));
  camera.Expect({0xC0, 0x00, 0x06}).Sends(Bytes({0}));
  EXPECT_TRUE(camera.DeleteBatch({}, true));
}

TEST(DeleteBatch, ReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x06}).Sends(Text("ab")).Fails();
  EXPECT_FALSE(camera.DeleteBatch({"ab"}, true));
  camera.Expect({0xC0, 0x00, 0x06}).Sends(Text("ab")).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.DeleteBatch({"ab"}, true); }), "CameraTransferError: Camera error: gone");
}

}  // namespace
