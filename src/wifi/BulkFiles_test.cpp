#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

void ExpectBundle(ScriptedCamera& camera, int subCode, const std::string& bundle) {
  camera.Expect({0xC2, 0x00, subCode});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(Le32(static_cast<std::uint32_t>(bundle.size())));
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(bundle);
}

// "name:body" of each file, and its announced size where it differs.
std::vector<std::string> Shown(const std::vector<_Sha1obj>& files) {
  std::vector<std::string> texts;
  for (const _Sha1obj& file : files) {
    texts.push_back(file.name + ":" + ToString(file.data));
    EXPECT_EQ(file.size, file.data.size());
  }
  return texts;
}

std::vector<std::string> CrashLogs(const std::string& bundle) {
  ScriptedCamera camera;
  ExpectBundle(camera, 0x08, bundle);
  return Shown(camera.ReadCrashLogs(nullptr, nullptr, false, true));
}

// Two entries of 5 and 3 bytes: the table ends at 76, and yet the bodies begin at 72. So the first body holds the last
// four bytes of the second name's field, which are zero unless the name is that long.
const std::string kTwoLogs = Bytes({2, 0, 0, 0}) +                           //
                             Bytes({5, 0, 0, 0}) + Field("L:\\a.log", 32) +  //
                             Bytes({3, 0, 0, 0}) + Field("L:\\b.log", 28) +  // up to byte 72
                             "Aaaaa" + "Bbb";

TEST(ReadCrashLogs, BodiesBeginAtThirtySixTimesTheCount) {
  ASSERT_EQ(kTwoLogs.size(), 80u);
  EXPECT_EQ(CrashLogs(kTwoLogs), (std::vector<std::string>{"L:\\a.log:Aaaaa", "L:\\b.log:Bbb"}));
}

TEST(ReadCrashLogs, SendsItsCommandsInOrder) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x08});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({80, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(kTwoLogs);
  camera.ReadCrashLogs(nullptr, nullptr, false, true);
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST(ReadCrashLogs, AnEmptyEntryIsLeftOutAndDoesNotMoveTheBodies) {
  const std::string bundle = Bytes({3, 0, 0, 0}) +                                                          //
                             Bytes({2, 0, 0, 0}) + Field("a", 32) + Bytes({0, 0, 0, 0}) + Field("b", 32) +  //
                             Bytes({4, 0, 0, 0}) + Field("c", 28) + "AA" + "CCCC";
  EXPECT_EQ(CrashLogs(bundle), (std::vector<std::string>{"a:AA", "c:CCCC"}));
}

TEST(ReadCrashLogs, WithoutEntriesIsEmptyAndDeletesNothing) {
  ScriptedCamera camera;
  ExpectBundle(camera, 0x08, Bytes({0, 0, 0, 0}));
  EXPECT_TRUE(camera.ReadCrashLogs(nullptr, nullptr, true, true).empty());
}

TEST(ReadCrashLogs, DeletesEachReturnedLogInOrderWhenAsked) {
  ScriptedCamera camera;
  ExpectBundle(camera, 0x08, kTwoLogs);
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\a.log"));
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\b.log"));
  EXPECT_EQ(Shown(camera.ReadCrashLogs(nullptr, nullptr, true, true)).size(), 2u);
}

// The flag of the call goes to the transfers of the read; a deletion is a command of its own.
TEST(ReadCrashLogs, DeletesWithTheFlagOfADeletion) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x08}).Flag(false);
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({80, 0, 0, 0}).Flag(false);
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(kTwoLogs).Flag(false);
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\a.log")).Flag(true);
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\b.log")).Flag(true);
  EXPECT_EQ(camera.ReadCrashLogs(nullptr, nullptr, true, false).size(), 2u);
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel false", "Transfer false", "Transfer false", "Transfer false",
                                 "ClearCancel true", "Transfer true", "ClearCancel true", "Transfer true"}));
}

TEST(ReadCrashLogs, AFailedDeletionStopsNothing) {
  ScriptedCamera camera;
  ExpectBundle(camera, 0x08, kTwoLogs);
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\a.log")).Fails();
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("L:\\b.log"));
  EXPECT_EQ(camera.ReadCrashLogs(nullptr, nullptr, true, true).size(), 2u);
}

class DeletingCamera : public ScriptedCamera {
 public:
  bool DeleteFile(const char* path) override {
    deleted.emplace_back(path);
    return false;
  }
  std::vector<std::string> deleted;
};

TEST(ReadCrashLogs, DeletesThroughTheDeletionOfTheCamera) {
  DeletingCamera camera;
  ExpectBundle(camera, 0x08, kTwoLogs);
  EXPECT_EQ(camera.ReadCrashLogs(nullptr, nullptr, true, true).size(), 2u);
  EXPECT_EQ(camera.deleted, (std::vector<std::string>{"L:\\a.log", "L:\\b.log"}));
}

TEST(ReadCrashLogs, OfAnEmptyBundleIsEmptyAndDeletesNothing) {
  DeletingCamera camera;
  camera.Expect({0xC2, 0x00, 0x08});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({80, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers("");
  EXPECT_TRUE(camera.ReadCrashLogs(nullptr, nullptr, true, true).empty());
  EXPECT_TRUE(camera.deleted.empty());
}

TEST(ReadCrashLogs, OfAFailedChunkDeletesNothing) {
  DeletingCamera camera;
  camera.Expect({0xC2, 0x00, 0x08});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({80, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(kTwoLogs).ReturnsFalse();
  EXPECT_TRUE(camera.ReadCrashLogs(nullptr, nullptr, true, true).empty());
  EXPECT_TRUE(camera.deleted.empty());
}

TEST(ReadCrashLogs, ReceivedLengthIsNotComparedWithTheAnnouncedTotal) {
  for (const int announced : {1, 200}) {
    ScriptedCamera camera;
    camera.Expect({0xC2, 0x00, 0x08});
    camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({announced, 0, 0, 0});
    camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(kTwoLogs + "surplus");
    EXPECT_EQ(camera.ReadCrashLogs(nullptr, nullptr, false, true).size(), 2u);
  }
}

TEST(ReadCrashLogs, OfAShortBundleIsEmptyAndDeletesNothing) {
  for (const std::size_t length :
       {std::size_t{1}, std::size_t{3}, std::size_t{4}, std::size_t{40}, std::size_t{72}, std::size_t{79}}) {
    DeletingCamera camera;
    ExpectBundle(camera, 0x08, kTwoLogs.substr(0, length));
    EXPECT_TRUE(camera.ReadCrashLogs(nullptr, nullptr, true, true).empty()) << length;
    EXPECT_TRUE(camera.deleted.empty());
  }
}

// Such a bundle ends before its last name field does.
TEST(ReadCrashLogs, BodiesOfOneToThreeBytesInAllAreReadAndDeleted) {
  for (const std::string body : {"A", "AA", "AAA"}) {
    DeletingCamera camera;
    ExpectBundle(camera, 0x08,
                 Bytes({1, 0, 0, 0, static_cast<int>(body.size()), 0, 0, 0}) + Field("L:\\a.log", 28) + body);
    EXPECT_EQ(Shown(camera.ReadCrashLogs(nullptr, nullptr, true, true)), std::vector<std::string>{"L:\\a.log:" + body});
    EXPECT_EQ(camera.deleted, std::vector<std::string>{"L:\\a.log"});
  }
}

TEST(ReadCrashLogs, OfAHugeCountOrSizeIsEmpty) {
  EXPECT_TRUE(CrashLogs(Bytes({0xFF, 0xFF, 0xFF, 0xFF}) + std::string(100, '\0')).empty());
  EXPECT_TRUE(CrashLogs(Bytes({0x1D, 0xC7, 0x71, 0x1C}) + std::string(100, '\0')).empty());  // 36 x N wraps to 20
  std::string hugeSize = kTwoLogs;
  hugeSize.replace(4, 4, Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_TRUE(CrashLogs(hugeSize).empty());
}

TEST(ReadCrashLogs, ANameWithoutNulEndsAtItsWidth) {
  const std::string bundle = Bytes({1, 0, 0, 0, 4, 0, 0, 0}) + std::string(28, 'n') + "BODY";
  EXPECT_EQ(CrashLogs(bundle), std::vector<std::string>{std::string(28, 'n') + "BODY:BODY"});
}

// A table of 31 entries in which the entries given have a size and a name.
std::string Table(std::initializer_list<std::pair<std::size_t, std::pair<int, const char*>>> entries) {
  std::string table(1116, '\0');
  for (const auto& [index, entry] : entries) {
    table.replace(36 * index, 36, Bytes({entry.first, 0, 0, 0}) + Field(entry.second, 32));
  }
  return table;
}

std::vector<_Sha1obj> Calibration(const std::string& bundle) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x06});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(Le32(static_cast<std::uint32_t>(bundle.size())));
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(bundle);
  return camera.ReadCalibration(nullptr, nullptr, true);
}

TEST(ReadCalibration, BodiesBeginBehindTheTableHoweverManyEntriesAreEmpty) {
  const std::vector<_Sha1obj> files =
      Calibration(Table({{3, {2, "three"}}, {30, {4, "thirty"}}}) + "AA" + "BBBB" + "surplus");
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0].name, "three");
  EXPECT_EQ(files[0].size, 2u);
  EXPECT_EQ(ToString(files[0].data), "AA");
  EXPECT_EQ(files[1].name, "thirty");
  EXPECT_EQ(files[1].size, 4u);
  EXPECT_EQ(ToString(files[1].data), "BBBB");
}

TEST(ReadCalibration, YieldsAtMostThirtyOneFiles) {
  std::string bundle(1116, '\0');
  for (std::size_t i = 0; i < 31; ++i) bundle[36 * i] = 1;
  const std::vector<_Sha1obj> files = Calibration(bundle + std::string(40, 'x'));
  EXPECT_EQ(files.size(), 31u);
}

TEST(ReadCalibration, OfOnlyEmptyEntriesIsEmpty) {
  EXPECT_TRUE(Calibration(std::string(1116, '\0')).empty());
}

TEST(ReadCalibration, OfAnEmptyBundleIsEmpty) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x06});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({9, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers("");
  EXPECT_TRUE(camera.ReadCalibration(nullptr, nullptr, true).empty());
}

TEST(ReadCalibration, OfAShortTableIsEmpty) {
  EXPECT_TRUE(Calibration(Table({{0, {1, "a"}}}).substr(0, 1115)).empty());
  EXPECT_TRUE(Calibration("x").empty());
}

TEST(ReadCalibration, OfAShortBodyIsEmpty) {
  EXPECT_TRUE(Calibration(Table({{0, {1, "a"}}, {1, {3, "b"}}}) + "Abb").empty());
  std::string huge = Table({{0, {1, "a"}}});
  huge.replace(36, 4, Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_TRUE(Calibration(huge + "Abb").empty());
}

// Each size alone is small enough; their sum wraps in 32 bits.
TEST(ReadCalibration, OfSizesWhoseSumWrapsIsEmpty) {
  std::string table(1116, '\0');
  table.replace(0, 4, Bytes({1, 0, 0, 0}));
  table.replace(36, 4, Bytes({0, 0, 0, 0x80}));
  table.replace(72, 4, Bytes({0, 0, 0, 0x80}));
  EXPECT_TRUE(Calibration(table + "Abb").empty());
}

}  // namespace
