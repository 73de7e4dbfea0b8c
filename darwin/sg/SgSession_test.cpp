#include "darwin/sg/SgSession.h"

#include <gtest/gtest.h>

#include "darwin/sg/testing/ScriptedSystem.h"

namespace darwin::sg {
namespace {

class SgSessionTest : public testing::Test {
 protected:
  std::optional<SgSession> Open() { return SgSession::Open(system_, "/dev/sg3", error_); }

  ScriptedSystem system_;
  int error_ = 0;
};

TEST_F(SgSessionTest, OpeningReservesOneChunkAndAsksTheLimit) {
  const auto session = Open();
  ASSERT_TRUE(session);
  EXPECT_EQ(system_.opened, std::vector<std::string>{"/dev/sg3"});
  EXPECT_EQ(system_.reserved, 65536);
  EXPECT_EQ(session->LargestTransfer(), 122880U);
}

TEST_F(SgSessionTest, TheReservedBufferIsMappedForTheTimeOfTheSession) {
  {
    auto session = Open();
    EXPECT_TRUE(session->Landing().IsMapped(65536));
    EXPECT_EQ(system_.unmapped, 0);
  }
  EXPECT_EQ(system_.unmapped, 1);
  EXPECT_EQ(system_.closed, 1);
  EXPECT_EQ(system_.closedBeforeUnmap, 0);
}

TEST_F(SgSessionTest, OfABufferThatTheKernelClampedAsMuchIsMapped) {
  system_.reservedAtMost = 32768;
  auto session = Open();
  EXPECT_TRUE(session->Landing().IsMapped(32768));
  EXPECT_FALSE(session->Landing().IsMapped(32769));
}

TEST_F(SgSessionTest, ANodeThatDoesNotSayItsLimitCarriesOneChunk) {
  system_.largestTransfer = 0;
  EXPECT_EQ(Open()->LargestTransfer(), 65536U);
}

TEST_F(SgSessionTest, AFailedOpeningGivesTheReasonAndClosesNothing) {
  system_.openError = EACCES;
  EXPECT_FALSE(Open());
  EXPECT_EQ(error_, EACCES);
  EXPECT_EQ(system_.closed, 0);
}

TEST_F(SgSessionTest, ALockedNodeIsClosedAgain) {
  system_.lockError = EWOULDBLOCK;
  EXPECT_FALSE(Open());
  EXPECT_EQ(error_, EWOULDBLOCK);
  EXPECT_EQ(system_.closed, 1);
}

TEST_F(SgSessionTest, TheDescriptorIsClosedOnceHoweverOftenItsOwnerMoves) {
  {
    auto session = Open();
    SgSession moved(std::move(*session));
    *session = std::move(moved);
    EXPECT_EQ(session->Descriptor(), ScriptedSystem::kDescriptor);
  }
  EXPECT_EQ(system_.closed, 1);
}

}  // namespace
}  // namespace darwin::sg
