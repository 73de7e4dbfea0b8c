#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "testing/FaultSweep.h"

// Every fault at every transfer of the commands on the camera's storage. Chunks are small, so that each read has two.

namespace {

using namespace wifi_testing;

class StorageSweep : public testing::TestWithParam<Sweep> {};

TEST_P(StorageSweep, EveryFaultHasItsOutcome) {
  RunSweep(GetParam());
}

std::string NameOf(const testing::TestParamInfo<Sweep>& info) {
  return info.param.name;
}

Step Size(int size) {
  return Step({0xC6, 0, 0}).Asks(4).Answers({size & 0xFF, size >> 8, 0, 0});
}

const std::vector<Outcomes> kFileOutcomes = {
    {"1 cut", "1 empty", "4 abcdefghij", "4 abcdefghij"},
    {"2 cut", "2 empty", "4 abcdefghij", "4 abcdefghij"},
    {"3 cut", "3 empty", "3 ReadFile() truncated. / empty", "3 ReadFile() truncated. / empty"},
    {"4 cut", "4 empty", "4 ReadFile() truncated. / empty", "4 abcdefghij"}};

DcfObj Picture() {
  DcfObj picture{};
  std::strcpy(picture.filePrefix, "P");
  picture.hasJpg = 1;
  return picture;
}

INSTANTIATE_TEST_SUITE_P(
    Files, StorageSweep,
    testing::Values(
        Sweep{"ReadFile",
              8,
              {Step({0xC2, 0, 1}).Sends(Text("x")), Size(10), Step({0xC4, 0, 1, 0}).Asks(8).Answers("abcdefgh"),
               Step({0xC4, 0, 1, 8}).Asks(8).Answers("ij")},
              [](Camera& camera) { return Show(camera.ReadFile("x", nullptr, nullptr, true)); },
              "4 abcdefghij",
              kFileOutcomes},
        Sweep{"ReadFileOfAPicture",
              8,
              {Step({0xC2, 0, 1}).Sends(Text("I:\\DCIM\\000\\P0000.JPG")), Size(10),
               Step({0xC4, 0, 1, 0}).Asks(8).Answers("abcdefgh"), Step({0xC4, 0, 1, 8}).Asks(8).Answers("ij")},
              [](Camera& camera) { return Show(camera.ReadFile(Picture(), 1, nullptr, nullptr, true)); },
              "4 abcdefghij",
              kFileOutcomes},
        Sweep{"WriteFile",
              8,
              {Step({0xC2, 0, 1, 1}).Sends(Text("x")), Step({0xC5, 0, 0}).Sends("abcdefgh"),
               Step({0xC5, 0, 8}).Sends("ij"), Step({0xC3})},
              [](Camera& camera) {
                camera.WriteFile("x", "abcdefghij", 10, nullptr, nullptr);
                return "done";
              },
              "4 done",
              {{"1 cut", "4 done", "4 done", "4 done"},
               {"2 cut", "4 done", "4 done", "4 done"},
               {"3 cut", "4 done", "4 done", "4 done"},
               {"4 cut", "4 done", "4 done", "4 done"}}},
        Sweep{"DeleteFile",
              8,
              {Step({0xC0, 0, 1}).Sends(Text("x"))},
              [](Camera& camera) { return Show(camera.DeleteFile("x")); },
              "1 true",
              {{"1 cut", "1 false", "1 true", "1 true"}}},
        Sweep{"DeleteDcfObject",
              8,
              {Step({0xC0, 0, 5}).Sends(std::string(8, '\0') + "P" + std::string(15, '\0'))},
              [](Camera& camera) { return Show(camera.DeleteDcfObject(Picture())); },
              "1 true",
              {{"1 cut", "1 false", "1 true", "1 true"}}},
        Sweep{"DeleteBatch",
              8,
              {Step({0xC0, 0, 6}).Sends(Text("ab"))},
              [](Camera& camera) {
                return Show(camera.DeleteBatch({"a", "b"}, true));
              },
              "1 true",
              {{"1 cut", "1 false", "1 true", "1 true"}}}),
    NameOf);

std::string RunCatalogue(Camera& camera) {
  std::vector<std::string> items;
  for (const DcfObj& picture : camera.GetDcf()) items.push_back(std::to_string(picture.hasJpg));
  return Show(items);
}

std::string RunListing(Camera& camera) {
  std::vector<std::string> items;
  for (const CameraDirent& entry : camera.ReadDir("I:")) items.push_back(entry.name);
  return Show(items);
}

std::string RunTraversal(Camera& camera) {
  std::vector<std::pair<std::string, long long>> files;
  camera.TraverseDir("I:", files);
  std::vector<std::string> items;
  for (const auto& [path, size] : files) items.push_back(path + "=" + std::to_string(size));
  return Show(items);
}

// One field, "has JPG" at offset 0 of records of 4 bytes; two records, 1 and 2.
const std::string kCatalogue =
    Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0});

// Both listings end with the NUL of a name. An answer that is one byte short lacks only that NUL, and the name is kept.
const std::string kListing = Bytes({0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 20, 0, 0, 0, 'B', 0});

const std::string kTree = Bytes({0, 0, 0, 0, 2, 0, 0, 0, 0x10, 0,  0, 0, 0, 0,   0,   0,   32, 0,   0,
                                 0, 0, 0, 0, 0, 7, 0, 0, 0,    36, 0, 0, 0, 'S', 'U', 'B', 0,  'A', 0});

INSTANTIATE_TEST_SUITE_P(
    Catalogues, StorageSweep,
    testing::Values(Sweep{"GetDcf",
                          16,
                          {Step({0xC2, 0, 2}), Step({0xC4, 0, 1, 0}).Asks(16).Answers(kCatalogue.substr(0, 16)),
                           Step({0xC4, 0, 1, 16}).Asks(16).Answers(kCatalogue.substr(16))},
                          RunCatalogue,
                          "3 [1 2]",
                          {{"1 cut", "1 empty", "3 [1 2]", "3 [1 2]"},
                           {"2 cut", "2 empty", "2 DcfHeader truncated. / empty", "2 DcfHeader truncated. / empty"},
                           {"3 cut", "3 empty", "3 [1]", "3 [1 2]"}}},
                    Sweep{"ReadDir",
                          16,
                          {Step({0xC2, 0, 3}).Sends(Text("I:")),
                           Step({0xC4, 0, 1, 0}).Asks(16).Answers(kListing.substr(0, 16)),
                           Step({0xC4, 0, 1, 16}).Asks(16).Answers(kListing.substr(16))},
                          RunListing,
                          "3 [B]",
                          {{"1 cut", "1 empty", "3 [B]", "3 [B]"},
                           {"2 cut", "2 empty", "2 empty", "2 empty"},
                           {"3 cut", "3 empty", "3 [B]", "3 [B]"}}},
                    Sweep{"TraverseDir",
                          64,
                          {Step({0xC2, 0, 3}).Sends(Text("I:")), Step({0xC4, 0, 1}).Asks(64).Answers(kTree),
                           Step({0xC2, 0, 3}).Sends(Text("I:\\SUB")), Step({0xC4, 0, 1}).Asks(64).Answers(kListing)},
                          RunTraversal,
                          "4 [I:\\SUB\\B=1 I:\\A=7]",
                          {{"1 cut", "1 empty", "4 [I:\\SUB\\B=1 I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]"},
                           {"2 cut", "2 empty", "4 [I:\\SUB\\B=1 I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]"},
                           {"3 cut", "3 [I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]"},
                           {"4 cut", "4 [I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]", "4 [I:\\SUB\\B=1 I:\\A=7]"}}}),
    NameOf);

// One log of five bytes; its body begins four bytes before the table's end.
const std::string kCrashLogs = Bytes({1, 0, 0, 0, 5, 0, 0, 0}) + Field("L", 28) + "Body!";

const std::string kCalibration = Bytes({1, 0, 0, 0, 'c'}) + std::string(1111, '\0') + "Z";

INSTANTIATE_TEST_SUITE_P(
    Bundles, StorageSweep,
    testing::Values(
        Sweep{"ReadCrashLogs",
              32,
              {Step({0xC2, 0, 8}), Size(41), Step({0xC4, 0, 0, 0}).Asks(32).Answers(kCrashLogs.substr(0, 32)),
               Step({0xC4, 0, 0, 32}).Asks(32).Answers(kCrashLogs.substr(32)), Step({0xC0, 0, 1}).Sends(Text("L"))},
              [](Camera& camera) { return Show(camera.ReadCrashLogs(nullptr, nullptr, true, true)); },
              "5 [L:Body!]",
              {{"1 cut", "1 empty", "5 [L:Body!]", "5 [L:Body!]"},
               {"2 cut", "2 empty", "5 [L:Body!]", "5 [L:Body!]"},
               {"3 cut", "3 empty", "3 empty", "3 empty"},
               {"4 cut", "4 empty", "4 empty", "5 [L:Body!]"},
               {"5 cut", "5 [L:Body!]", "5 [L:Body!]", "5 [L:Body!]"}}},
        Sweep{"ReadCalibration",
              1000,
              {Step({0xC2, 0, 6}), Size(1117), Step({0xC4, 0, 0, 0}).Asks(1000).Answers(kCalibration.substr(0, 1000)),
               Step({0xC4, 0, 0, 0xE8, 0x03}).Asks(1000).Answers(kCalibration.substr(1000))},
              [](Camera& camera) { return Show(camera.ReadCalibration(nullptr, nullptr, true)); },
              "4 [c:Z]",
              {{"1 cut", "1 empty", "4 [c:Z]", "4 [c:Z]"},
               {"2 cut", "2 empty", "4 [c:Z]", "4 [c:Z]"},
               {"3 cut", "3 empty", "3 empty", "3 empty"},
               {"4 cut", "4 empty", "4 empty", "4 [c:Z]"}}},
        Sweep{"ReadFilesBySha1",
              8,
              {Step({0xC2, 0, 5}).Sends(Text("kq")), Size(9),
               Step({0xC4, 0, 0, 0}).Asks(8).Answers({5, 0, 0, 0, 'B', 'o', 'd', 'y'}),
               Step({0xC4, 0, 0, 8}).Asks(8).Answers("!")},
              [](Camera& camera) { return Show(camera.ReadFilesBySha1({"k"}, {"q"}, nullptr, nullptr, true)); },
              "4 [k:Body!]",
              {{"1 cut", "1 empty", "4 [k:Body!]", "4 [k:Body!]"},
               {"2 cut", "2 empty", "4 [k:Body!]", "4 [k:Body!]"},
               {"3 cut", "3 empty", "3 ReadFile() truncated. / empty", "3 ReadFile() truncated. / empty"},
               {"4 cut", "4 empty", "4 ReadFile() truncated. / empty", "4 [k:Body!]"}}},
        Sweep{"ReadCompressedRaw",
              8,
              {Step({0xC2, 0, 7}).Sends(Text("k")), Size(10),
               Step({0xC4, 0, 0, 0}).Asks(8).Answers({1, 0, 0, 0, 1, 0, 0, 0}),
               Step({0xC4, 0, 0, 8}).Asks(8).Answers("AB")},
              [](Camera& camera) { return Show(camera.ReadCompressedRaw("k", nullptr, nullptr, true)); },
              "4 [k:A k:B]",
              {{"1 cut", "1 empty", "4 [k:A k:B]", "4 [k:A k:B]"},
               {"2 cut", "2 empty", "4 [k:A k:B]", "4 [k:A k:B]"},
               {"3 cut", "3 empty", "3 empty", "3 empty"},
               {"4 cut", "4 empty", "4 empty", "4 empty"}}}),
    NameOf);

}  // namespace
