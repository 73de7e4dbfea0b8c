#include "darwin/sg/LandingArea.h"

#include <gtest/gtest.h>

#include "darwin/sg/testing/ScriptedSystem.h"

namespace darwin::sg {
namespace {

class LandingAreaTest : public testing::Test {
 protected:
  LandingAreaTest() { system_.reserved = 65536; }

  LandingArea Map(std::size_t reserved) { return {system_, ScriptedSystem::kDescriptor, reserved}; }

  ScriptedSystem system_;
};

TEST_F(LandingAreaTest, AnAnswerThatFitsLandsInTheMappedBuffer) {
  LandingArea area = Map(65536);
  EXPECT_TRUE(area.IsMapped(65536));
  EXPECT_EQ(area.Bytes(65536).data(), system_.reservedBuffer.data());
  EXPECT_EQ(area.Bytes(100).size(), 100U);
}

TEST_F(LandingAreaTest, ALargerAnswerLandsInMemoryOfThisSide) {
  LandingArea area = Map(65536);
  EXPECT_FALSE(area.IsMapped(65537));
  EXPECT_EQ(area.Bytes(65537).size(), 65537U);
  EXPECT_NE(area.Bytes(65537).data(), system_.reservedBuffer.data());
}

TEST_F(LandingAreaTest, OnlyWholePagesAreMapped) {
  LandingArea area = Map(30720);
  EXPECT_TRUE(area.IsMapped(28672));
  EXPECT_FALSE(area.IsMapped(28673));
}

TEST_F(LandingAreaTest, LessThanAPageIsNotMapped) {
  LandingArea area = Map(4095);
  EXPECT_FALSE(area.IsMapped(1));
  EXPECT_EQ(system_.mapped, 0);
}

TEST_F(LandingAreaTest, ANodeThatCannotBeMappedHasMemoryOfThisSide) {
  system_.mapsReserved = false;
  LandingArea area = Map(65536);
  EXPECT_FALSE(area.IsMapped(1));
  EXPECT_EQ(area.Bytes(64).size(), 64U);
}

TEST_F(LandingAreaTest, MemoryOfThisSideMovesWithItsOwner) {
  LandingArea area = Map(0);
  const std::uint8_t* bytes = area.Bytes(64).data();
  LandingArea other(std::move(area));
  area = std::move(other);
  EXPECT_EQ(area.Bytes(64).data(), bytes);
}

TEST_F(LandingAreaTest, TheMappingEndsOnceHoweverOftenItsOwnerMoves) {
  {
    LandingArea area = Map(65536);
    LandingArea other(std::move(area));
    area = std::move(other);
    EXPECT_TRUE(area.IsMapped(65536));
  }
  EXPECT_EQ(system_.unmapped, 1);
}

}  // namespace
}  // namespace darwin::sg
