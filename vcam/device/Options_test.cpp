#include "vcam/device/Options.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

namespace vcam {
namespace {

constexpr std::array<std::uint32_t, 10> kSizes{24, 4, 4, 4, 4, 4, 4, 48, 28, 4};

/// Whether every known field stands once, inside the record, and overlaps no other.
void ExpectSound(const CatalogueLayout& layout) {
  std::vector<int> used(layout.stride);
  std::vector<int> seen(kSizes.size());
  for (const CatalogueField& field : layout.fields) {
    if (field.type >= kSizes.size()) continue;
    ++seen[field.type];
    ASSERT_LE(field.offset + kSizes[field.type], layout.stride);
    for (std::uint32_t i = 0; i < kSizes[field.type]; ++i) ++used[field.offset + i];
  }
  EXPECT_THAT(seen, testing::Each(1));
  EXPECT_THAT(used, testing::Each(testing::Le(1)));
}

TEST(CatalogueLayout, HoldsEveryFieldOnce) {
  for (const CatalogueLayout& layout : {CatalogueLayout::Standard(), CatalogueLayout::Reordered(),
                                        CatalogueLayout::UnknownFields(), CatalogueLayout::Wide()}) {
    ExpectSound(layout);
  }
}

TEST(CatalogueLayout, VariesInOrderTypesAndStride) {
  EXPECT_EQ(CatalogueLayout::Standard().fields.front().type, 0U);
  EXPECT_EQ(CatalogueLayout::Reordered().fields.front().type, 9U);
  EXPECT_EQ(CatalogueLayout::UnknownFields().fields.size(), 13U);
  EXPECT_EQ(CatalogueLayout::Wide().stride, 200U);
}

TEST(CatalogueLayout, IsFoundByItsName) {
  EXPECT_EQ(CatalogueLayout::ByName("standard").value().stride, 128U);
  EXPECT_EQ(CatalogueLayout::ByName("reordered").value().fields.front().type, 9U);
  EXPECT_EQ(CatalogueLayout::ByName("unknown-fields").value().stride, 144U);
  EXPECT_EQ(CatalogueLayout::ByName("wide").value().stride, 200U);
  EXPECT_FALSE(CatalogueLayout::ByName("odd"));
  EXPECT_FALSE(CatalogueLayout::ByName(""));
}

}  // namespace
}  // namespace vcam
