#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

void ExpectListing(ScriptedCamera& camera, const std::string& path, const std::string& answer) {
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text(path));
  camera.Expect({0xC4, 0x00, 0x01}).Asks(camera.chunkSize_).Answers(answer);
}

std::vector<CameraDirent> List(const std::string& answer) {
  ScriptedCamera camera;
  ExpectListing(camera, "I:", answer);
  return camera.ReadDir("I:");
}

// Two entries: "A.TXT" of 5 bytes with attributes 0x20, "SUB" with 0x10. The names stand at 32 and 38.
const std::string kTwoEntries = Bytes({9,    9,   9,   9,   2,   0, 0,   0,                  //
                                       0x20, 0,   0,   0,   5,   0, 0,   0,   32,  0, 0, 0,  //
                                       0x10, 0,   0,   0,   0,   0, 0,   0,   38,  0, 0, 0,  //
                                       'A',  '.', 'T', 'X', 'T', 0, 'S', 'U', 'B', 0});

TEST(ReadDir, SendsThePathAndReadsTheListing) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Bytes({'I', ':', '\\', 0}));
  camera.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(kTwoEntries);
  EXPECT_EQ(camera.ReadDir("I:\\").size(), 2u);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "Transfer true"}));
}

TEST(ReadDir, GivesNameSizeAndAttributesInTheCamerasOrder) {
  const std::vector<CameraDirent> entries = List(kTwoEntries);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "A.TXT");
  EXPECT_EQ(entries[0].size, 5);
  EXPECT_EQ(entries[0].attributes, 0x20);
  EXPECT_EQ(entries[1].name, "SUB");
  EXPECT_EQ(entries[1].attributes, 0x10);
}

TEST(ReadDir, ReadsTheListingInChunks) {
  ScriptedCamera camera(20);
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text("I:"));
  camera.Expect({0xC4, 0x00, 0x01, 0}).Asks(20).Answers(kTwoEntries.substr(0, 20));
  camera.Expect({0xC4, 0x00, 0x01, 20}).Asks(20).Answers(kTwoEntries.substr(20, 20));
  camera.Expect({0xC4, 0x00, 0x01, 40}).Asks(20).Answers(kTwoEntries.substr(40));
  EXPECT_EQ(camera.ReadDir("I:").size(), 2u);
}

TEST(ReadDir, KeepsDotAndDotDotAndASignedSizeAndEveryAttributeBit) {
  const std::vector<CameraDirent> entries = List(Bytes({0,    0,    0,    0,    2,    0,    0,    0,                  //
                                                        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 32, 0, 0, 0,  //
                                                        0x10, 0,    0,    0,    0,    0,    0,    0x80, 34, 0, 0, 0,  //
                                                        '.',  0,    '.',  '.',  0}));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, ".");
  EXPECT_EQ(entries[0].size, -1);
  EXPECT_EQ(entries[0].attributes, -1);
  EXPECT_EQ(entries[1].name, "..");
  EXPECT_EQ(entries[1].size, -2147483647 - 1);
}

TEST(ReadDir, OfACountOfZeroOrLessIsEmpty) {
  EXPECT_TRUE(List(Bytes({0, 0, 0, 0, 0, 0, 0, 0}) + kTwoEntries.substr(8)).empty());
  EXPECT_TRUE(List(Bytes({0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}) + kTwoEntries.substr(8)).empty());
}

TEST(ReadDir, OfAnAnswerWithoutACountIsEmpty) {
  EXPECT_TRUE(List("").empty());
  EXPECT_TRUE(List(kTwoEntries.substr(0, 7)).empty());
}

TEST(ReadDir, IsEmptyWhenACommandFails) {
  ScriptedCamera camera(4);
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text("I:")).Fails();
  EXPECT_TRUE(camera.ReadDir("I:").empty());
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text("I:"));
  camera.Expect({0xC4, 0x00, 0x01}).Asks(4).Answers("abcd");
  camera.Expect({0xC4, 0x00, 0x01, 4}).Asks(4).Fails();
  EXPECT_TRUE(camera.ReadDir("I:").empty());
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text("I:")).Throws("gone");
  const ExceptionsOff off;
  EXPECT_EQ(Thrown([&] { camera.ReadDir("I:"); }), "CameraTransferError: Camera error: gone");
}

TEST(ReadDir, DropsEntriesOutsideTheAnswer) {
  std::string manyAnnounced = kTwoEntries;
  manyAnnounced[4] = 3;  // the third entry would begin at 32 and end at 44, past the 42 bytes
  EXPECT_EQ(List(manyAnnounced).size(), 2u);
  std::string hugeCount = kTwoEntries;
  hugeCount.replace(4, 4, Bytes({0xFF, 0xFF, 0xFF, 0x7F}));
  EXPECT_EQ(List(hugeCount).size(), 2u);
}

TEST(ReadDir, DropsAnEntryWhoseNameLiesOutsideTheAnswer) {
  for (const std::string& offset : {Bytes({42, 0, 0, 0}), Bytes({0xFF, 0xFF, 0xFF, 0xFF}), Bytes({0, 0, 0, 0x80}),
                                    Bytes({0xFF, 0xFF, 0xFF, 0x7F})}) {
    std::string answer = kTwoEntries;
    answer.replace(16, 4, offset);
    const std::vector<CameraDirent> entries = List(answer);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "SUB");
  }
}

TEST(ReadDir, KeepsANameWithoutNulUpToTheEndOfTheAnswer) {
  const std::vector<CameraDirent> entries = List(kTwoEntries.substr(0, 41));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "A.TXT");
  EXPECT_EQ(entries[1].name, "SUB");
}

// The tree that a traversal sees, directory by directory.
class TreeCamera : public ScriptedCamera {
 public:
  std::vector<CameraDirent> ReadDir(const char* path) override {
    listed.emplace_back(path);
    return tree[path];
  }
  std::map<std::string, std::vector<CameraDirent>> tree;
  std::vector<std::string> listed;
};

using Files = std::vector<std::pair<std::string, long long>>;

TEST(TraverseDir, CollectsTheFilesDepthFirst) {
  TreeCamera camera;
  camera.tree["I:\\DCIM"] = {{".", 0, 0x10}, {"..", 0, 0x10}, {"SUB", 0, 0x10}, {"A.TXT", 5, 0x20}};
  camera.tree["I:\\DCIM\\SUB"] = {{"B.JPG", 10, 0x20}};
  Files files;
  camera.TraverseDir("I:\\DCIM", files);
  EXPECT_EQ(files, (Files{{"I:\\DCIM\\SUB\\B.JPG", 10}, {"I:\\DCIM\\A.TXT", 5}}));
  EXPECT_EQ(camera.listed, (std::vector<std::string>{"I:\\DCIM", "I:\\DCIM\\SUB"}));
}

TEST(TraverseDir, AddsToWhatIsThereAlready) {
  TreeCamera camera;
  camera.tree["I:"] = {{"A", 1, 0}};
  Files files = {{"before", 7}};
  camera.TraverseDir("I:", files);
  camera.TraverseDir("I:", files);
  EXPECT_EQ(files, (Files{{"before", 7}, {"I:\\A", 1}, {"I:\\A", 1}}));
}

TEST(TraverseDir, SkipsVolumeLabelsUnlessTheyAreDirectories) {
  TreeCamera camera;
  camera.tree["I:"] = {{"LABEL", 1, 0x08}, {"BOTH", 0, 0x18}, {"OTHER", 2, 0x27}};
  camera.tree["I:\\BOTH"] = {{"B", 3, 0}};
  Files files;
  camera.TraverseDir("I:", files);
  EXPECT_EQ(files, (Files{{"I:\\BOTH\\B", 3}, {"I:\\OTHER", 2}}));
}

TEST(TraverseDir, SignExtendsTheSize) {
  TreeCamera camera;
  camera.tree["I:"] = {{"A", -1, 0}};
  Files files;
  camera.TraverseDir("I:", files);
  EXPECT_EQ(files, (Files{{"I:\\A", -1}}));
}

TEST(TraverseDir, NormalisesNothing) {
  TreeCamera camera;
  camera.tree["I:\\"] = {{"A", 1, 0}};
  Files files;
  camera.TraverseDir("I:\\", files);
  EXPECT_EQ(files, (Files{{"I:\\\\A", 1}}));
}

// Only directories of these names are passed over.
TEST(TraverseDir, ReportsAnOrdinaryFileNamedDot) {
  TreeCamera camera;
  camera.tree["I:"] = {{".", 4, 0}, {"..", 5, 0}};
  Files files;
  camera.TraverseDir("I:", files);
  EXPECT_EQ(files, (Files{{"I:\\.", 4}, {"I:\\..", 5}}));
}

TEST(TraverseDir, PassesOverADirectoryThatCannotBeRead) {
  ScriptedCamera camera;
  ExpectListing(camera, "I:", Bytes({0,    0,   0,   0, 2,   0, 0, 0,               //
                                     0x10, 0,   0,   0, 0,   0, 0, 0, 32, 0, 0, 0,  //
                                     0x20, 0,   0,   0, 7,   0, 0, 0, 36, 0, 0, 0,  //
                                     'S',  'U', 'B', 0, 'A', 0}));
  camera.Expect({0xC2, 0x00, 0x03}).Sends(Text("I:\\SUB")).Fails();
  Files files;
  camera.TraverseDir("I:", files);
  EXPECT_EQ(files, (Files{{"I:\\A", 7}}));
  EXPECT_EQ(camera.calls,
            (Calls{"ClearCancel true", "Transfer true", "Transfer true", "ClearCancel true", "Transfer true"}));
}

// A camera whose every folder holds a folder and a file, down to a depth.
class DeepCamera : public ScriptedCamera {
 public:
  explicit DeepCamera(int depth) : left_(depth) {}
  std::vector<CameraDirent> ReadDir(const char*) override {
    if (left_ == 0) return {};
    --left_;
    return {{"D", 0, 0x10}, {"F", 1, 0x20}};
  }

 private:
  int left_;
};

TEST(TraverseDir, HandsOverWholePathsSoThatTheyGrowWithDepthTimesEntries) {
  DeepCamera camera(2000);
  Files files;
  camera.TraverseDir("I:", files);
  ASSERT_EQ(files.size(), 2000U);
  EXPECT_EQ(files.back().first, "I:\\F");
  std::size_t bytes = 0;
  for (const auto& file : files) bytes += file.first.size();
  EXPECT_EQ(bytes, 4006000U);  // 4, 6, 8 ... 4002
}

TEST(TraverseDir, ListsAPathAsItStands) {
  TreeCamera camera;
  Files files;
  camera.TraverseDir("", files);
  EXPECT_TRUE(files.empty());
  EXPECT_EQ(camera.listed, std::vector<std::string>{""});
}

}  // namespace
