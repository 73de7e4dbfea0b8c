#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/NoPlatform.h"
#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

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

// Each size is small enough by itself; their sum wraps in 32 bits.
TEST(ReadCalibration, OfSizesWhoseSumWrapsIsEmpty) {
  std::string table(1116, '\0');
  table.replace(0, 4, Bytes({1, 0, 0, 0}));
  table.replace(36, 4, Bytes({0, 0, 0, 0x80}));
  table.replace(72, 4, Bytes({0, 0, 0, 0x80}));
  EXPECT_TRUE(Calibration(table + "Abb").empty());
}

}  // namespace
