// What a source wants reaches a program that watches one descriptor instead of running a loop.

#include <poll.h>

#include "darwin/cf/EventLoop.h"
#include "darwin/registry/testing/ScriptedSource.h"

namespace darwin {
namespace {

bool EventsAreReadable() {
  pollfd events{EventDescriptor(), POLLIN, 0};
  return ::poll(&events, 1, 0) == 1;
}

using SourceEvents = Source;

TEST_F(SourceEvents, AnyMomentThatItWantsSinceALookIsToldToThoseWhoWait) {
  const Listening listening;
  for (const int moment : {0, 1}) {
    script_.timeoutMs = -1;
    Count(IOServiceMatching("Camera"));
    DispatchEvents();
    EXPECT_FALSE(EventsAreReadable());
    script_.timeoutMs = moment;
    Count(IOServiceMatching("Camera"));
    EXPECT_TRUE(EventsAreReadable()) << moment << " ms";
  }
}

}  // namespace
}  // namespace darwin
