#include "OffsetOrder.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <string>

#include "testing/ScriptedCamera.h"

namespace {

using kelva::OffsetOrder;
using namespace wifi_testing;

boost::shared_ptr<Camera> NewCamera() {
  return boost::make_shared<ScriptedCamera>();
}

TEST(KnownOrder, OfACameraThatNobodyAskedIsUnknown) {
  EXPECT_EQ(kelva::KnownOrder(NewCamera()), OffsetOrder::kUnknown);
}

TEST(KnownOrder, BelongsToOneCameraObject) {
  const auto one = NewCamera();
  const auto other = NewCamera();
  kelva::RememberOrder(one, OffsetOrder::kAny);
  kelva::RememberOrder(other, OffsetOrder::kForwardOnly);
  EXPECT_EQ(kelva::KnownOrder(one), OffsetOrder::kAny);
  EXPECT_EQ(kelva::KnownOrder(other), OffsetOrder::kForwardOnly);
  kelva::RememberOrder(one, OffsetOrder::kForwardOnly);
  EXPECT_EQ(kelva::KnownOrder(one), OffsetOrder::kForwardOnly);
}

TEST(KnownOrder, GoesWithItsCamera) {
  // The next camera may have the address of the last one.
  for (int i = 0; i < 100; ++i) {
    const auto camera = NewCamera();
    EXPECT_EQ(kelva::KnownOrder(camera), OffsetOrder::kUnknown);
    kelva::RememberOrder(camera, OffsetOrder::kAny);
  }
}

std::string Blocks(const std::string& letters) {
  std::string text;
  for (const char letter : letters) text += std::string(512, letter);
  return text;
}

TEST(ProofOffset, IsTheLastPlaceWithABlockBehindIt) {
  EXPECT_EQ(kelva::ProofOffset(Blocks("abcdefgh")), 6 * 512U);
  EXPECT_EQ(kelva::ProofOffset(Pattern(65536)), 64512U);
  EXPECT_EQ(kelva::ProofOffset(Pattern(65535)), 64000U);
}

TEST(ProofOffset, DiffersFromWhatACameraWouldSendThatIgnoresIt) {
  EXPECT_EQ(kelva::ProofOffset(Blocks("abcb?")), 2 * 512U) << "3 is as the block behind the first one";
  EXPECT_EQ(kelva::ProofOffset(Blocks("abca?")), std::nullopt) << "3 is as the first; behind 2 the first comes again";
  EXPECT_EQ(kelva::ProofOffset(Blocks("abcda")), 2 * 512U) << "behind 3 the first comes again";
}

TEST(ProofOffset, OfAUniformOrASmallFileIsNone) {
  EXPECT_EQ(kelva::ProofOffset(Blocks("aaaaaaaaaaaaaaaa")), std::nullopt);
  EXPECT_EQ(kelva::ProofOffset(Blocks("abababababababab")), std::nullopt);
  EXPECT_EQ(kelva::ProofOffset(Pattern(2047)), std::nullopt);
  EXPECT_EQ(kelva::ProofOffset(Pattern(2048)), 1024U);
  EXPECT_EQ(kelva::ProofOffset({}), std::nullopt);
}

}  // namespace
