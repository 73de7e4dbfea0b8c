#include "vcam/device/Catalogue.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

base::Bytes ReadWhole(DataSet& data) {
  const test::ScratchStorage scratch;
  base::Bytes bytes(data.Size());
  EXPECT_TRUE(data.Read(Storage(scratch.Path()), 0, bytes));
  return bytes;
}

Picture OnePicture() {
  Picture picture{{100, "ABCDE"}, "IMG_", 7, {}};
  picture.files[0] = FileStamp{1000, 1773500966'000000000, 0, 0};
  picture.files[3] = FileStamp{500, 0, 0, 0};
  return picture;
}

// Directory suffix, file prefix, directory number, file number.
const base::Bytes kIdentity{'A', 'B', 'C', 'D', 'E', 0, 0, 0, 'I', 'M', 'G', '_', 0, 0, 0, 0, 100, 0, 0, 0, 7, 0, 0, 0};

TEST(Catalogue, LaysARecordOut) {
  const base::Bytes record = PlainRecord(OnePicture(), "a9993e");
  base::Bytes expected = kIdentity;
  expected.insert(expected.end(), {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0});
  expected.insert(expected.end(), {0xE8, 0x03, 0, 0});        // 1,000 bytes of JPG
  expected.insert(expected.end(), {0xA6, 0x9B, 0xC4, 0x3A});  // 0.0015 megabytes in all
  expected.insert(expected.end(), {'a', '9', '9', '9', '3', 'e'});
  expected.resize(96);
  base::AppendText(expected, "2026-03-14 15:09:26");
  expected.resize(124);
  expected.insert(expected.end(), {0x26, 0x7A, 0xB5, 0x69});  // 1,773,500,966
  EXPECT_EQ(record, expected);
}

TEST(Catalogue, IsAHeaderAFieldTableAndRecords) {
  DataSet data = BuildCatalogue({PlainRecord(OnePicture(), "")}, {28, {{1, 24}, {0, 0}}});
  base::Bytes expected{1, 0, 0, 0, 28, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  expected.insert(expected.end(), kIdentity.begin(), kIdentity.end());
  expected.insert(expected.end(), {1, 0, 0, 0});
  EXPECT_EQ(ReadWhole(data), expected);
}

TEST(Catalogue, FillsWhatNoKnownFieldCovers) {
  DataSet data = BuildCatalogue({PlainRecord(OnePicture(), "")}, {32, {{0, 4}, {77, 0}, {3, 28}}});
  const base::Bytes bytes = ReadWhole(data);
  ASSERT_EQ(bytes.size(), 12U + 24U + 32U);
  EXPECT_EQ(base::Bytes(bytes.begin() + 36, bytes.begin() + 41), (base::Bytes{0xEE, 0xEE, 0xEE, 0xEE, 'A'}));
  EXPECT_EQ(base::Bytes(bytes.end() - 4, bytes.end()), base::Bytes(4)) << "no text file";
}

TEST(Catalogue, LeavesOutAFieldThatDoesNotFit) {
  DataSet data = BuildCatalogue({PlainRecord(OnePicture(), "")}, {8, {{0, 0}, {1, 0xFFFFFFFF}}});
  const base::Bytes bytes = ReadWhole(data);
  EXPECT_EQ(base::Bytes(bytes.end() - 8, bytes.end()), base::Bytes(8, 0xEE));
}

TEST(Catalogue, MarksItsCountItsOffsetsAndItsNames) {
  const DataSet data = BuildCatalogue({base::Bytes(128), base::Bytes(128)}, CatalogueLayout::Standard());
  EXPECT_EQ(data.marks.counts, (std::vector<std::uint64_t>{8}));
  EXPECT_EQ(data.marks.offsets.size(), 10U);
  ASSERT_EQ(data.marks.names.size(), 4U);
  EXPECT_EQ(data.marks.names[0].offset, 92U);
  EXPECT_EQ(data.marks.names[3].offset, 92U + 128U + 8U);
}

TEST(Catalogue, GivesEachFieldTheBytesOfItsType) {
  const std::uint32_t sizes[] = {24, 4, 4, 4, 4, 4, 4, 48, 28, 4};
  for (std::uint32_t type = 0; type < std::size(sizes); ++type) {
    DataSet data = BuildCatalogue({base::Bytes(128)}, {sizes[type] + 1, {{type, 0}}});
    const base::Bytes bytes = ReadWhole(data);
    ASSERT_EQ(bytes.size(), 20U + sizes[type] + 1);
    base::Bytes expected(sizes[type]);
    expected.push_back(0xEE);
    EXPECT_EQ(base::Bytes(bytes.begin() + 20, bytes.end()), expected) << type;
  }
}

TEST(Catalogue, MarksNamesWhereItsLayoutPutsThem) {
  const DataSet data = BuildCatalogue({base::Bytes(128), base::Bytes(128)}, {32, {{1, 0}, {0, 4}}});
  ASSERT_EQ(data.marks.names.size(), 4U);
  EXPECT_EQ(data.marks.names[0].offset, 28U + 4U);
  EXPECT_EQ(data.marks.names[1].offset, 28U + 4U + 8U);
  EXPECT_EQ(data.marks.names[2].offset, 28U + 32U + 4U);
  EXPECT_EQ(data.marks.names[3].offset, 28U + 32U + 4U + 8U);
}

}  // namespace
}  // namespace vcam
