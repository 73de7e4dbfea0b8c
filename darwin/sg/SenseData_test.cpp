#include "darwin/sg/SenseData.h"

#include <gtest/gtest.h>

#include <vector>

namespace darwin::sg {
namespace {

using Bytes = std::vector<std::uint8_t>;

void Expect(const Bytes& sense, int key, int code, int qualifier) {
  const wire::Sense decoded = DecodeSense(sense);
  EXPECT_EQ(decoded.key, key);
  EXPECT_EQ(decoded.asc, code);
  EXPECT_EQ(decoded.ascq, qualifier);
}

TEST(SenseDataTest, FixedFormatGivesKeyCodeAndQualifier) {
  Expect({0x70, 0, 0x05, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x20, 0x01, 0, 0, 0, 0}, 5, 0x20, 1);
}

TEST(SenseDataTest, DeferredFixedFormatIsReadLikeACurrentOne) {
  Expect({0x71, 0, 0x03, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x11, 0x00, 0, 0, 0, 0}, 3, 0x11, 0);
}

TEST(SenseDataTest, DescriptorFormatGivesKeyCodeAndQualifier) {
  Expect({0x72, 0x06, 0x29, 0x02}, 6, 0x29, 2);
}

TEST(SenseDataTest, DeferredDescriptorFormatIsReadLikeACurrentOne) {
  Expect({0x73, 0x02, 0x3A, 0x00}, 2, 0x3A, 0);
}

TEST(SenseDataTest, TheValidBitAndTheUpperBitsOfTheKeyByteAreNotPartOfTheValues) {
  Expect({0xF0, 0, 0xE4, 0, 0, 0, 0, 6, 0, 0, 0, 0, 0x44, 0x00}, 4, 0x44, 0);
}

TEST(SenseDataTest, EightBytesOfFixedFormatHaveAKeyAndNoCode) {
  Expect({0x70, 0, 0x04, 0, 0, 0, 0, 0}, 4, 0, 0);
}

TEST(SenseDataTest, NoSenseDataDecodesToNothing) {
  Expect({}, 0, 0, 0);
}

TEST(SenseDataTest, AnUnknownFormatDecodesToNothing) {
  Expect({0x7F, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5}, 0, 0, 0);
}

}  // namespace
}  // namespace darwin::sg
