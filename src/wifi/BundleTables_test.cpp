#include "BundleTables.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Sha1obj.h"
#include "testing/Bytes.h"

namespace {

using namespace wifi_testing;

TEST(UnpackCrashLogHeader, GivesNamesAndSizesInTableOrder) {
  const std::string bundle =
      Bytes({2, 0, 0, 0, 5, 0, 0, 0}) + Field("one", 32) + Bytes({0x04, 0x03, 0x02, 0x81}) + Field("two", 32);
  const std::vector<_Sha1obj> files = UnpackCrashLogHeader(bundle.data());
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0].name, "one");
  EXPECT_EQ(files[0].size, 5u);
  EXPECT_TRUE(files[0].data.empty());
  EXPECT_EQ(files[1].name, "two");
  EXPECT_EQ(files[1].size, 0x81020304u);
  EXPECT_TRUE(UnpackCrashLogHeader(Bytes({0, 0, 0, 0}).data()).empty());
}

TEST(UnpackCrashLogHeader, ReadsFromAnyAlignment) {
  const std::string bundle = "#" + Bytes({1, 0, 0, 0, 5, 0, 0, 0}) + std::string(32, 'n');
  const std::vector<_Sha1obj> files = UnpackCrashLogHeader(bundle.data() + 1);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].name, std::string(32, 'n'));
}

TEST(UnpackCalibrationHeader, GivesThirtyOneRecordsWhateverTheirSizes) {
  std::string bundle(1116, '\0');
  bundle.replace(0, 4, Bytes({1, 0, 0, 0}));
  bundle.replace(4, 32, std::string(32, 'f'));
  bundle.replace(1080, 4, Bytes({0, 0, 0, 0x80}));
  bundle.replace(1084, 4, "last");
  const std::vector<_Sha1obj> files = UnpackCalibrationHeader(bundle.data());
  ASSERT_EQ(files.size(), 31u);
  EXPECT_EQ(files[0].name, std::string(32, 'f'));
  EXPECT_EQ(files[0].size, 1u);
  EXPECT_EQ(files[1].name, "");
  EXPECT_EQ(files[1].size, 0u);
  EXPECT_EQ(files[30].name, "last");
  EXPECT_EQ(files[30].size, 0x80000000u);
  EXPECT_TRUE(files[30].data.empty());
}

TEST(UnpackBatchHeader, ReadsTheGivenNumberOfValues) {
  const std::string bundle = "#" + Bytes({1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x04, 0x03, 0x02, 0x01});
  EXPECT_EQ(UnpackBatchHeader(3, bundle.data() + 1), (std::vector<unsigned int>{1, 0xFFFFFFFFu, 0x01020304}));
  EXPECT_EQ(UnpackBatchHeader(1, bundle.data() + 1), std::vector<unsigned int>{1});
  EXPECT_TRUE(UnpackBatchHeader(0, bundle.data()).empty());
}

TEST(UnpackRawCompressionHeader, ReadsTwoValuesInOrder) {
  const std::string bundle = "#" + Bytes({0, 0, 0, 0x80, 0x04, 0x03, 0x02, 0x01});
  EXPECT_EQ(UnpackRawCompressionHeader(bundle.data() + 1), (std::vector<unsigned int>{0x80000000u, 0x01020304}));
}

TEST(DecodeCrashLogTable, WaitsForThirtySixBytesAnEntry) {
  const std::string table = Bytes({1, 0, 0, 0, 7, 0, 0, 0}) + Field("log", 28);
  for (const std::size_t length : {std::size_t{0}, std::size_t{3}, std::size_t{4}, std::size_t{35}}) {
    EXPECT_FALSE(kelva::DecodeCrashLogTable({table.data(), length})) << length;
  }
  const std::optional<kelva::BundleTable> decoded = kelva::DecodeCrashLogTable(table);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->bodyStart, 36u);
  ASSERT_EQ(decoded->entries.size(), 1u);
  EXPECT_EQ(decoded->entries[0].name, "log");
}

// The last name field ends four bytes behind 36 x N; its name may end there too.
TEST(DecodeCrashLogTable, WaitsForTheEndOfTheLastName) {
  const std::string table = Bytes({1, 0, 0, 0, 7, 0, 0, 0}) + std::string(28, 'n');
  EXPECT_FALSE(kelva::DecodeCrashLogTable(table));
  EXPECT_FALSE(kelva::DecodeCrashLogTable(table + "abc"));
  const std::optional<kelva::BundleTable> ended = kelva::DecodeCrashLogTable(table + "ab" + std::string(1, '\0'));
  ASSERT_TRUE(ended);
  EXPECT_EQ(ended->entries[0].name, std::string(28, 'n') + "ab");
  const std::optional<kelva::BundleTable> full = kelva::DecodeCrashLogTable(table + "abcd");
  ASSERT_TRUE(full);
  EXPECT_EQ(full->entries[0].name, std::string(28, 'n') + "abcd");
}

TEST(DecodeCrashLogTable, DoesNotWrapAHugeCount) {
  EXPECT_FALSE(kelva::DecodeCrashLogTable(Bytes({0x1D, 0xC7, 0x71, 0x1C}) + std::string(96, '\0')));
}

TEST(DecodeCalibrationTable, WaitsForAllThirtyOneEntries) {
  EXPECT_FALSE(kelva::DecodeCalibrationTable(std::string(1115, '\0')));
  const std::optional<kelva::BundleTable> decoded = kelva::DecodeCalibrationTable(std::string(1116, '\0'));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->bodyStart, 1116u);
  EXPECT_EQ(decoded->entries.size(), 31u);
}

TEST(DecodeBatchTable, NamesEachSizeByItsKey) {
  const std::vector<std::string> keys = {"a", "b"};
  EXPECT_FALSE(kelva::DecodeBatchTable(keys, std::string(7, '\0')));
  const std::optional<kelva::BundleTable> decoded = kelva::DecodeBatchTable(keys, Bytes({1, 0, 0, 0, 2, 0, 0, 0}));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->bodyStart, 8u);
  EXPECT_EQ(decoded->entries[1].name, "b");
  EXPECT_EQ(decoded->entries[1].size, 2u);
}

TEST(DecodeCompressedRawTable, GivesBothPartsTheKey) {
  EXPECT_FALSE(kelva::DecodeCompressedRawTable("k", std::string(7, '\0')));
  const std::optional<kelva::BundleTable> decoded =
      kelva::DecodeCompressedRawTable("k", Bytes({1, 0, 0, 0, 2, 0, 0, 0}));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->bodyStart, 8u);
  ASSERT_EQ(decoded->entries.size(), 2u);
  EXPECT_EQ(decoded->entries[0].name, "k");
  EXPECT_EQ(decoded->entries[1].size, 2u);
}

}  // namespace
