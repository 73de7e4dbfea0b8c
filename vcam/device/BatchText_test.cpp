#include "vcam/device/BatchText.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

const std::string kFirst(40, 'a');
const std::string kSecond(40, '0');

TEST(BatchText, IsKeysWithQualifiersWithoutSeparator) {
  const auto items = ParseBatchText(kFirst + ".RAW" + kSecond + kFirst + ".128");
  ASSERT_TRUE(items);
  ASSERT_EQ(items->size(), 3U);
  EXPECT_EQ((*items)[0].key, kFirst);
  EXPECT_EQ((*items)[0].extension, "RAW");
  EXPECT_EQ((*items)[1].key, kSecond);
  EXPECT_EQ((*items)[1].extension, "");
  EXPECT_EQ((*items)[2].extension, "128");
}

TEST(BatchText, MayBeEmpty) {
  const auto items = ParseBatchText("");
  ASSERT_TRUE(items);
  EXPECT_TRUE(items->empty());
}

TEST(BatchText, RefusesEverythingElse) {
  for (const std::string& text : {std::string("k1ak2b"), kFirst.substr(1), kFirst + "a", kFirst + ".", kFirst + ".RA",
                                  kFirst + ".GIF", kFirst + "\\" + kSecond, std::string(40, 'A'), kFirst + ".RAWx"}) {
    EXPECT_FALSE(ParseBatchText(text)) << text;
  }
}

}  // namespace
}  // namespace vcam
