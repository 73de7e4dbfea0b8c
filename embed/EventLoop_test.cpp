#include "embed/EventLoop.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <stdexcept>
#include <thread>

#include "Listener.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace kelva {
namespace {

using namespace std::chrono_literals;

bool IsReadable(int timeoutMs = 0) {
  pollfd entry{EventDescriptor(), POLLIN, 0};
  return ::poll(&entry, 1, timeoutMs) == 1;
}

class EventLoop : public testing::Test {
 protected:
  void Plug() { registry_.AttachCamera({"K1", "Kelva", "Glimmer", "1.00", 3, nullptr}); }

  int attached_ = 0;
  bool throws_ = false;
  const Listener listener_{{.attached =
                                [this](auto, auto&) {
                                  ++attached_;
                                  if (throws_) throw std::runtime_error("thrown by a function");
                                },
                            .lost = {},
                            .badCamera = {}}};

 private:
  darwin::VirtualRegistry registry_;
};

TEST_F(EventLoop, WithoutEventsTheDescriptorIsNotReadable) {
  EventDescriptor();
  DispatchEvents();
  EXPECT_FALSE(IsReadable());
}

TEST_F(EventLoop, TheDescriptorIsReadableUntilTheEventIsDispatched) {
  DispatchEvents();
  Plug();
  EXPECT_TRUE(IsReadable());
  EXPECT_EQ(attached_, 0);
  DispatchEvents();
  EXPECT_EQ(attached_, 1);
  DispatchEvents();
  EXPECT_FALSE(IsReadable());
}

TEST_F(EventLoop, AListenerThatCameLaterIsWatchedToo) {
  EventDescriptor();
  DispatchEvents();
  int later = 0;
  const Listener listener({.attached = [&](auto, auto&) { ++later; }, .lost = {}, .badCamera = {}});
  EXPECT_TRUE(IsReadable()) << "so that the program dispatches and the listener is taken in";
  DispatchEvents();
  Plug();
  EXPECT_TRUE(IsReadable());
  DispatchEvents();
  EXPECT_EQ(later, 1);
}

TEST_F(EventLoop, ARunWaitsForAnEventAndMakesAllReports) {
  int other = 0;
  const Listener second({.attached = [&](auto, auto&) { ++other; }, .lost = {}, .badCamera = {}});
  std::thread world([this] { Plug(); });
  RunEvents(1000s);
  world.join();
  EXPECT_EQ(attached_, 1);
  EXPECT_EQ(other, 1);
}

TEST_F(EventLoop, ARunWithoutEventsLastsAsLongAsItMay) {
  const auto start = std::chrono::steady_clock::now();
  RunEvents(20ms);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
}

TEST(EventLoopOfNobody, ARunLastsAsLongAsItMay) {
  std::thread([] {
    const auto start = std::chrono::steady_clock::now();
    RunEvents(20ms);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
  }).join();
}

TEST_F(EventLoop, AnExceptionReachesTheCallerAndTheNextEventIsReported) {
  throws_ = true;
  Plug();
  EXPECT_THROW(DispatchEvents(), std::runtime_error);
  Plug();
  EXPECT_TRUE(IsReadable());
  EXPECT_THROW(RunEvents(1000s), std::runtime_error);
  EXPECT_EQ(attached_, 2);
}

}  // namespace
}  // namespace kelva
