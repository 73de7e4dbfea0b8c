#include "base/AcceptPause.h"

#include <gtest/gtest.h>

namespace base {
namespace {

using std::chrono::milliseconds;

constexpr AcceptPause::Clock::time_point kNow{std::chrono::hours(1)};
constexpr int kSocket = 7;

TEST(AcceptPause, WaitsForTheSocketUntilAcceptFails) {
  const AcceptPause pause;
  EXPECT_EQ(pause.Awaited(kSocket, kNow), kSocket);
  EXPECT_EQ(pause.TimeoutMs(-1, kNow), -1);
  EXPECT_EQ(pause.TimeoutMs(5, kNow), 5);
}

TEST(AcceptPause, LeavesTheSocketOutForATenthOfASecond) {
  for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM}) {
    AcceptPause pause;
    pause.NoteFailure(error, kNow);
    EXPECT_EQ(pause.Awaited(kSocket, kNow), -1);
    EXPECT_EQ(pause.TimeoutMs(-1, kNow), 100);
    EXPECT_EQ(pause.TimeoutMs(5, kNow), 5);
    EXPECT_EQ(pause.TimeoutMs(500, kNow + milliseconds(99)), 1);
    EXPECT_EQ(pause.Awaited(kSocket, kNow + milliseconds(99)), -1);
    EXPECT_EQ(pause.Awaited(kSocket, kNow + milliseconds(100)), kSocket);
    EXPECT_EQ(pause.TimeoutMs(-1, kNow + milliseconds(100)), -1);
  }
}

TEST(AcceptPause, DoesNotPauseForAConnectionThatIsOutOfTheQueue) {
  AcceptPause pause;
  for (const int error : {EAGAIN, EINTR, ECONNABORTED}) {
    pause.NoteFailure(error, kNow);
    EXPECT_EQ(pause.Awaited(kSocket, kNow), kSocket);
  }
}

}  // namespace
}  // namespace base
