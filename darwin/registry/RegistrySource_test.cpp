// When a source is asked, and what becomes of its failures.

#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "base/WakeUp.h"
#include "darwin/cf/EventLoop.h"
#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

/// What the source under test does and what it was asked; it outlives the source.
struct Script {
  base::WakeUp news;
  std::atomic<int> starts{0};
  std::atomic<int> dispatches{0};
  std::atomic<int> stopAt{-1};  ///< the dispatch that stops the run loop
  std::atomic<int> timeoutMs{-1};
  std::atomic<int> asked{0};  ///< how often it was asked what to wait for
  std::atomic<bool> startFails{false};
  std::atomic<bool> dispatchFails{false};
  std::atomic<EntryId> camera{0};

  void Tell() { news.Signal(); }
};

class ScriptedSource final : public RegistrySource {
 public:
  explicit ScriptedSource(Script& script) : script_(script) {}

  void Start(Registry&) override {
    ++script_.starts;
    if (script_.startFails) throw std::runtime_error("The bus cannot be reached.");
  }

  int Descriptor() const override {
    ++script_.asked;
    return script_.news.Descriptor();
  }
  int TimeoutMs() const override { return script_.timeoutMs; }
  std::string WhyDeaf() const override { return "Nobody tells."; }

  /// Publishes a camera when the descriptor says so.
  void Dispatch(Registry& registry) override {
    if (++script_.dispatches == script_.stopAt) CFRunLoopStop(CFRunLoopGetCurrent());
    if (script_.dispatchFails) throw std::runtime_error("The bus was lost.");
    std::array<char, 64> told;
    if (::read(script_.news.Descriptor(), told.data(), told.size()) <= 0) return;
    script_.camera = registry.Add(registry.Root(), {{"Camera"}, {}, {}});
    registry.RegisterService(script_.camera);
  }

 private:
  Script& script_;
};

class Source : public RegistryFixture {
 protected:
  void SetUp() override { TheRegistry().SetSource(std::make_unique<ScriptedSource>(script_)); }
  void TearDown() override {
    TheRegistry().Terminate(script_.camera);
    RegistryFixture::TearDown();
  }

  Script script_;
};

/// A port in this thread's loop and a registration for cameras that stops the loop.
class Listening {
 public:
  Listening() : port_(IONotificationPortCreate(kIOMainPortDefault)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
    result = IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification, IOServiceMatching("Camera"), OnMatch,
                                              this, &iterator_);
    Drain(iterator_);
  }
  ~Listening() {
    IOObjectRelease(iterator_);
    IONotificationPortDestroy(port_);
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;

  kern_return_t result = 0;
  int cameras = 0;

 private:
  static int Drain(io_iterator_t iterator) {
    int count = 0;
    while (const io_service_t service = IOIteratorNext(iterator)) {
      IOObjectRelease(service);
      ++count;
    }
    return count;
  }

  static void OnMatch(void* self, io_iterator_t iterator) {
    static_cast<Listening*>(self)->cameras += Drain(iterator);
    CFRunLoopStop(CFRunLoopGetCurrent());
  }

  const IONotificationPortRef port_;
  io_iterator_t iterator_ = 0;
};

TEST_F(Source, IsStartedOnceAtTheFirstLookAndAskedForNewsAtEachLaterOne) {
  EXPECT_EQ(script_.starts, 0);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(script_.starts, 1);
  EXPECT_EQ(script_.dispatches, 0);
  script_.Tell();
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
  EXPECT_EQ(script_.starts, 1);
  EXPECT_EQ(script_.dispatches, 1);
}

TEST_F(Source, IsAskedWhatToWaitForOnlyWhenSomebodyCanWait) {
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(script_.asked, 0);
  const Listening listening;
  EXPECT_GT(script_.asked, 0);
}

TEST_F(Source, WakesTheRunLoopThroughItsDescriptor) {
  Listening listening;
  std::thread world([this] { script_.Tell(); });
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  world.join();
  EXPECT_EQ(listening.cameras, 1);
}

TEST_F(Source, IsAskedAtTheMomentItWantsAlthoughNothingIsReadable) {
  const Listening listening;
  script_.timeoutMs = 1;
  script_.stopAt = script_.dispatches + 5;
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
}

TEST_F(Source, WhenNothingIsWantedTheRunLoopSleeps) {
  const Listening listening;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  const int before = script_.dispatches;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  EXPECT_LE(script_.dispatches, before + 2);
}

TEST_F(Source, AMomentThatItWantsSinceAnotherThreadsLookWakesTheSleepingLoop) {
  Listening listening;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  std::thread worker([this] {
    script_.timeoutMs = 1;
    EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
    script_.Tell();
  });
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  worker.join();
}

bool EventsAreReadable() {
  pollfd events{EventDescriptor(), POLLIN, 0};
  return ::poll(&events, 1, 0) == 1;
}

TEST_F(Source, AnyMomentThatItWantsSinceALookIsToldToThoseWhoWait) {
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

TEST_F(Source, AFailedStartFailsTheLookInItsOwnWordsAndIsTriedAgain) {
  script_.startFails = true;
  const CFMutableDictionaryRef matching = IOServiceMatching("Camera");
  CFRetain(matching);
  io_iterator_t iterator = 77;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, matching, &iterator), kIOReturnError);
  EXPECT_EQ(iterator, 77u);
  EXPECT_EQ(CFGetRetainCount(matching), 1);
  CFRelease(matching);
  EXPECT_EQ(TheRegistry().LastSourceError(), "The bus cannot be reached.");
  script_.startFails = false;
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(TheRegistry().LastSourceError(), "");
  EXPECT_EQ(script_.starts, 2);
}

TEST_F(Source, SaysWhyItIsDeafOnceItHasStarted) {
  EXPECT_EQ(TheRegistry().WhyDeaf(), "");
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(TheRegistry().WhyDeaf(), "Nobody tells.");
  TheRegistry().SetSource(nullptr);
  EXPECT_EQ(TheRegistry().WhyDeaf(), "");
}

TEST_F(Source, AnotherSourceHasNotFailed) {
  script_.startFails = true;
  Listening();
  EXPECT_EQ(TheRegistry().LastSourceError(), "The bus cannot be reached.");
  TheRegistry().SetSource(nullptr);
  EXPECT_EQ(TheRegistry().LastSourceError(), "");
}

TEST_F(Source, AFailedStartFailsARegistrationToo) {
  script_.startFails = true;
  const Listening listening;
  EXPECT_EQ(listening.result, kIOReturnError);
}

TEST_F(Source, AFailureInTheRunLoopIsSaidOnceAndDoesNotSpin) {
  const Listening listening;
  script_.dispatchFails = true;
  script_.Tell();
  ::testing::internal::CaptureStderr();
  const int before = script_.dispatches;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "The bus was lost.\n");
  EXPECT_LE(script_.dispatches, before + 5);
}

TEST_F(Source, AfterAFailureTheNextSuccessfulLookMendsIt) {
  script_.dispatchFails = true;
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  io_iterator_t iterator = 0;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("Camera"), &iterator), kIOReturnError);
  script_.dispatchFails = false;
  script_.Tell();
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
}

}  // namespace
}  // namespace darwin
