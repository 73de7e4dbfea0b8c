#include "vcam/device/Opaque.h"

#include <gmock/gmock.h>

#include "src/wifi/DcfObj.h"
#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::Send;
using test::Tell;

base::Bytes Opaque(std::optional<std::uint32_t> seed, std::string_view name) {
  base::Bytes bytes(8);
  MakeOpaque(seed, name, bytes);
  return bytes;
}

TEST(MakeOpaque, FollowsFromSeedAndName) {
  EXPECT_EQ(Opaque(7, "clock"), Opaque(7, "clock"));
  EXPECT_NE(Opaque(7, "clock"), Opaque(8, "clock"));
  EXPECT_NE(Opaque(7, "clock"), Opaque(7, "battery"));
  EXPECT_EQ(Opaque(std::nullopt, "clock"), base::Bytes(8));
}

class OpaqueCameraTest : public test::CameraFixture {
 protected:
  OpaqueCameraTest() {
    scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
    scratch_.Put("DCIM/100ABCDE/IMG_0002.JPG", "defg");
    Plug(7);
  }
  void Plug(std::uint32_t seed) {
    options_.opaque = seed;
    Restart();
  }
  base::Bytes Read(std::uint8_t selection) {
    EXPECT_TRUE(Tell(*camera_, {0xC2, 0, selection}).Good());
    return Ask(*camera_, {0xC4, 0, 0x01}, 65536).data;
  }
  base::Bytes Query(std::uint8_t subCode) { return Ask(*camera_, {0xC6, 0, subCode}, 65536).data; }
};

TEST_F(OpaqueCameraTest, LengthsAreThoseOfTheProtocol) {
  EXPECT_EQ(Query(0x03).size(), 14U);
  EXPECT_EQ(Query(0x06).size(), 4U);
  EXPECT_EQ(Read(0x00).size(), 644U);
  EXPECT_EQ(Read(0x02).size(), 12U + 80U + 2 * 128U);
}

TEST_F(OpaqueCameraTest, AnswersTheSameUntilItIsPluggedInWithAnotherSeed) {
  const std::vector<base::Bytes> first{Query(0x03), Query(0x06), Read(0x00), Read(0x02)};
  EXPECT_EQ((std::vector<base::Bytes>{Query(0x03), Query(0x06), Read(0x00), Read(0x02)}), first);
  Plug(8);
  const std::vector<base::Bytes> second{Query(0x03), Query(0x06), Read(0x00), Read(0x02)};
  for (std::size_t i = 0; i < first.size(); ++i) EXPECT_NE(second[i], first[i]) << i;
}

TEST_F(OpaqueCameraTest, PicturesKeepTheirNamesAndTypesAndNothingElse) {
  const base::Bytes opaque = Read(0x02);
  options_.opaque.reset();
  Restart();
  const base::Bytes plain = Read(0x02);
  ASSERT_EQ(opaque.size(), plain.size());
  constexpr std::size_t kRecords = 12 + 80;
  for (std::size_t record = kRecords; record < plain.size(); record += 128) {
    const auto part = [record](const base::Bytes& bytes, std::size_t from, std::size_t to) {
      return base::Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(record + from),
                         bytes.begin() + static_cast<std::ptrdiff_t>(record + to));
    };
    EXPECT_EQ(part(opaque, 0, 40), part(plain, 0, 40));
    for (const auto& [from, to] : {std::pair(40, 44), {44, 48}, {48, 96}, {96, 124}, {124, 128}}) {
      EXPECT_NE(part(opaque, static_cast<std::size_t>(from), static_cast<std::size_t>(to)),
                part(plain, static_cast<std::size_t>(from), static_cast<std::size_t>(to)));
    }
  }
}

TEST_F(OpaqueCameraTest, TheClockKeepsWhateverItIsGiven) {
  const base::Bytes time{0xFF, 0xFF, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x04}, time).moved, 14U);
  EXPECT_EQ(Query(0x03), time);
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x04}, base::Bytes(13)).sense, sense::kWrongDataLength);
}

}  // namespace
}  // namespace vcam
