#include "vcam/device/Bundles.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

using test::AsText;

class BundlesTest : public testing::Test {
 protected:
  BundleFile Put(const std::string& name, std::string_view content) const {
    scratch_.Put(name, content);
    return {name, name, content.size()};
  }
  base::Bytes Whole(DataSet data) const {
    base::Bytes bytes(data.Size());
    EXPECT_TRUE(data.Read(Storage(scratch_.Path()), 0, bytes));
    return bytes;
  }

  test::ScratchStorage scratch_;
};

base::Bytes Entry(std::uint8_t size, std::string_view name) {
  base::Bytes entry{size, 0, 0, 0};
  base::AppendText(entry, name);
  entry.resize(36);
  return entry;
}

base::Bytes Join(std::initializer_list<base::Bytes> parts) {
  base::Bytes all;
  for (const base::Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST_F(BundlesTest, CrashLogBodiesStartFourBytesBeforeTheTableEnds) {
  const base::Bytes bundle = Whole(BuildCrashLogBundle({Put("A", "first"), Put("B", "two")}));
  base::Bytes expected = Join({{2, 0, 0, 0}, Entry(5, "A"), Entry(3, "B")});
  ASSERT_EQ(expected.size(), 76U);
  expected.resize(72);
  base::AppendText(expected, "firsttwo");
  EXPECT_EQ(bundle, expected);
}

TEST_F(BundlesTest, CrashLogNamesEndBeforeTheBodies) {
  const std::string longest(kMaxCrashLogName, 'n');
  const base::Bytes bundle = Whole(BuildCrashLogBundle({Put(longest, "BODY")}));
  EXPECT_EQ(AsText(bundle), std::string("\1\0\0\0\4\0\0\0", 8) + longest + std::string(1, '\0') + "BODY");
}

TEST_F(BundlesTest, CrashLogBundleEndsWithItsBodies) {
  EXPECT_EQ(Whole(BuildCrashLogBundle({})), (base::Bytes{0, 0, 0, 0}));
  base::Bytes one = Join({{1, 0, 0, 0}, Entry(0, "A")});
  one.resize(36);
  EXPECT_EQ(Whole(BuildCrashLogBundle({Put("A", "")})), one);
  one[4] = 1;
  one.push_back('x');
  EXPECT_EQ(Whole(BuildCrashLogBundle({Put("A", "x")})), one);
}

TEST_F(BundlesTest, CalibrationAlwaysHasThirtyOneEntries) {
  base::Bytes expected = Join({Entry(3, "gain"), Entry(2, "offset")});
  expected.resize(1116);
  EXPECT_EQ(Whole(BuildCalibrationBundle({})), base::Bytes(1116));
  base::AppendText(expected, "abcde");
  EXPECT_EQ(Whole(BuildCalibrationBundle({Put("gain", "abc"), Put("offset", "de")})), expected);
}

TEST_F(BundlesTest, BatchIsSizesAndBodies) {
  const base::Bytes bundle = Whole(BuildBatchBundle({Put("a", "0123456789"), {}, Put("c", "abcde")}));
  EXPECT_EQ(bundle.size(), 27U);
  EXPECT_EQ(AsText(bundle), std::string("\x0A\0\0\0\0\0\0\0\5\0\0\0", 12) + "0123456789abcde");
  EXPECT_TRUE(Whole(BuildBatchBundle({})).empty());
}

TEST_F(BundlesTest, CompressedRawIsTwoHalves) {
  EXPECT_EQ(AsText(Whole(BuildCompressedRawBundle(Put("r", "abcde")))), std::string("\3\0\0\0\2\0\0\0", 8) + "abcde");
  EXPECT_EQ(Whole(BuildCompressedRawBundle(Put("e", ""))), base::Bytes(8));
}

TEST_F(BundlesTest, MarkTheirNumbersAndNames) {
  const DataSet crash = BuildCrashLogBundle({Put("A", "xxxx"), Put("B", "x")});
  EXPECT_EQ(crash.marks.counts, (std::vector<std::uint64_t>{0, 4, 40}));
  ASSERT_EQ(crash.marks.names.size(), 2U);
  EXPECT_EQ(crash.marks.names[0].length, 32U);
  EXPECT_EQ(crash.marks.names[1].offset, 44U);
  EXPECT_EQ(crash.marks.names[1].length, 28U);
}

}  // namespace
}  // namespace vcam
