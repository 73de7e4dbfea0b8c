#include "vcam/device/Listing.h"

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

TEST(Listing, IsACountEntriesAndNames) {
  DataSet data = BuildListing({{"A.TXT", false, true, {258, 0, 0, 0}}, {".sub", true, false, {4096, 0, 0, 0}}}, false);
  base::Bytes expected{1, 0, 0, 0, 4, 0, 0, 0};
  expected.insert(expected.end(), {0x10, 0, 0, 0, 0, 0, 0, 0, 56, 0, 0, 0});
  expected.insert(expected.end(), {0x10, 0, 0, 0, 0, 0, 0, 0, 58, 0, 0, 0});
  expected.insert(expected.end(), {0x21, 0, 0, 0, 2, 1, 0, 0, 61, 0, 0, 0});
  expected.insert(expected.end(), {0x12, 0, 0, 0, 0, 0, 0, 0, 67, 0, 0, 0});
  expected.insert(expected.end(), {'.', 0, '.', '.', 0, 'A', '.', 'T', 'X', 'T', 0, '.', 's', 'u', 'b', 0});
  EXPECT_EQ(ReadWhole(data), expected);
}

TEST(Listing, CarriesTheVolumeLabelInTheRoot) {
  DataSet data = BuildListing({}, true);
  base::Bytes expected{1, 0, 0, 0, 3, 0, 0, 0};
  expected.insert(expected.end(), {0x10, 0, 0, 0, 0, 0, 0, 0, 44, 0, 0, 0});
  expected.insert(expected.end(), {0x10, 0, 0, 0, 0, 0, 0, 0, 46, 0, 0, 0});
  expected.insert(expected.end(), {0x08, 0, 0, 0, 0, 0, 0, 0, 49, 0, 0, 0});
  expected.insert(expected.end(), {'.', 0, '.', '.', 0, 'K', 'E', 'L', 'V', 'A', 0});
  EXPECT_EQ(ReadWhole(data), expected);
}

TEST(Listing, SaysTheLargestSizeForAFileThatIsLarger) {
  DataSet data = BuildListing({{"big", false, false, {5ULL << 30, 0, 0, 0}}}, false);
  const base::Bytes bytes = ReadWhole(data);
  EXPECT_EQ(base::Bytes(bytes.begin() + 36, bytes.begin() + 40), (base::Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(Listing, MarksItsCountItsOffsetsAndItsNames) {
  const DataSet data = BuildListing({}, false);
  EXPECT_EQ(data.marks.counts, (std::vector<std::uint64_t>{4}));
  EXPECT_EQ(data.marks.offsets, (std::vector<std::uint64_t>{16, 28}));
  ASSERT_EQ(data.marks.names.size(), 2U);
  EXPECT_EQ(data.marks.names[1].offset, 34U);
  EXPECT_EQ(data.marks.names[1].length, 3U);
}

}  // namespace
}  // namespace vcam
